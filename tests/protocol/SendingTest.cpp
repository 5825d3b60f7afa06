#include <algorithm>

#include <gtest/gtest.h>

#include "tests/protocol/ClientAndServer.h"

namespace orlix {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

void lookUp(KCVelloConnection& client) { client.getCodeInfoV2("6AB9", "inapp"); }

/// Answers with these codes in turn, then with 200.
ScriptedConnections::Script codesInTurn(std::vector<std::int64_t> codes) {
  auto next = std::make_shared<std::size_t>(0);
  return [codes = std::move(codes), next](const RecordedRequest&) {
    return ServerReply::of(*next < codes.size() ? codes[(*next)++] : 200, "{}");
  };
}

/// Sessions that are numbered, under alternating keys.
ScriptedConnections::Script numberedSessions() {
  auto count = std::make_shared<int>(0);
  return [count](const RecordedRequest&) {
    const int number = ++*count;
    return ServerReply::of(200, openedSession(number, number % 2 == 1 ? firstKey : secondKey));
  };
}

/// A transport that answers on the caller's own stack and notes how deep that stack is.
class StackWatcher : public NetworkInterface {
 public:
  explicit StackWatcher(int refusals) : refusals_(refusals) {}

  NetworkResult post(const std::string& url, const std::optional<SecretBytes>&,
                     const DataStore&) override {
    const char here = 0;
    const auto depth = reinterpret_cast<std::uintptr_t>(&here);
    NetworkResult result;
    std::string body = openedSession();
    if (url.find(sessionPath) == std::string::npos) {
      lowest = lowest == 0 ? depth : std::min(lowest, depth);
      highest = std::max(highest, depth);
      ++sent;
      result.responseCode = sent <= refusals_ ? 403 : 200;
      body = "{}";
    } else {
      result.responseCode = 200;
    }
    const Bytes bytes = toBytes(body);
    result.payload = SecretBytes(bytes);
    return result;
  }

  std::uintptr_t lowest = 0;
  std::uintptr_t highest = 0;
  int sent = 0;

