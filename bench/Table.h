#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orlix::bench {

/// One comparison: what the library takes, and what its floor, the bare library calls, takes.
struct Row {
  std::string name;
  double floorMicros = 0;
  double oursMicros = 0;
  double spread = 0;  ///< of the ratio over the rounds: largest minus smallest
  double ratio = 0;   ///< median over the rounds
  double target = 0;  ///< 0: none
};

/// How a row is measured.
struct Effort {
  int rounds = 5;
  int samples = 100;  ///< in a round, of each side
  int batch = 1;      ///< calls in a sample; more than one where the clock is too coarse for one
};

/// Times both in turns, sample by sample, so that whatever else the machine does falls on both
/// alike; a sample that was interrupted does not show, since a round takes the median. Each round
/// gives one ratio; the row has their median.
Row compare(const std::string& name, double target, Effort effort,
            const std::function<void()>& floor, const std::function<void()>& ours);

/// Prints the rows. False when a target was missed.
bool print(const std::vector<Row>& rows);

}  // namespace orlix::bench
