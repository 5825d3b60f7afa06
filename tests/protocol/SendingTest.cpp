// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

#include "tests/protocol/ClientAndServer.h"

namespace orlix::test {

namespace {

void lookUp(KCVelloConnection& client) { client.getCodeInfoV2("6AB9", "inapp"); }

/// A purchase with this PIN.
Call pay(const std::string& pin) {
  return [pin](KCVelloConnection& client) {
    PurchaseRequest request;
    request.code = "6AB9";
    client.establishSession();
    client.purchaseAMT(request, SecretString(pin));
  };
}

/// Answers with these codes in turn, then with 200.
ScriptedHttpClient::Script codesInTurn(std::vector<std::int64_t> codes) {
  auto next = std::make_shared<std::size_t>(0);
  return [codes = std::move(codes), next](const RecordedRequest&) {
    return ServerReply::of(*next < codes.size() ? codes[(*next)++] : 200, "{}");
  };
}

/// Sessions that are numbered, under alternating keys.
ScriptedHttpClient::Script numberedSessions() {
  auto count = std::make_shared<int>(0);
  return [count](const RecordedRequest&) {
    const int number = ++*count;
    return ServerReply::of(200, openedSession(number, number % 2 == 1 ? kFirstKey : kSecondKey));
  };
}

/// A transport that answers on the caller's own stack and notes how deep that stack is.
class StackWatcher : public NetworkInterface {
 public:
  NetworkResult post(const std::string& url, const std::optional<SecretBytes>&, const DataStore&,
                     std::function<bool()>) override {
    const char here = 0;
    const bool opens = url.find(kSessionPath) != std::string::npos;
    if (!opens) {
      depths.push_back(reinterpret_cast<std::uintptr_t>(&here));
    }
    NetworkResult result;
    result.responseCode = opens || depths.size() > 5000 ? 200 : 403;
    const Bytes body = toBytes(opens ? openedSession() : "{}");
    result.payload = SecretBytes(body);
    return result;
  }

