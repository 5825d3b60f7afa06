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

Row compare(const std::string& name, double target, Effort effort,
            const std::function<void()>& floor, const std::function<void()>& ours) {
  fmt::print(stderr, "measuring {} ...\n", name);
  floor();
  ours();
  std::vector<double> floors;
  std::vector<double> ourTimes;
  std::vector<double> ratios;
  for (int round = 0; round < effort.rounds; ++round) {
    std::vector<double> floorSamples;
    std::vector<double> ourSamples;
    for (int sample = 0; sample < effort.samples; ++sample) {
      floorSamples.push_back(microsOf(effort.batch, floor));
      ourSamples.push_back(microsOf(effort.batch, ours));
    }
    floors.push_back(median(std::move(floorSamples)));
    ourTimes.push_back(median(std::move(ourSamples)));
    ratios.push_back(ourTimes.back() / floors.back());
  }
  const auto [least, most] = std::minmax_element(ratios.begin(), ratios.end());
  return {name, median(floors), median(ourTimes), *most - *least, median(ratios), target};
}

bool print(const std::vector<Row>& rows) {
  bool allMet = true;
  fmt::print("{:<52} {:>11} {:>11} {:>7} {:>7} {:>8}\n", "", "floor us", "ours us", "ratio", "+-",
             "at most");
  for (const Row& row : rows) {
    const bool missed = row.target > 0 && row.ratio > row.target;
    allMet = allMet && !missed;
    fmt::print("{:<52} {:>11.1f} {:>11.1f} {:>7.2f} {:>7.2f} {:>8} {}\n", row.name, row.floorMicros,
               row.oursMicros, row.ratio, row.spread / 2,
               row.target > 0 ? fmt::format("{:.2f}", row.target) : "", missed ? "MISSED" : "");
  }
  return allMet;
}

}  // namespace orlix::bench
