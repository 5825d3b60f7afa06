// SPDX-License-Identifier: Apache-2.0

// Walks at random through whole flows, for longer than the tests do; scripts/orders runs it.

#include "tests/phone/Orders.h"

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

#include "tests/phone/Walk.h"

namespace {

int usage() {
  std::cerr << "usage: orders [--events N | --walks N] [--seed S] [--rules LETTERS] [--ignore "
               "TEXT] [--without TEXT] [--replay "
               "\"EVENT, EVENT\"]\n";
  return 2;
}

int replay(const std::string& text) {
  const std::string rule = orlix::test::replayed(orlix::test::parseOrder(text));
  std::cout << (rule.empty() ? "no rule is broken" : rule) << "\n";
  return rule.empty() ? 0 : 1;
}

}  // namespace

int main(int count, char** words) {
  orlix::test::RandomWalks wanted;
  wanted.events = 1'000'000;
  wanted.reportsProgress = true;
  for (int i = 1; i < count; i += 2) {
    const std::string option = words[i];
    if (i + 1 == count) {
      return usage();
    }
    const std::string value = words[i + 1];
    if (option == "--replay") {
      return replay(value);
    }
    if (option == "--without") {
      orlix::test::Walk::excluded.push_back(value);
      continue;
    }
    if (option == "--ignore") {
      orlix::test::Walk::ignored.push_back(value);
      continue;
    }
    if (option == "--rules") {
      orlix::test::Walk::rules = value;
      continue;
    }
    char* rest = nullptr;
    const std::uint64_t number = std::strtoull(value.c_str(), &rest, 10);
    if (*rest != '\0' || value.empty()) {
      return usage();
    }
    if (option == "--events") {
      wanted.events = number;
    } else if (option == "--walks") {
      wanted.walks = number;
      wanted.events = 0;
    } else if (option == "--seed") {
      wanted.seed = number;
    } else {
      return usage();
    }
  }
  std::cout << "seed " << wanted.seed << "\n";
  const orlix::test::WalkTotals totals = orlix::test::walkAtRandom(wanted);
  for (const std::string& report : totals.reports) {
    std::cout << report << "\n";
  }
  std::cout << totals.walks << " walks, " << totals.events << " events, " << totals.requests
            << " requests sent, " << totals.broken << " walks broke a rule\n";
  return totals.broken == 0 ? 0 : 1;
}
