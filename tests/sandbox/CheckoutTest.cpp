#include <gtest/gtest.h>

#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

/// A sandbox where every device is enrolled, and one device with an open session.
class Checkout : public testing::Test {
 protected:
  Checkout() : sandbox_({.enrolled = true}) {
    sandbox_.start();
    wallet_.emplace(sandbox_);
    EXPECT_EQ(wallet_->start().status, 200);
  }

  std::string statusOf(const json::object& purchase) {
    return textOf(wallet_->post("/vello/purchase/TALU", purchase).body, "status");
  }

  Sandbox sandbox_;
  std::optional<Wallet> wallet_;
};

TEST_F(Checkout, PinPurchaseIsPaidOnceAndItsReceiptComes) {
  const auto body = wallet_->withPin(wallet_->purchase("FIXED-25", "1111", "25.00"), "1234");
  const Reply paid = wallet_->post("/vello/purchase/TALU", body);
  ASSERT_EQ(textOf(paid.body, "status"), "SUCCESS") << paid.text;
  const Reply receipt = wallet_->post("/vello/receipt/poll/TALU",
                                      {{"transactionId", integerOf(paid.body, "transactionId")}});
  EXPECT_EQ(textOf(receipt.body, "status"), "SUCCESS") << receipt.text;
  EXPECT_EQ(textOf(receipt.body, "amount"), "25.00");
  EXPECT_EQ(statusOf(wallet_->withPin(body, "4321")), "INVALID_PASSWORD");
}

}  // namespace
}  // namespace orlix::sandbox::test
