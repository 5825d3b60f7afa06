// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace orlix::shell {

enum class ColorScheme {
  fromPalette,  ///< light or dark, like the application's palette
  light,
  dark,
};

/// Appearance of the drawn screens.
struct LookOptions {
  ColorScheme colors = ColorScheme::fromPalette;
  /// Disables fades, sliding and the turning indicator.
  bool reducedMotion = false;
  /// Scale of texts, 1 to 3, for a platform whose text size Qt does not report.
  double textScale = 1;
};

}  // namespace orlix::shell
