#include <chrono>
#include <iostream>
#include <string>

#include <gtest/gtest.h>

#include "tests/phone/Orders.h"

namespace orlix::test {

TEST(RandomWalks, BreakNoRule) {
  RandomWalks wanted;
  // Other walks every day, the same ones within a day; scripts/orders repeats a seed.
  wanted.seed = static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::days>(
                                               std::chrono::system_clock::now().time_since_epoch())
                                               .count()) *
                1'000'000;
  wanted.seconds = 4;
  std::cout << "seed " << wanted.seed << "\n";
  const WalkTotals totals = walkAtRandom(wanted);
  std::cout << totals.walks << " walks, " << totals.events << " events, " << totals.requests
            << " requests\n";
  for (const std::string& report : totals.reports) {
    ADD_FAILURE() << report;
  }
}

}  // namespace orlix::test
