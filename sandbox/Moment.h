// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

namespace orlix::sandbox {

/// A point in time by the machine's calendar, as people read it.
using Moment = std::chrono::sys_time<std::chrono::milliseconds>;

inline Moment now() {
  return std::chrono::time_point_cast<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

}  // namespace orlix::sandbox
