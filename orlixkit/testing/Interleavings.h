// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "orlixkit/testing/VirtualWorld.h"

namespace orlix {

/// Bounds of a search.
struct InterleavingBounds {
  std::size_t depth = 8;    ///< choices of one run that are varied; later ones are 0
  std::size_t runs = 5000;  ///< maximum number of runs
};

/// Runs a scenario once for every order of its tasks, timers and events, within the bounds, depth
/// first. The scenario makes its own MemoryHost with the given chooser and must be deterministic
/// for the same choices.
///
///     Interleavings search({.depth = 10});
///     search.run([](const Chooser& chooser) {
///       MemoryHost host({.chooser = chooser, .preemptive = true});
///       …
///     });
///     EXPECT_TRUE(search.complete());
class Interleavings {
 public:
  explicit Interleavings(InterleavingBounds bounds = {}) : bounds_(bounds) {}

  /// Returns how many runs it took. Throws std::logic_error when the scenario offers other
  /// candidates after the same choices. What the scenario throws ends the search.
  std::size_t run(const std::function<void(const Chooser&)>& scenario);

  /// True when every order within the depth was tried.
  bool complete() const { return complete_; }
  /// The fixed choices of the current run, such as "0/2 1/3" (all others are 0): pass it to
  /// SCOPED_TRACE at the beginning of the scenario.
  std::string choices() const;

 private:
  struct Choice {
    std::size_t taken = 0;
    std::size_t candidates = 0;
  };
  std::size_t choose(std::size_t candidates);
  bool advance();

  InterleavingBounds bounds_;
  std::vector<Choice> path_;
  std::size_t position_ = 0;
  bool complete_ = false;
  bool failed_ = false;
};

}  // namespace orlix