 private:
  int refusals_;
};

TEST(Sending, EveryForgottenSessionIsRenewedOnceAndTheSameBodySentAgain) {
  ClientAndServer test;
  test.host.connections().on(sessionPath, numberedSessions());
  test.host.connections().on("/lookup", codesInTurn({403, 403, 403}));
  EXPECT_EQ(test.run(lookUp).failure, nullptr);
  const auto lookups = test.requestsTo("/lookup");
  ASSERT_EQ(lookups.size(), 4U);
  EXPECT_EQ(test.requestsTo(sessionPath).size(), 4U);
  for (std::size_t i = 0; i < lookups.size(); ++i) {
    EXPECT_EQ(lookups[i].body, lookups[0].body);
    EXPECT_EQ(lookups[i].header("x-session-token1"), "one-" + std::to_string(i + 1));
  }
}

TEST(Sending, ThousandsOfForgottenSessionsDoNotGrowTheStack) {
  ClientAndServer test;
  const auto network = std::make_shared<StackWatcher>(5000);
  KCVelloConnection client("https://live.example/vello", "TALU", Serial{}, test.storage, network,
                           "v", Platform{"o", "v", "n", "a", "d", {}}, "+00:00");
  client.getCardList();
  EXPECT_EQ(network->sent, 5001);
  EXPECT_EQ(network->lowest, network->highest);
}

TEST(Sending, RenewingEndsWhenASessionCannotBeOpened) {
  ClientAndServer test;
  test.host.connections().on("/lookup", ServerReply::of(403));
  test.run([](auto& c) { c.establishSession(); });
  test.host.connections().on(sessionPath, ServerReply::of(200, "{}"));
  EXPECT_TRUE(test.run(lookUp).failedWith<NetworkException>());
  EXPECT_EQ(test.requestsTo("/lookup").size(), 1U);
}

TEST(Sending, RenewingEndsAtTheShutdown) {
  ClientAndServer test;
  test.host.connections().setLatency(milliseconds(10));
  test.host.connections().on("/lookup", ServerReply::of(403));
  const auto outcome = test.begin(lookUp);
  test.host.runFor(seconds(5));
  EXPECT_FALSE(outcome->ended);
  EXPECT_GT(test.requestsTo("/lookup").size(), 100U);
  test.host.shutdown();
  EXPECT_TRUE(outcome->failedWith<NetworkException>());
}

TEST(Sending, APinPurchaseGetsOneNewBlockAndThenKeepsIt) {
  ClientAndServer test;
  test.host.connections().on(sessionPath, numberedSessions());
  test.host.connections().on("/purchase", codesInTurn({403, 403}));
  PurchaseRequest request;
  request.code = "6AB9";
  const Outcome outcome = test.run([&](auto& c) {
    c.establishSession();
    c.purchaseAMT(request, SecretString("1234"));
  });
  EXPECT_EQ(outcome.failure, nullptr);
  const auto purchases = test.requestsTo("/purchase");
  ASSERT_EQ(purchases.size(), 3U);
  EXPECT_NE(purchases[0].body->find("F005B8AE32436B80"), std::string::npos);
  EXPECT_NE(purchases[1].body->find("7A8054955A990445"), std::string::npos);
  EXPECT_EQ(purchases[1].body->find("\"pinData\""), purchases[0].body->find("\"pinData\""));
  EXPECT_EQ(purchases[2].body, purchases[1].body);
  EXPECT_EQ(test.requestsTo(sessionPath).size(), 3U);
}

TEST(Sending, ARenewedSessionWithoutKeyEndsAPinPurchaseAsANetworkFailure) {
  ClientAndServer test;
  test.run([](auto& c) { c.establishSession(); });
  test.host.connections().on("/purchase", ServerReply::of(403));
  test.host.connections().on(sessionPath,
                             ServerReply::of(200, R"({"activated":true,"allowConnection":true})"));
  PurchaseRequest request;
  request.code = "6AB9";
  EXPECT_TRUE(test.run([&](auto& c) { c.purchaseAMT(request, SecretString("1234")); })
                  .failedWith<NetworkException>());
  EXPECT_EQ(test.requestsTo("/purchase").size(), 1U);
}

TEST(Sending, ThePinAppearsNowhere) {
  ClientAndServer test;
  test.host.connections().on("/purchase", codesInTurn({403, 500}));
  PurchaseRequest request;
  request.code = "6AB9";
  request.extraRefValue = "\xff";  // cannot be written, so that the failure is logged as well
  for (const bool writable : {false, true}) {
    if (writable) {
      request.extraRefValue.reset();
    }
    test.run([&](auto& c) {
      c.establishSession();
      c.purchaseAMT(request, SecretString("73951284"));
    });
  }
  EXPECT_GE(test.requestsTo("/purchase").size(), 2U);
  EXPECT_EQ(test.requestsTo("/purchase")[0].body, std::nullopt);
  EXPECT_TRUE(test.host.log().contains("not UTF-8"));
  EXPECT_FALSE(test.host.log().contains("73951284"));
  for (const RecordedRequest& sent : test.host.requests()) {
    std::string all = sent.url + sent.body.value_or("");
    for (const auto& [name, value] : sent.headers) {
      all.append(name).append(value);
    }
    EXPECT_EQ(all.find("73951284"), std::string::npos);
  }
}

TEST(Sending, EveryFailureOfARequestIsOnePlainNetworkException) {
  struct Case {
    std::string name;
    ServerReply session;
    ServerReply lookup;
    std::string logged;
  };
  const ServerReply opened = ServerReply::of(200, openedSession());
  const ServerReply fine = ServerReply::of(200, "{}");
  const std::string error = "[VELLO] Received HTTP Error: ";
  const std::vector<Case> cases = {
      {"server error", opened, ServerReply::of(500, "{}"), error + "500"},
      {"no answer", opened, ServerReply().fail("reset"), error + "0"},
      {"redirect without target", opened, ServerReply::of(302), error + "302"},
      {"no JSON", opened, ServerReply::of(200, "<html>"), ""},
      {"no body", opened, ServerReply().status(200).silence(), ""},
      {"a number that is null", opened,
       ServerReply::of(200, R"({"codeInfo":{"vasProfileId":null}})"), ""},
      {"a record that is a list", opened, ServerReply::of(200, R"({"codeInfo":[]})"), ""},
      {"too deep", opened, ServerReply::of(200, R"({"a":)" + std::string(100000, '[')), ""},
      {"not activated", ServerReply::of(200, "{}"), fine, ""},
      {"refused", ServerReply::of(200, R"({"activated":true})"), fine, ""},
      {"new terms",
       ServerReply::of(200, R"({"activated":true,"allowConnection":true,"requestTCs":true})"), fine,
       ""},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    ClientAndServer test;
    test.host.connections().on(sessionPath, row.session);
    test.host.connections().on("/lookup", row.lookup);
    const Outcome outcome = test.run(lookUp);
    ASSERT_TRUE(outcome.failedWith<NetworkException>());
    try {
      std::rethrow_exception(outcome.failure);
    } catch (const NetworkException& failure) {
      EXPECT_FALSE(failure.name || failure.reason);
    }
    EXPECT_EQ(test.host.log().count(error), row.logged.empty() ? 0U : 1U);
    EXPECT_TRUE(row.logged.empty() || test.host.log().contains(row.logged));
    EXPECT_LE(test.requestsTo("/lookup").size(), 1U);
  }
}

TEST(Sending, TwoCallersShareTheSessionAndNeitherWaitsForTheOthersAnswer) {
  ClientAndServer test;
  test.host.connections().setLatency(seconds(1));
  test.host.connections().on("/card/list", ServerReply().after(seconds(30)).status(200).body("{}"));
  test.host.connections().on("/card/delink", ServerReply::of(200, "{}"));
  const auto slow = test.begin([](auto& c) { c.getCardList(); });
  const auto quick = test.begin([](auto& c) { c.delinkCard(1); });
  test.host.runUntil([&] { return quick->ended; });
  EXPECT_FALSE(slow->ended);
  test.host.runUntil([&] { return slow->ended; });
  EXPECT_EQ(slow->failure, nullptr);
  EXPECT_EQ(quick->failure, nullptr);
  EXPECT_EQ(test.requestsTo(sessionPath).size(), 1U);
}

TEST(Sending, WhoWaitsForTheSessionIsSentAwayAtTheShutdown) {
  ClientAndServer test;
  test.host.connections().on(sessionPath, ServerReply().silence());
  const auto first = test.begin([](auto& c) { c.getCardList(); });
  const auto second = test.begin([](auto& c) { c.delinkCard(1); });
  test.host.runFor(seconds(10));
  test.host.shutdown();
  EXPECT_TRUE(first->failedWith<NetworkException>());
  EXPECT_TRUE(second->failedWith<NetworkException>());
  EXPECT_EQ(test.requestsTo(sessionPath).size(), 1U);
}

}  // namespace

}  // namespace orlix
