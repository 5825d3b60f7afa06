// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orlix::bench {

/// One comparison: what the library takes, and what its floor, the bare library calls, takes.
struct Row {
  std::string name;
  std::string unit;
  double floor = 0;
  double ours = 0;
  double ratio = 0;   ///< median over the rounds
  double least = 0;   ///< smallest ratio of a round
  double most = 0;    ///< largest ratio of a round
  double target = 0;  ///< 0: none

  bool missed() const { return target > 0 && ratio > target; }
};

/// How a row is measured.
struct Effort {
  int rounds = 5;
  int samples = 100;  ///< in a round, of each side
  int batch = 1;      ///< calls in a sample; more than one where the clock is too coarse for one
};

/// Samples both alternately, so that other load affects both alike; the median of a round hides
/// interrupted samples. Each round yields one ratio; the row has their median.
Row compareSamples(const std::string& name, const std::string& unit, double target, Effort effort,
                   const std::function<double()>& floor, const std::function<double()>& ours);

/// The same, a sample being the microseconds that a call takes.
Row compare(const std::string& name, double target, Effort effort,
            const std::function<void()>& floor, const std::function<void()>& ours);

/// Prints the rows. False when a target was missed.
bool print(const std::vector<Row>& rows);

}  // namespace orlix::bench
