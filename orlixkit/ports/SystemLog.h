// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

namespace orlix {

/// The system's log. Takes one line of text (without its line end), from any thread, also after
/// shutdown. Callers never pass a PIN, a CVV or a key.
class SystemLog {
 public:
  virtual ~SystemLog() = default;
  virtual void write(std::string_view line) = 0;
};

}  // namespace orlix
