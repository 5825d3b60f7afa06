// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/Interleavings.h"

#include <stdexcept>

namespace orlix {

std::size_t Interleavings::run(const std::function<void(const Chooser&)>& scenario) {
  path_.clear();
  complete_ = false;
  failed_ = false;
  std::size_t runs = 0;
  while (runs < bounds_.runs) {
    position_ = 0;
    ++runs;
    scenario([this](std::size_t candidates) { return choose(candidates); });
    if (position_ < path_.size()) {
      throw std::logic_error("Interleavings: the scenario ended early; choices: " + choices());
    }
    if (!advance()) {
      complete_ = true;
      break;
    }
  }
  return runs;
}

std::size_t Interleavings::choose(std::size_t candidates) {
  if (failed_) {
    return 0;  // the scenario's host still has to shut down
  }
  if (position_ == path_.size()) {
    if (path_.size() == bounds_.depth) {
      return 0;
    }
    path_.push_back({0, candidates});
  }
  const Choice& choice = path_[position_];
  if (choice.candidates != candidates) {
    failed_ = true;
    throw std::logic_error("Interleavings: the scenario differs from run to run; choices: " +
                           choices());
  }
  ++position_;
  return choice.taken;
}

/// Advances to the next path: the last choice with an untried alternative takes it.
bool Interleavings::advance() {
  while (!path_.empty()) {
    Choice& last = path_.back();
    if (++last.taken < last.candidates) {
      return true;
    }
    path_.pop_back();
  }
  return false;
}

std::string Interleavings::choices() const {
  std::string text;
  for (const Choice& choice : path_) {
    text += (text.empty() ? "" : " ") + std::to_string(choice.taken) + "/" +
            std::to_string(choice.candidates);
  }
  return text;
}

}  // namespace orlix
