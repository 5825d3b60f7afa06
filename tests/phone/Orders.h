// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orlix::test {

/// Names of events, in the order in which they happen.
using Order = std::vector<std::string>;

/// "a, b, c" and back.
Order parseOrder(const std::string& text);
std::string toText(const Order& order);

/// Runs the order in a process of its own and returns the rule that it broke; empty when none.
/// Events that are not possible when their turn comes are left out.
std::string ruleBrokenBy(const Order& order);

/// The same here, step by step: prints each event that happens and what is there afterwards.
std::string replayed(const Order& order);

/// The shortest order found that breaks the same rule: what comes before the colon.
Order shrunk(Order order, const std::string& rule);

struct RandomWalks {
  std::uint64_t seed = 1;
  std::uint64_t events = 0;  ///< at least so many; 0 for no such limit
  std::uint64_t walks = 0;   ///< the same
  double seconds = 0;        ///< the same
  bool reportsProgress = false;
};

struct WalkTotals {
  std::uint64_t walks = 0;
  std::uint64_t events = 0;
  std::uint64_t requests = 0;
  std::uint64_t broken = 0;               ///< walks that broke a rule
  std::vector<std::string> reports = {};  ///< one for each rule, with its shrunk order
};

/// Walks of 60 to 100 events each. The first walk of a seed is the walk with that number, the next
/// one has the number after it.
WalkTotals walkAtRandom(const RandomWalks& wanted);

/// A part of the events to be tried in every order.
struct EveryOrder {
  std::string name;
  std::string before;           ///< events that come first
  std::vector<std::string> of;  ///< the events to try, each whenever it is possible
  std::size_t depth = 0;
};

/// Every order of up to `depth` events; after those of full length the user leaves. Returns the
/// first order that breaks a rule, with the rule; empty when none does. Prints the number of
/// orders.
std::string walkEveryOrder(const EveryOrder& part);

/// These events as tasks of one moment: in every order of the first tasks that follow from them,
/// then at random, where threads overtake one another as well; in the end the user pays. Returns
/// the first rule that is broken, with the choices that led to it.
std::string meetAtOnce(const std::string& before, const Order& events);

}  // namespace orlix::test
