// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace orlix {

/// Position of the device, sent as a fraud signal. Only the two GPS fields are filled on this
/// platform; the network fields exist for the text form.
struct Location {
  std::optional<double> gpsLatitude = std::nullopt;    ///< degrees, north positive
  std::optional<double> gpsLongditude = std::nullopt;  ///< degrees, east positive
  std::optional<std::string> networkMCC = std::nullopt;
  std::optional<std::string> networkMNC = std::nullopt;
  std::optional<std::string> networkCellId = std::nullopt;
  std::optional<std::string> networkLac = std::nullopt;

  /// "[G:latitude,longitude]" and "[N:MCC,MNC,cell,LAC]", joined by a comma; each only when it has
  /// a latitude or a cell. Empty when there is neither. Numbers have the fewest digits that read
  /// back as the same number.
  std::string buildLocation() const;
};

}  // namespace orlix
