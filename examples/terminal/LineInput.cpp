// SPDX-License-Identifier: Apache-2.0

#include "LineInput.h"

#include <cstdio>
#include <poll.h>
#include <string_view>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int kPauseInMilliseconds = 50;

/// Switches the terminal's echo off for as long as it lives. No effect on a pipe.
class Unechoed {
 public:
  Unechoed() : isTerminal_(tcgetattr(STDIN_FILENO, &before_) == 0) {
    termios quiet = before_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    if (isTerminal_) {
      tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
    }
  }
  ~Unechoed() {
    if (isTerminal_) {
      tcsetattr(STDIN_FILENO, TCSANOW, &before_);
      std::puts("");
    }
  }
  Unechoed(const Unechoed&) = delete;
  Unechoed& operator=(const Unechoed&) = delete;

 private:
  termios before_{};
  bool isTerminal_;
};

/// Reads byte by byte: a stream would keep the text in a buffer that is not wiped.
template <class Take>
bool read(const std::string& question, const Take& take) {
  std::fputs(question.c_str(), stdout);
  std::fflush(stdout);
  char letter = 0;
  bool any = false;
  while (::read(STDIN_FILENO, &letter, 1) == 1) {
    any = true;
    if (letter == '\n') {
      return true;
    }
    take(letter);
    letter = 0;
  }
  return any;
}

}  // namespace

LineInput::LineInput(orlix::MainQueue& mainQueue)
    : mainQueue_(mainQueue), watch_([this](const std::stop_token& stop) { watch(stop); }) {}

LineInput::~LineInput() = default;

/// The main queue evaluates its condition after each task, so this posts one when there is input.
void LineInput::watch(const std::stop_token& stop) {
  while (!stop.stop_requested()) {
    pollfd standardInput{STDIN_FILENO, POLLIN, 0};
    if (!waits_ || typed_) {
      ::poll(nullptr, 0, kPauseInMilliseconds);
    } else if (::poll(&standardInput, 1, kPauseInMilliseconds) == 1) {
      typed_ = true;
      mainQueue_.async([] {});
    }
  }
}

bool LineInput::wait(const std::function<bool()>& changed) {
  typed_ = false;
  waits_ = true;
  bool hasChanged = false;
  mainQueue_.runUntil([&] { return typed_ || (hasChanged = changed()); });
  waits_ = false;
  if (hasChanged) {
    tcflush(STDIN_FILENO, TCIFLUSH);  // keys meant for the former screen; no effect on a pipe
  }
  return !hasChanged;
}

std::optional<std::string> LineInput::line(const std::string& question) {
  std::string text;
  const bool there = read(question, [&text](char letter) { text += letter; });
  return there ? std::optional(text) : std::nullopt;
}

std::optional<orlix::SecretString> LineInput::secretLine(const std::string& question) {
  const Unechoed quiet;
  orlix::SecretString text;
  const bool there =
      read(question, [&text](char letter) { text.append(std::string_view(&letter, 1)); });
  return there ? std::optional(std::move(text)) : std::nullopt;
}
