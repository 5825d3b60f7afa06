// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orlix::shop {

/// The command line does not make sense; the message says where.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What the command line asks for.
struct ShopOptions {
  std::string server;  ///< https base address, without a trailing slash
  std::string anchor;  ///< file with a certificate to trust, PEM or DER
  std::string state;   ///< directory of the application's stored values
  std::int64_t system = 1;
  std::optional<std::pair<double, double>> location;  ///< latitude, longitude in degrees
  std::string terms;                                  ///< https address of the terms page
  std::optional<std::string> script;
  bool headless = false;
  std::optional<std::string> snapshots;
  std::pair<int, int> window{375, 667};  ///< width and height in points
  bool rightToLeft = false;
  bool reducedMotion = false;
  std::optional<bool> darkColors{};       ///< by the desktop's palette without one
  std::optional<std::string> messages{};  ///< file or pipe with lines to show beside the window
  bool help = false;
  bool listScreens = false;  ///< print what the library's screens consist of, and end
};

/// The arguments without the program's name. Throws UsageError.
ShopOptions parseOptions(const std::vector<std::string>& arguments);

/// The text for --help.
std::string usage();

}  // namespace orlix::shop
