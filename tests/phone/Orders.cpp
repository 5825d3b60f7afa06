// SPDX-License-Identifier: Apache-2.0

#include "tests/phone/Orders.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iostream>
#include <map>
#include <random>
#include <unistd.h>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include "orlixkit/testing/Interleavings.h"
#include "tests/phone/Walk.h"

namespace orlix::test {

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr unsigned kPatience = 20;  ///< seconds that one walk may take

/// What a child process leaves for its parent, also when it crashes.
struct Slate {
  std::uint64_t walks;
  std::uint64_t events;
  std::uint64_t requests;
  std::uint64_t seed;
  bool done;
  char order[16'384];
  char rule[2'048];

  template <std::size_t size>
  static void write(char (&field)[size], const std::string& text) {
    std::strncpy(field, text.c_str(), size - 1);
  }
  void note(const std::string& event) {
    const std::size_t used = std::strlen(order);
    const std::string more = (used == 0 ? "" : ", ") + event;
    std::strncpy(order + used, more.c_str(), sizeof order - 1 - used);
  }
};

/// Memory that parent and child share.
class SharedSlate {
 public:
  SharedSlate()
      : slate_(static_cast<Slate*>(mmap(nullptr, sizeof(Slate), PROT_READ | PROT_WRITE,
                                        MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
  ~SharedSlate() { munmap(slate_, sizeof(Slate)); }
  SharedSlate(const SharedSlate&) = delete;
  SharedSlate& operator=(const SharedSlate&) = delete;
  Slate* operator->() const { return slate_; }
  Slate& operator*() const { return *slate_; }

 private:
  Slate* slate_;
};

/// Runs the work in a child process. Returns how it crashed; empty when it did not.
template <class Work>
std::string inChild(const Work& work) {
  std::cout.flush();
  const pid_t child = fork();
  if (child == 0) {
    work();
    std::exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) {
    return WTERMSIG(status) == SIGALRM ? "(f) the walk does not come to an end"
                                       : fmt::format("a crash: {}", strsignal(WTERMSIG(status)));
  }
  return WEXITSTATUS(status) == 0 ? "" : "a crash: see the output above";
}

void walkInOrder(Walk& walk, const Order& order) {
  for (const std::string& event : order) {
    if (walk.broken().empty()) {
      walk.happen(event);
    }
  }
  if (walk.broken().empty()) {
    walk.end();
  }
}

const Walk::Offer& chosen(const std::vector<Walk::Offer>& offers, std::mt19937_64& lot) {
  double total = 0;
  for (const Walk::Offer& one : offers) {
    total += one.weight;
  }
  double rest = total * static_cast<double>(lot() % 1'000'003) / 1'000'003;
  for (const Walk::Offer& one : offers) {
    rest -= one.weight;
    if (rest < 0) {
      return one;
    }
  }
  return offers.back();
}

void walkOnce(Slate& slate) {
  std::mt19937_64 lot(slate.seed);
  Walk walk;
  slate.order[0] = '\0';
  const std::size_t length = 60 + lot() % 41;
  for (std::size_t i = 0; i < length && walk.broken().empty(); ++i) {
    const std::vector<Walk::Offer> offers = walk.offers();
    const Walk::Offer& one = chosen(offers, lot);
    const bool settles = lot() % 12 != 0;
    slate.note(one.name + (settles ? "" : " &"));
    walk.happen(one, settles);
    ++slate.events;
  }
  if (walk.broken().empty()) {
    const std::string last = lot() % 3 == 0 ? "leave in the end" : "pay in the end";
    slate.note(last);
    walk.happen(last);
    ++slate.events;
  }
  if (walk.broken().empty()) {
    walk.end();
  }
  slate.requests += walk.requests();
  Slate::write(slate.rule, walk.broken());
}

std::string keyOf(const std::string& rule) { return rule.substr(0, rule.find(": ")); }

}  // namespace

Order parseOrder(const std::string& text) {
  Order order;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t to = std::min(text.find(", ", from), text.size());
    order.push_back(text.substr(from, to - from));
    from = to + 2;
  }
  return order;
}

std::string toText(const Order& order) { return fmt::format("{}", fmt::join(order, ", ")); }

std::string ruleBrokenBy(const Order& order) {
  SharedSlate slate;
  const std::string crash = inChild([&] {
    alarm(kPatience);
    Walk walk;
    walkInOrder(walk, order);
    Slate::write(slate->rule, walk.broken());
  });
  return crash.empty() ? slate->rule : crash;
}

std::string replayed(const Order& order) {
  Walk walk;
  for (const std::string& event : order) {
    if (walk.broken().empty()) {
      const bool happened = walk.happen(event);
      std::cout << (happened ? "" : "(not possible) ") << event << "\n    " << walk.picture()
                << std::endl;
    }
  }
  if (walk.broken().empty()) {
    walk.end();
  }
  return walk.broken();
}

Order shrunk(Order order, const std::string& rule) {
  const auto stillBreaks = [&rule](const Order& shorter) {
    return keyOf(ruleBrokenBy(shorter)) == keyOf(rule);
  };
  if (!stillBreaks(order)) {
    return order;
  }
  for (std::size_t size = order.size() / 2; size > 0;) {
    bool found = false;
    for (std::size_t from = 0; from < order.size();) {
      Order shorter = order;
      const auto first = shorter.begin() + static_cast<std::ptrdiff_t>(from);
      const std::size_t last = std::min(from + size, order.size());
      shorter.erase(first, shorter.begin() + static_cast<std::ptrdiff_t>(last));
      if (stillBreaks(shorter)) {
        order = shorter;
        found = true;
      } else {
        from += size;
      }
    }
    size = found && size == 1 ? 1 : size / 2;
  }
  for (std::string& event : order) {
    if (event.ends_with(" &")) {
      Order calmer = order;
      std::string& same = calmer[static_cast<std::size_t>(&event - order.data())];
      same.erase(same.size() - 2);
      if (stillBreaks(calmer)) {
        event = same;
      }
    }
  }
  return order;
}

WalkTotals walkAtRandom(const RandomWalks& wanted) {
  SharedSlate slate;
  slate->seed = wanted.seed - 1;
  WalkTotals totals;
  std::map<std::string, std::uint64_t> rules;
  const auto start = SteadyClock::now();
  const auto isEnough = [&] {
    const std::chrono::duration<double> spent = SteadyClock::now() - start;
    return (wanted.events > 0 && slate->events >= wanted.events) ||
           (wanted.walks > 0 && slate->walks >= wanted.walks) ||
           (wanted.seconds > 0 && spent.count() >= wanted.seconds);
  };
  auto next = start;
  while (!isEnough()) {
    slate->rule[0] = '\0';
    const std::string crash = inChild([&] {
      while (!isEnough() && slate->rule[0] == '\0') {
        ++slate->seed;
        ++slate->walks;
        alarm(kPatience);
        walkOnce(*slate);
        if (wanted.reportsProgress && SteadyClock::now() >= next) {
          next = SteadyClock::now() + std::chrono::seconds(5);
          fmt::print(stderr, "{} walks, {} events, {} requests\n", slate->walks, slate->events,
                     slate->requests);
        }
      }
    });
    const std::string rule = crash.empty() ? slate->rule : crash;
    if (!rule.empty()) {
      ++totals.broken;
      if (++rules[keyOf(rule)] == 1) {
        const Order order = shrunk(parseOrder(slate->order), rule);
        totals.reports.push_back(
            fmt::format("{}\n  walk {}: {}", ruleBrokenBy(order), slate->seed, toText(order)));
        if (wanted.reportsProgress) {
          fmt::print(stderr, "{}\n", totals.reports.back());
        }
      }
    }
  }
  totals.walks = slate->walks;
  totals.events = slate->events;
  totals.requests = slate->requests;
  for (const auto& [rule, times] : rules) {
    if (wanted.reportsProgress) {
      fmt::print("{:6} x {}\n", times, rule);
    }
  }
  return totals;
}

namespace {

/// Depth first; every order runs from its beginning.
struct Search {
  const EveryOrder& part;
  Order order;
  std::size_t orders = 0;
  std::string found = {};

  void visit(std::size_t left) {
    ++orders;
    std::vector<std::string> next;
    {
      Walk walk;
      for (const std::string& event : order) {
        walk.happen(event);
      }
      if (left == 0) {
        walk.goOn(false);
      } else {
        for (const Walk::Offer& one : walk.offers()) {
          if (std::count(part.of.begin(), part.of.end(), one.name) > 0) {
            next.push_back(one.name);
          }
        }
      }
      if (walk.broken().empty()) {
        walk.end();
      }
      if (!walk.broken().empty()) {
        found = walk.broken() + "\n  " + toText(order);
      }
    }
    for (const std::string& event : next) {
      if (found.empty()) {
        order.push_back(event);
        visit(left - 1);
        order.pop_back();
      }
    }
  }
};

}  // namespace

std::string walkEveryOrder(const EveryOrder& part) {
  Search search{part, parseOrder(part.before)};
  search.visit(part.depth);
  std::cout << search.orders << " orders of " << part.name << "\n";
  return search.found;
}

std::string meetAtOnce(const std::string& before, const Order& events) {
  std::string found;
  const auto scenario = [&](const Chooser& chooser, bool preemptive, const std::string& choices) {
    bool open = false;
    Walk walk([&](std::size_t count) { return open ? chooser(count) : 0; }, preemptive);
    for (const std::string& event : parseOrder(before)) {
      walk.happen(event);
    }
    open = true;
    walk.happenAtOnce(events);
    walk.goOn(true);
    if (walk.broken().empty()) {
      walk.end();
    }
    if (found.empty() && !walk.broken().empty()) {
      found = walk.broken() + "\n  " + toText(events) + "; choices " + choices;
    }
  };
  Interleavings search({.depth = 4});
  search.run([&](const Chooser& chooser) { scenario(chooser, false, search.choices()); });
  for (unsigned seed = 0; seed < 50; ++seed) {
    std::mt19937 lot(seed);
    scenario([&lot](std::size_t count) { return lot() % count; }, true,
             "of seed " + std::to_string(seed));
  }
  return found;
}

}  // namespace orlix::test
