// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QImage>
#include <QRect>
#include <algorithm>
#include <cmath>
#include <map>

namespace orlix::shell {

/// Relative luminance, by WCAG 2.
inline double luminance(QRgb color) {
  const auto linear = [](int part) {
    const double value = part / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
         0.0722 * linear(qBlue(color));
}

/// From 1 to 21.
inline double contrast(QRgb one, QRgb other) {
  const double first = luminance(one) + 0.05;
  const double second = luminance(other) + 0.05;
  return std::max(first, second) / std::min(first, second);
}

/// Contrast of a text with the colour behind it, the most frequent one in this part of the picture.
/// The text's colour is that of the pixel that differs most: edges of letters are blended.
inline double textContrast(const QImage& picture, const QRect& part) {
  std::map<QRgb, int> counts;
  for (int y = part.top(); y <= part.bottom(); ++y) {
    for (int x = part.left(); x <= part.right(); ++x) {
      ++counts[picture.pixel(x, y)];
    }
  }
  const auto most = std::max_element(counts.begin(), counts.end(), [](auto& one, auto& other) {
    return one.second < other.second;
  });
  double best = 1;
  for (const auto& [color, count] : counts) {
    best = std::max(best, contrast(color, most->first));
  }
  return best;
}

}  // namespace orlix::shell
