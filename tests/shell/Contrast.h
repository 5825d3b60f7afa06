// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QImage>
#include <QRect>
#include <algorithm>
#include <cmath>
#include <map>
#include <string>

#include "tests/shell/Focus.h"
#include "tests/shell/Look.h"

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

/// Contrast of a text with its background. The background is the most frequent colour in this part
/// of the picture, the text's colour that of the pixel that differs most, because the edges of
/// letters are blended.
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

inline constexpr double kText = 4.5;
inline constexpr double kLine = 3;

/// True when the item and its parents are enabled and opaque.
inline bool isOpaque(const QQuickItem* item) {
  for (; item != nullptr; item = item->parentItem()) {
    if (item->opacity() < 1) {
      return false;
    }
  }
  return true;
}

/// Texts of the item and its children whose contrast is too low.
inline std::string textsTooFaint(QQuickWindow& window, QQuickItem& root) {
  std::string faint;
  const QImage picture = window.grabWindow();
  for (const QQuickItem* item : seen(root)) {
    const QString text = item->property("text").toString();
    const bool isText = item->inherits("QQuickText") || item->inherits("QQuickTextInput");
    const QRect part = seenPart(*item, window);
    if (!isText || text.isEmpty() || part.isEmpty() || !isOpaque(item)) {
      continue;
    }
    const double measured = textContrast(picture, part);
    if (measured < kText) {
      faint += nameOf(item) + " \"" + text.toStdString() + "\" " + std::to_string(measured) + "\n";
    }
  }
  return faint;
}

/// Number of pixels that clearly differ between two pictures of the same size.
inline int clearChanges(const QImage& one, const QImage& other) {
  int clear = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      clear += contrast(one.pixel(x, y), other.pixel(x, y)) >= kLine ? 1 : 0;
    }
  }
  return clear;
}

}  // namespace orlix::shell
