// SPDX-License-Identifier: Apache-2.0

#include <iostream>
#include <string>

#include <gtest/gtest.h>

#include "tests/phone/Orders.h"

namespace orlix::test {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint64_t kWalks = 80;  // a sanitizer's build is ten times slower
#else
constexpr std::uint64_t kWalks = 800;
#endif

}  // namespace

/// The same walks in each run, so that a change that breaks one is the change that is being tested.
/// scripts/orders goes further, from any seed.
TEST(RandomWalks, BreakNoRule) {
  RandomWalks wanted;
  wanted.seed = 20'782'000'000;
  wanted.walks = kWalks;
  std::cout << "seed " << wanted.seed << "\n";
  const WalkTotals totals = walkAtRandom(wanted);
  std::cout << totals.walks << " walks, " << totals.events << " events, " << totals.requests
            << " requests\n";
  for (const std::string& report : totals.reports) {
    ADD_FAILURE() << report;
  }
}

}  // namespace orlix::test
