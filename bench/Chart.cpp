// SPDX-License-Identifier: Apache-2.0

#include "bench/Chart.h"

#include <algorithm>

#include <fmt/format.h>

namespace orlix::bench {

namespace {

constexpr double kWidth = 860;
constexpr double kLeft = 380;     // where the bars begin
constexpr double kPerUnit = 150;  // a ratio of 1
constexpr double kLargest = 2.6;  // ratios beyond it are cut, and say so by their figure
constexpr double kTop = 56;
constexpr double kRowHeight = 34;

double at(double ratio) { return kLeft + kPerUnit * std::min(ratio, kLargest); }

std::string line(double x1, double y1, double x2, double y2, const char* look) {
  return fmt::format(R"(<line x1="{:.1f}" y1="{:.1f}" x2="{:.1f}" y2="{:.1f}" {}/>)"
                     "\n",
                     x1, y1, x2, y2, look);
}

std::string text(double x, double y, const char* look, const std::string& words) {
  return fmt::format(R"(<text x="{:.1f}" y="{:.1f}" {}>{}</text>)"
                     "\n",
                     x, y, look, words);
}

std::string bar(const Row& row, double y) {
  const char* const color = row.missed() ? "#c0392b" : row.target > 0 ? "#2a7f62" : "#8a94a0";
  std::string out = text(kLeft - 12, y + 5, R"(text-anchor="end")", row.name);
  out += fmt::format(
      R"(<rect x="{:.1f}" y="{:.1f}" width="{:.1f}" height="16" rx="3" fill="{}" fill-opacity="0.85"/>)"
      "\n",
      kLeft, y - 8, at(row.ratio) - kLeft, color);
  out += line(at(row.least), y, at(row.most), y, R"(stroke="#1c2733" stroke-width="2")");
  if (row.target > 0) {
    out += line(at(row.target), y - 12, at(row.target), y + 12,
                R"(stroke="#1c2733" stroke-width="2" stroke-dasharray="3 2")");
  }
  const double end = std::max({at(row.ratio), at(row.most), at(row.target)});
  return out + text(end + 8, y + 5, R"(font-weight="600")", fmt::format("{:.2f}", row.ratio));
}

}  // namespace

std::string chartOf(const std::vector<Row>& rows) {
  const double bottom = kTop + kRowHeight * static_cast<double>(rows.size());
  std::string out = fmt::format(
      R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {:.0f} {:.0f}" font-family="Inter, Helvetica, Arial, sans-serif" font-size="12.5" fill="#1c2733">)"
      "\n",
      kWidth, bottom + 40);
  out += R"(<rect width="100%" height="100%" fill="#ffffff"/>)"
         "\n";
  out += text(16, 26, R"(font-size="15" font-weight="600")",
              "What the library costs, as a multiple of the bare calls");
  double y = kTop + kRowHeight / 2;
  for (const Row& row : rows) {
    out += bar(row, y);
    y += kRowHeight;
  }
  out += line(at(1), kTop - 8, at(1), bottom, R"(stroke="#1c2733" stroke-width="1")");
  out += text(at(1), kTop - 14, R"(text-anchor="middle" font-size="11")", "1");
  out +=
      text(16, bottom + 24, R"(font-size="11" fill="#52606d")",
           "Bar: median of five runs. Line on it: least to most. Dashed: the most that is allowed. "
           "Grey: for comparison only.");
  return out + "</svg>\n";
}

}  // namespace orlix::bench
