// SPDX-License-Identifier: Apache-2.0

#include <thread>

#include <fmt/format.h>

#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

/// The account of requests: who sent what, when, and with which session.
class Account : public SandboxTest {
 protected:
  /// Each request from `number` on, in a line of session, device, path and status.
  std::string requestsFrom(std::int64_t number) {
    std::string out;
    const json::object account = control("GET", "/control/requests");
    for (const json::value& seen : account.at("requests").get_array()) {
      const json::object& request = seen.get_object();
      if (integerOf(request, "number") < number) continue;
      EXPECT_EQ(integerOf(request, "number"), number++) << "no gap";
      EXPECT_FALSE(booleanOf(request, "underWay"));
      out += fmt::format("{} {} {} {}\n", integerOf(request, "session"), textOf(request, "device"),
                         textOf(request, "path").substr(7), integerOf(request, "status"));
    }
    return out;
  }
  /// Of the device's purchases: received, under way, most under way at once.
  std::string purchasesOf(std::string_view serial) {
    const json::object account = control("GET", "/control/purchases");
    for (const json::value& entry : account.at("devices").get_array()) {
      const json::object& device = entry.get_object();
      if (textOf(device, "device") != serial) continue;
      return fmt::format("{} {} {}", integerOf(device, "received"), integerOf(device, "underWay"),
                         integerOf(device, "mostUnderWay"));
    }
    return "";
  }
  void switchOn(json::object fault) {
    fault["path"] = "/vello/purchase/TALU";
    control("POST", "/control/faults", json::serialize(fault));
  }
};

TEST_F(Account, NamesSessionAndDeviceOfEachRequestInTheOrderOfArrivalAndNoSecret) {
  control("POST", "/control/sessions", R"({"onePerDevice":true})");
  Wallet former(sandbox_), other(sandbox_, "[p:0E]");
  former.token1 = wallet_->token1;
  former.token2 = wallet_->token2;
  other.start();
  wallet_->start();
  former.post("card/list/TALU");
  other.post("card/list/TALU");
  const json::object purchase = wallet_->purchase();
  EXPECT_EQ(wallet_->pay(purchase), "SUCCESS");
  former.token2 = other.token2;
  former.post("card/list/TALU");
  control("DELETE", "/control/sessions");
  wallet_->post("card/list/TALU");
  EXPECT_EQ(requestsFrom(2),
            "0 [p:0E] session/new/TALU 200\n"
            "1 [p:0F] session/new/TALU 200\n"
            "1 [p:0F] card/list/TALU 403\n"
            "2 [p:0E] card/list/TALU 200\n"
            "3 [p:0F] card/list/TALU 200\n"
            "3 [p:0F] purchase/TALU 200\n"
            "0  card/list/TALU 403\n"
            "3 [p:0F] card/list/TALU 403\n");
  const json::object purchases = control("GET", "/control/purchases");
  EXPECT_EQ(purchases.at("purchases").at(0).at("session"), 3);
  EXPECT_EQ(purchases.at("purchases").at(0).at("request"), 7);
  const std::string all =
      json::serialize(purchases) + json::serialize(control("GET", "/control/requests"));
  for (const std::string& secret : {wallet_->token1, wallet_->token2, other.token1,
                                    textOf(purchase.at("pinData").get_object(), "pinBlock")}) {
    EXPECT_EQ(all.find(secret), std::string::npos);
  }
  control("DELETE", "/control/requests");
  wallet_->start();
  EXPECT_EQ(requestsFrom(10), "3 [p:0F] session/new/TALU 200\n") << "no number is used twice";
}

TEST_F(Account, CountsThePurchasesOfADeviceThatAreUnderWayAtOnce) {
  switchOn({{"kind", "hold"}, {"count", -1}});
  std::vector<std::thread> threads;
  for (const char* device : {"[p:0F]", "[p:0F]", "[p:0E]"}) {
    threads.emplace_back([this, device] {
      Wallet wallet(sandbox_, device);
      wallet.start();
      wallet.pay(wallet.purchase());
    });
  }
  while (counted("purchasesReceived") < 3) std::this_thread::yield();
  EXPECT_EQ(purchasesOf("[p:0F]"), "2 2 2");
  EXPECT_EQ(purchasesOf("[p:0E]"), "1 1 1");
  control("DELETE", "/control/faults");
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(purchasesOf("[p:0F]"), "2 0 2");
  control("DELETE", "/control/purchases");
  EXPECT_EQ(purchasesOf("[p:0F]"), "0 0 0");
}

TEST_F(Account, APurchaseIsNoLongerUnderWayOnceItsClientKnowsHowItEnded) {
  const json::object purchase = wallet_->purchase("FIXED-25", "2222", "25.00", "");
  Wallet other(sandbox_);  // The same device over another connection.
  other.start();
  std::int64_t received = 0;
  for (const json::object& fault :
       std::vector<json::object>{{{"kind", "last-answer"}},
                                 {{"kind", "status"}, {"status", 403}},
                                 {{"kind", "hang-up"}},
                                 {{"kind", "cut-in-body"}},
                                 {{"kind", "trickle"}, {"milliseconds", 0}},
                                 {{"kind", "delay"}, {"milliseconds", 1}}}) {
    switchOn(fault);
    for (Wallet* wallet : {&*wallet_, &other, &*wallet_, &other}) wallet->pay(purchase);
    EXPECT_EQ(purchasesOf("[p:0F]"), fmt::format("{} 0 1", received += 4)) << fault;
  }
}

}  // namespace
}  // namespace orlix::sandbox::test
