// SPDX-License-Identifier: Apache-2.0

#include "sandbox/console/QrPicture.h"

#include <fmt/format.h>
#include <qrcodegen/qrcodegen.hpp>

namespace orlix::sandbox {

std::optional<std::string> qrPicture(const std::string& text) {
  using qrcodegen::QrCode;
  constexpr int kQuiet = 4;  // Modules; a scanner needs them.
  try {
    const QrCode code = QrCode::encodeText(text.c_str(), QrCode::Ecc::MEDIUM);
    std::string path;
    for (int y = 0; y < code.getSize(); ++y) {
      for (int x = 0; x < code.getSize(); ++x) {
        if (code.getModule(x, y)) path += fmt::format("M{} {}h1v1h-1z", x + kQuiet, y + kQuiet);
      }
    }
    const int side = code.getSize() + 2 * kQuiet;
    return fmt::format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 {0} {0}\" "
        "shape-rendering=\"crispEdges\"><path fill=\"#fff\" d=\"M0 0h{0}v{0}h-{0}z\"/>"
        "<path d=\"{1}\"/></svg>",
        side, path);
  } catch (const qrcodegen::data_too_long&) {
    return std::nullopt;
  }
}

}  // namespace orlix::sandbox
