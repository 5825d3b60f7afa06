// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orlix::sandbox {

/// What a browser says of where a request comes from.
struct RequestSource {
  std::string host{};
  std::optional<std::string> origin{};
  std::optional<std::string> fetchSite{};  ///< Sec-Fetch-Site
};

/// Why the console must not answer, in words; nothing when it may. A page of another site can make
/// a browser send requests here, by its own name for this address (DNS rebinding) too; it cannot
/// choose what the browser says of them.
std::optional<std::string_view> refusalOf(const RequestSource& source, int port);

}  // namespace orlix::sandbox
