// SPDX-License-Identifier: Apache-2.0

// Whatever clients send, and for however long: what is remembered has a limit.

#include <fmt/format.h>

#include "sandbox/State.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

constexpr std::int64_t kMore = static_cast<std::int64_t>(kMostKept) + 5;

TEST(Bounds, SessionsDevicesAndWalletsKeepTheLatest) {
  State state("");
  for (std::int64_t i = 1; i <= kMore; ++i) {
    const std::string name = std::to_string(i);
    state.sessions.open(name, "");
    state.devices.put({.serial = name});
    state.wallets.ensure(name, i == 1);
    if (i == 1) state.devices.putSms(name, {.msisdn = "27821112222", .code = "1"});
  }
  EXPECT_EQ(state.sessions.count(), kMostKept);
  EXPECT_EQ(state.devices.list(kMore).size(), kMostKept);
  EXPECT_EQ(state.wallets.list(kMore).size(), kMostKept);
  EXPECT_FALSE(state.devices.find("5") || state.devices.pendingSms("1"));
  EXPECT_TRUE(state.devices.find("6") && state.wallets.has("6"));
  EXPECT_FALSE(state.wallets.has("5"));
  EXPECT_TRUE(state.wallets.cards("1").empty());
  state.devices.put({.serial = "6"});
  state.devices.put({.serial = "another"});
  EXPECT_TRUE(state.devices.find("6")) << "it was there a moment ago";
  EXPECT_FALSE(state.devices.find("7"));
}

TEST(Bounds, PurchasesAreBoundedInNumberInBytesAndByDevice) {
  Purchases purchases;
  const auto receive = [&](const std::string& device, size_t bytes) {
    purchases.received(
        {.origin = {.device = device}, .bytes = bytes, .body = json::object{{"code", "C"}}});
    purchases.ended(device);
    purchases.countTry(device, "C");
  };
  const auto listed = [&](const char* name) {
    return purchases.account().at(name).get_array().size();
  };
  for (std::int64_t i = 1; i <= kMore; ++i) receive(std::to_string(i), 100);
  EXPECT_EQ(listed("purchases"), kMostKept);
  EXPECT_LE(listed("devices"), kMostKept);
  EXPECT_EQ(purchases.receivedCount(), kMore);
  receive("large", kLongestKeptBody + 1);
  EXPECT_TRUE(purchases.account().at("purchases").get_array().back().at("body").is_null());
  for (int i = 0; i < 300; ++i) receive("many", kLongestKeptBody);
  EXPECT_EQ(listed("purchases"), 256U) << "16 MB";
}

TEST(Bounds, TextsOfARequestAreCut) {
  const std::string many = std::string(kLongestKeptBody, 'x');
  SeenRequests seen;
  const std::int64_t number = seen.arrived(
      {.method = many, .path = many, .headers = {{"Content-Type", many}}}, {}, {}, Moment{});
  seen.decided(number, {.status = 400, .reason = many});
  EXPECT_LT(json::serialize(seen.whole(number).value()).size(), 5 * kLongestKeptText);
  json::array numbers;
  for (int i = 0; i < 20'000; ++i) numbers.emplace_back("4000001000001111");
  const MaskedBody body =
      maskBody(json::serialize(json::object{{"numbers", numbers}}), "application/json", {});
  EXPECT_TRUE(body.cut);
  EXPECT_LE(body.bytes(), 2 * kLongestKeptBody);
  EXPECT_EQ(body.text.find("4000001"), std::string::npos);
}

class WalletsOnDemand : public SandboxTest {
 protected:
  std::string refusal(const char* method, const char* path, const std::string& body) {
    try {
      sandbox_.control(method, path, body);
    } catch (const std::runtime_error& failure) {
      return failure.what();
    }
    return "";
  }
};

TEST_F(WalletsOnDemand, AFullWalletTakesNoMoreCards) {
  const std::string name =
      textOf(control("GET", "/control/wallets").at("wallets").at(0).get_object(), "wallet");
  const auto add = [&](int number) {
    const json::object wish{{"wallet", name}, {"number", fmt::format("400000100000{:04}", number)}};
    return refusal("POST", "/control/wallets/cards", json::serialize(wish));
  };
  int number = 0;
  while (add(number).empty()) ++number;
  EXPECT_NE(add(number).find("full"), std::string::npos);
  const json::object cards = wallet_->post("card/list/TALU").body;
  EXPECT_EQ(cards.at("cards").get_array().size(), 100U);
}

TEST_F(WalletsOnDemand, ARemovedDeviceLosesItsSessionsAndItsTokenOnly) {
  Wallet other(sandbox_, "[p:0E]");
  other.start();
  const json::object wallets = control("GET", "/control/wallets");
  control("DELETE", "/control/devices", R"({"device":"[p:0F]"})");
  EXPECT_EQ(wallet_->post("card/list/TALU").status, 403);
  EXPECT_EQ(other.post("card/list/TALU").status, 200);
  const json::object now = control("GET", "/control/wallets");
  EXPECT_EQ(now.at("devices").get_array().size(), 1U);
  EXPECT_EQ(now.at("wallets"), wallets.at("wallets"));
  EXPECT_NE(refusal("DELETE", "/control/devices", R"({"device":"[p:0F]"})"), "");
}

TEST_F(WalletsOnDemand, ARefusalNamesWhatIsPossible) {
  struct Row {
    const char *method, *path, *body, *names;
  };
  for (const Row& row : std::vector<Row>{
           {"POST", "/control/faults", R"({"kind":"none"})", "status, redirect, forget-session"},
           {"POST", "/control/faults", R"({"kind":"hold","paht":"*"})", R"(\"kind\", \"path\")"},
           {"POST", "/control/faults", R"({"kind":"huge-body","bytes":-1})", "from 0 to 500000000"},
           {"POST", "/control/start", R"({"answer":"none"})", "normal, notice, refused"},
           {"POST", "/control/cards", R"({"bin":"499999999","pni":"1"})", "pin (string)"},
           {"POST", "/control/cards", R"({"bin":"499999999","pin":"1"})", "4 to 12 digits"},
           {"GET", "/control/none", "", "GET /control/state, POST /control/faults"},
           {"PUT", "/control/faults", "", "takes POST, GET, DELETE"}}) {
    const std::string told = refusal(row.method, row.path, row.body);
    EXPECT_NE(told.find(row.names), std::string::npos) << told;
  }
}

TEST_F(WalletsOnDemand, TheListedRequestsHaveTheirBodiesWithoutSecrets) {
  wallet_->pay(wallet_->purchase());
  const json::object listed = control("GET", "/control/requests");
  const json::object& last = listed.at("requests").get_array().back().get_object();
  const auto text = [&](const char* of) { return textOf(last.at(of).get_object(), "text"); };
  EXPECT_NE(text("asked").find("PIN block, correct PIN"), std::string::npos);
  EXPECT_NE(text("answered").find("\"status\":\"SUCCESS\""), std::string::npos);
  EXPECT_TRUE(booleanOf(last, "token1"));
}

}  // namespace
}  // namespace orlix::sandbox::test
