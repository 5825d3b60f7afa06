#pragma once

#include <optional>

#include <gtest/gtest.h>

#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {

/// A sandbox where every device is enrolled, and one device with an open session.
class EnrolledTest : public testing::Test {
 protected:
  EnrolledTest() : sandbox_({.enrolled = true, .onEvent = events_.sink()}) {
    sandbox_.start();
    wallet_.emplace(sandbox_);
    EXPECT_EQ(wallet_->start().status, 200);
  }

  void switchOn(const json::object& fault) {
    sandbox_.control("POST", "/control/faults", json::serialize(fault));
  }

  json::object control(std::string_view path) {
    return parseObject(sandbox_.control("GET", path)).value();
  }

  /// "status" of the purchase's answer.
  std::string pay(const json::object& purchase) {
    return textOf(wallet_->post("/vello/purchase/TALU", purchase).body, "status");
  }

  json::object pinPurchase(std::string_view code = "FIXED-25", std::string_view amount = "25.00",
                           std::string_view pin = "1234") {
    return wallet_->withPin(wallet_->purchase(code, "1111", amount), pin);
  }

  Events events_;
  Sandbox sandbox_;
  std::optional<Wallet> wallet_;
};

}  // namespace orlix::sandbox::test
