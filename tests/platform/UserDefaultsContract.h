#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/UserDefaults.h"

namespace orlix {

/// Rules that every key/value store keeps. `Platform` is made anew for each test and offers an
/// empty store: UserDefaults& userDefaults();
template <class Platform>
class UserDefaultsContract : public testing::Test {
 protected:
  Platform platform;
  UserDefaults& store = platform.userDefaults();
};
TYPED_TEST_SUITE_P(UserDefaultsContract);

TYPED_TEST_P(UserDefaultsContract, WhatWasNeverStoredIsAbsent) {
  EXPECT_EQ(this->store.dataForKey("live.data"), std::nullopt);
  EXPECT_EQ(this->store.stringForKey("live.data"), std::nullopt);
  EXPECT_EQ(this->store.integerForKey("live.data"), 0);
}

TYPED_TEST_P(UserDefaultsContract, GivesBackEveryValueAsItWas) {
  Bytes every(256);
  for (std::size_t i = 0; i < every.size(); ++i) {
    every[i] = static_cast<std::uint8_t>(i);
  }
  for (const Bytes& value : {Bytes{}, Bytes{0}, every, Bytes(1'000'000, 0xA5)}) {
    this->store.setData("data", value);
    EXPECT_EQ(this->store.dataForKey("data"), value);
  }
  using namespace std::string_literals;
  for (const std::string& value : {""s, "a"s, "nul \0 inside"s, "Ægir ☃ 42"s, "'; DROP TABLE"s}) {
    this->store.setString("text", value);
    EXPECT_EQ(this->store.stringForKey("text"), value);
  }
  for (const std::int64_t value : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1},
                                   std::int64_t{0}, std::numeric_limits<std::int64_t>::max()}) {
    this->store.setInteger("number", value);
    EXPECT_EQ(this->store.integerForKey("number"), value);
  }
}

TYPED_TEST_P(UserDefaultsContract, KeysAreToldApartToTheLetter) {
  const std::vector<std::string> keys{"live.data", "test.data", "Live.data", "live.data ", "", "ø"};
  for (const std::string& key : keys) {
    this->store.setString(key, "of " + key);
  }
  for (const std::string& key : keys) {
    EXPECT_EQ(this->store.stringForKey(key), "of " + key);
  }
}

TYPED_TEST_P(UserDefaultsContract, AValueOfAnotherTypeIsAbsentAndIsReplaced) {
  this->store.setString("key", "12");
  EXPECT_EQ(this->store.integerForKey("key"), 0);
  EXPECT_EQ(this->store.dataForKey("key"), std::nullopt);
  this->store.setInteger("key", 12);
  EXPECT_EQ(this->store.integerForKey("key"), 12);
  EXPECT_EQ(this->store.stringForKey("key"), std::nullopt);
  this->store.setData("key", {1, 2});
  EXPECT_EQ(this->store.dataForKey("key"), (Bytes{1, 2}));
  EXPECT_EQ(this->store.integerForKey("key"), 0);
}

TYPED_TEST_P(UserDefaultsContract, ServesManyThreads) {
  constexpr int threads = 4;
  constexpr std::int64_t rounds = 25;
  std::vector<std::thread> all;
  for (int i = 0; i < threads; ++i) {
    all.emplace_back([this, key = "of thread " + std::to_string(i)] {
      for (std::int64_t round = 1; round <= rounds; ++round) {
        this->store.setInteger(key, round);
        EXPECT_EQ(this->store.integerForKey(key), round);
        this->store.setData("shared", Bytes(100, static_cast<std::uint8_t>(round)));
        const std::optional<Bytes> shared = this->store.dataForKey("shared");
        ASSERT_TRUE(shared.has_value());
        EXPECT_EQ(*shared, Bytes(100, shared->at(0))) << "never half of one and half of another";
      }
    });
  }
  for (std::thread& thread : all) {
    thread.join();
  }
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, WhatWasNeverStoredIsAbsent,
                            GivesBackEveryValueAsItWas, KeysAreToldApartToTheLetter,
                            AValueOfAnotherTypeIsAbsentAndIsReplaced, ServesManyThreads);

}  // namespace orlix
