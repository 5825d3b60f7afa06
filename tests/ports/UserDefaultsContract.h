// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ports/UserDefaults.h"

namespace orlix {

/// Rules that every key/value store keeps. `Platform` is made for each test and offers an
/// empty store: UserDefaults& userDefaults();
template <class Platform>
class UserDefaultsContract : public testing::Test {
 protected:
  Platform platform;
  UserDefaults& store = platform.userDefaults();
};
TYPED_TEST_SUITE_P(UserDefaultsContract);

TYPED_TEST_P(UserDefaultsContract, GivesBackEveryValueAsItWasUnderItsKeyToTheLetter) {
  using namespace std::string_literals;
  const std::vector<std::string> values{
      "",       "live.data",     "Live.data", "live.data ", "nul \0 in"s,
      "Ægir ☃", "'; DROP TABLE", "\xFF\xFE",  "12",         std::string(1'000'000, 'x')};
  for (const std::string& value : values) {
    this->store.setValue(value.substr(0, 20), value);
    this->store.setValue(value.substr(0, 20) + " data", toBytes(value));
  }
  for (const std::string& value : values) {
    EXPECT_EQ(this->store.stringForKey(value.substr(0, 20)), value);
    EXPECT_EQ(this->store.dataForKey(value.substr(0, 20) + " data"), toBytes(value));
  }
  for (const std::int64_t value : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1},
                                   std::int64_t{0}, std::numeric_limits<std::int64_t>::max()}) {
    this->store.setValue("number", value);
    EXPECT_EQ(this->store.integerForKey("number"), value);
  }
}

TYPED_TEST_P(UserDefaultsContract, WhatIsMissingOrOfAnotherTypeIsAbsentAndIsReplaced) {
  EXPECT_EQ(this->store.dataForKey("key"), std::nullopt);
  EXPECT_EQ(this->store.integerForKey("key"), 0);
  this->store.setValue("key", "12");
  EXPECT_EQ(this->store.integerForKey("key"), 0);
  EXPECT_EQ(this->store.dataForKey("key"), std::nullopt);
  this->store.setValue("key", 12);
  EXPECT_EQ(this->store.stringForKey("key"), std::nullopt);
  this->store.setValue("key", Bytes{1, 2});
  EXPECT_EQ(this->store.dataForKey("key"), (Bytes{1, 2}));
  EXPECT_EQ(this->store.integerForKey("key"), 0);
}

TYPED_TEST_P(UserDefaultsContract, ManyThreadsWriteAndReadAtOnceAndEachFindsItsOwn) {
  const auto work = [this](int worker) {
    const std::string own = "own " + std::to_string(worker);
    for (int i = 0; i < 50; ++i) {
      this->store.setValue(own, i);
      this->store.setValue("shared", Bytes(1000, static_cast<std::uint8_t>(worker)));
      EXPECT_EQ(this->store.integerForKey(own), i);
      const Bytes shared = this->store.dataForKey("shared").value();
      EXPECT_EQ(shared, Bytes(1000, shared.at(0))) << "whole, whoever wrote it";
    }
  };
  std::vector<std::jthread> workers;
  for (int worker = 0; worker < 8; ++worker) {
    workers.emplace_back(work, worker);
  }
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, GivesBackEveryValueAsItWasUnderItsKeyToTheLetter,
                            WhatIsMissingOrOfAnotherTypeIsAbsentAndIsReplaced,
                            ManyThreadsWriteAndReadAtOnceAndEachFindsItsOwn);

}  // namespace orlix