  std::vector<std::uintptr_t> depths;
};

}  // namespace

TEST(Sending, EveryForgottenSessionIsRenewedOnceAndTheSameBodySentAgain) {
  ClientAndServer test;
  test.host.connections().on(kSessionPath, numberedSessions());
  test.host.connections().on("/lookup", codesInTurn({403, 403, 403}));
  EXPECT_EQ(test.run(lookUp), "done");
  const auto lookups = test.requestsTo("/lookup");
  ASSERT_EQ(lookups.size(), 4U);
  EXPECT_EQ(test.requestsTo(kSessionPath).size(), 4U);
  for (std::size_t i = 0; i < lookups.size(); ++i) {
    EXPECT_EQ(lookups[i].body, lookups[0].body);
    EXPECT_EQ(lookups[i].header("x-session-token1"), "one-" + std::to_string(i + 1));
  }
}

TEST(Sending, ThousandsOfForgottenSessionsDoNotGrowTheStack) {
  ClientAndServer test;
  const auto network = std::make_shared<StackWatcher>();
  KCVelloConnection client("https://live.example/vello", "TALU", Serial{}, test.storage, network,
                           "v", Platform{"o", "v", "n", "a", "d", {}}, "+00:00");
  client.getCardList();
  ASSERT_EQ(network->depths.size(), 5001U);
  EXPECT_EQ(std::ranges::count(network->depths, network->depths[0]), 5001);
}

TEST(Sending, RenewingEndsWhenASessionCannotBeOpened) {
  // Not activated; without a key for the PIN block.
  for (const std::string answer : {"{}", R"({"activated":true,"allowConnection":true})"}) {
    bool opened = false;
    ClientAndServer test;
    test.host.connections().on("/purchase", ServerReply::of(403));
    test.host.connections().on(kSessionPath, [&](const auto&) {
      return ServerReply::of(200, std::exchange(opened, true) ? answer : openedSession());
    });
    EXPECT_EQ(test.run(pay("1234")), "network failure");
    EXPECT_EQ(test.requestsTo("/purchase").size(), 1U);
  }
}

TEST(Sending, TheShutdownEndsRenewingAndWhoWaitsForTheSession) {
  {
    ClientAndServer test;
    test.host.connections().setLatency(10ms);
    test.host.connections().on("/lookup", ServerReply::of(403));
    const auto renewing = test.begin(lookUp);
    test.host.runFor(5s);
    EXPECT_EQ(*renewing, "");
    EXPECT_GT(test.requestsTo("/lookup").size(), 5U);
    test.host.shutdown();
    EXPECT_EQ(*renewing, "network failure");
  }
  ClientAndServer test;
  test.host.connections().on(kSessionPath, ServerReply().silence());
  const auto first = test.begin(lookUp);
  const auto second = test.begin([](auto& c) { c.delinkCard(1); });
  test.host.runFor(10s);
  test.host.shutdown();
  EXPECT_EQ(*first, "network failure");
  EXPECT_EQ(*second, "network failure");
  EXPECT_EQ(test.requestsTo(kSessionPath).size(), 1U);
}

TEST(Sending, APinPurchaseGetsOneNewBlockAndThenKeepsIt) {
  ClientAndServer test;
  test.host.connections().on(kSessionPath, numberedSessions());
  test.host.connections().on("/purchase", codesInTurn({403, 403}));
  EXPECT_EQ(test.run(pay("1234")), "done");
  const auto purchases = test.requestsTo("/purchase");
  ASSERT_EQ(purchases.size(), 3U);
  EXPECT_NE(purchases[0].body->find("F005B8AE32436B80"), std::string::npos);
  EXPECT_NE(purchases[1].body->find("7A8054955A990445"), std::string::npos);
  EXPECT_EQ(purchases[1].body->find("\"pinData\""), purchases[0].body->find("\"pinData\""));
  EXPECT_EQ(purchases[2].body, purchases[1].body);
  EXPECT_EQ(test.requestsTo(kSessionPath).size(), 3U);
}

TEST(Sending, APinPurchaseThatCannotBeWrittenIsSentWithoutABodyAndOthersNotAtAll) {
  PurchaseRequest request;
  request.code = "\xff";
  ClientAndServer test;
  test.run([&](auto& c) {
    c.establishSession();
    c.purchaseAMT(request, SecretString("1234"));
  });
  ASSERT_EQ(test.requestsTo("/purchase").size(), 1U);
  EXPECT_FALSE(test.requestsTo("/purchase")[0].body);
  EXPECT_TRUE(test.host.log().contains("a text of the request is not UTF-8"));
  EXPECT_EQ(test.run([&](auto& c) { c.puchaseCNP(request); }), "network failure");
  EXPECT_EQ(test.requestsTo("/purchase").size(), 1U);
}

TEST(Sending, EveryFailureOfARequestIsOnePlainNetworkException) {
  struct Case {
    std::string name;
    ServerReply lookup;
    std::string session = openedSession();
    std::string logged = {};
  };
  const ServerReply fine = ServerReply::of(200, "{}");
  const std::vector<Case> cases = {
      {"server error", ServerReply::of(500, "{}"), openedSession(), "500"},
      {"redirect without target", ServerReply::of(302), openedSession(), "302"},
      {"a null number", ServerReply::of(200, R"({"codeInfo":{"vasProfileId":null}})")},
      {"a record that is a list", ServerReply::of(200, R"({"codeInfo":[]})")},
      {"too deep", ServerReply::of(200, R"({"a":)" + std::string(100000, '['))},
      {"not activated", fine, "{}"},
      {"refused", fine, R"({"activated":true})"},
      {"new terms", fine, R"({"activated":true,"allowConnection":true,"requestTCs":true})"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    ClientAndServer test;
    test.host.connections().on(kSessionPath, ServerReply::of(200, row.session));
    test.host.connections().on("/lookup", row.lookup);
    EXPECT_EQ(test.run(lookUp), "network failure");
    const std::string error = "[VELLO] Received HTTP Error: ";
    EXPECT_EQ(test.host.log().count(error), row.logged.empty() ? 0U : 1U);
    EXPECT_TRUE(row.logged.empty() || test.host.log().contains(error + row.logged));
    EXPECT_LE(test.requestsTo("/lookup").size(), 1U);
  }
}

TEST(Sending, TwoCallersShareTheSessionAndNeitherWaitsForTheOthersAnswer) {
  ClientAndServer test;
  test.host.connections().setLatency(1s);
  test.host.connections().on("/card/list", ServerReply().after(30s).status(200).body("{}"));
  const auto slow = test.begin([](auto& c) { c.getCardList(); });
  const auto quick = test.begin([](auto& c) { c.delinkCard(1); });
  test.host.runUntil([&] { return *quick == "done"; });
  EXPECT_EQ(*slow, "");
  test.host.runUntil([&] { return *slow == "done"; });
  EXPECT_EQ(test.requestsTo(kSessionPath).size(), 1U);
}

}  // namespace orlix::test
