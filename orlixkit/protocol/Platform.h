// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace orlix {

/// Description of the running system, sent when a session is opened.
struct Platform {
  std::optional<std::string> os;
  std::optional<std::string> osVersion;
  std::optional<std::string> node;
  std::optional<std::string> appVersion;  ///< version of the library
  std::optional<std::string> device;      ///< hardware model
  std::optional<std::string> libKey;      ///< the host application's key
};

}  // namespace orlix
