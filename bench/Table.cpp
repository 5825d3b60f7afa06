// SPDX-License-Identifier: Apache-2.0

#include "bench/Table.h"

#include <algorithm>
#include <chrono>

#include <fmt/format.h>

namespace orlix::bench {

namespace {

double microsOf(int batch, const std::function<void()>& work) {
  const auto begun = std::chrono::steady_clock::now();
  for (int i = 0; i < batch; ++i) {
    work();
  }
  const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - begun;
  return took.count() / batch;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

Row compareSamples(const std::string& name, const std::string& unit, double target, Effort effort,
                   const std::function<double()>& floor, const std::function<double()>& ours) {
  fmt::print(stderr, "measuring {} ...\n", name);
  floor();
  ours();
  std::vector<double> floors;
  std::vector<double> oursOfRounds;
  std::vector<double> ratios;
  for (int round = 0; round < effort.rounds; ++round) {
    std::vector<double> floorSamples;
    std::vector<double> ourSamples;
    for (int sample = 0; sample < effort.samples; ++sample) {
      floorSamples.push_back(floor());
      ourSamples.push_back(ours());
    }
    floors.push_back(median(std::move(floorSamples)));
    oursOfRounds.push_back(median(std::move(ourSamples)));
    ratios.push_back(oursOfRounds.back() / floors.back());
  }
  const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
  return {name, unit, median(floors), median(oursOfRounds), median(ratios), *least, *most, target};
}

Row compare(const std::string& name, double target, Effort effort,
            const std::function<void()>& floor, const std::function<void()>& ours) {
  return compareSamples(
      name, "us", target, effort, [&] { return microsOf(effort.batch, floor); },
      [&] { return microsOf(effort.batch, ours); });
}

bool print(const std::vector<Row>& rows) {
  bool allMet = true;
  fmt::print("{:<56} {:>10} {:>10}    {:>6} {:>13} {:>8}\n", "", "floor", "ours", "ratio",
             "of the rounds", "at most");
  for (const Row& row : rows) {
    allMet = allMet && !row.missed();
    fmt::print("{:<56} {:>10.1f} {:>10.1f} {} {:>6.2f} {:>13} {:>8} {}\n", row.name, row.floor,
               row.ours, row.unit, row.ratio, fmt::format("{:.2f} to {:.2f}", row.least, row.most),
               row.target > 0 ? fmt::format("{:.2f}", row.target) : "",
               row.missed() ? "MISSED" : "");
  }
  return allMet;
}

}  // namespace orlix::bench
