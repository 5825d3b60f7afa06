// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace orlix::sandbox {

/// The text as a QR code, an SVG picture with its quiet zone; nothing when it is too long for one.
std::optional<std::string> qrPicture(const std::string& text);

}  // namespace orlix::sandbox
