// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "sandbox/Http.h"

namespace orlix::sandbox {

/// `text` with "%41" as "A". A percent sign that no two hexadecimal digits follow stays as it is.
std::string percentDecoded(std::string_view text);

/// The fields of a query or a posted form ("a=1&b=2+3"), decoded.
HttpFields formFields(std::string_view text);

}  // namespace orlix::sandbox
