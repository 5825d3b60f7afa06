// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/Secret.h"

/// Lines that the user types at a terminal, or that a program writes to the standard input. Main
/// thread.
class LineInput {
 public:
  /// `mainQueue` runs while a line is awaited.
  explicit LineInput(orlix::MainQueue& mainQueue);
  ~LineInput();
  LineInput(const LineInput&) = delete;
  LineInput& operator=(const LineInput&) = delete;

  /// Runs the main queue until something has been typed or `changed` holds. False for the latter.
  bool wait(const std::function<bool()>& changed);

  /// Reads a line, after asking with `question`. None at the end of the input.
  static std::optional<std::string> line(const std::string& question);
  /// The same for a PIN or CVV: what is typed is not shown, and is kept in wiped memory only.
  static std::optional<orlix::SecretString> secretLine(const std::string& question);

 private:
  void watch(const std::stop_token& stop);

  orlix::MainQueue& mainQueue_;
  std::atomic<bool> waits_ = false;
  std::atomic<bool> typed_ = false;
  std::jthread watch_;
};
