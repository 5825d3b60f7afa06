// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace orlix::shell {

enum class ColorScheme {
  fromPalette,  ///< light or dark, like the application's palette
  light,
  dark,
};

/// Options of the drawings.
struct LookOptions {
  ColorScheme colors = ColorScheme::fromPalette;
  /// No fades, no sliding, no turning indicator.
  bool reducedMotion = false;
  /// Size of texts, from 1 to 3, for a platform whose text size Qt does not know.
  double textScale = 1;
};

}  // namespace orlix::shell
