#include "tests/sandbox/EnrolledTest.h"

namespace orlix::sandbox::test {
namespace {

using FaultInjection = EnrolledTest;

constexpr const char* listPath = "/vello/card/list/TALU";

TEST_F(FaultInjection, EachFaultSpoilsTheAnswerInItsOwnWay) {
  struct Row {
    json::object fault;
    int status;              ///< 0: no whole answer arrives.
    const char* beginsWith;  ///< The body.
    size_t bytes;            ///< At least.
  };
  const std::vector<Row> rows{
      {{{"kind", "status"}, {"status", 503}, {"body", "down"}}, 503, "down", 4},
      {{{"kind", "redirect"}, {"status", 307}, {"location", "/control/echo"}}, 307, "", 0},
      {{{"kind", "forget-session"}}, 403, "{\"error\"", 0},
      {{{"kind", "delay"}, {"milliseconds", 1}}, 200, "{\"cards\"", 0},
      {{{"kind", "hang-up"}}, 0, "", 0},
      {{{"kind", "cut-in-body"}}, 0, "", 0},
      {{{"kind", "trickle"}, {"milliseconds", 0}}, 200, "{\"cards\"", 0},
      {{{"kind", "huge-body"}, {"bytes", 3'000'000}}, 200, "{\"padding\"", 3'000'000},
      {{{"kind", "deep-json"}}, 200, "{\"deep\":[[[[", 200'000},
      {{{"kind", "not-json"}}, 200, "<html>", 0},
      {{{"kind", "not-utf8"}}, 200, "{\"status\":\"\xC3(", 0},
      {{{"kind", "empty-body"}}, 200, "", 0},
      {{{"kind", "wrong-types"}}, 200, "{\"cards\":{}}", 0},
      {{{"kind", "null-values"}}, 200, "{\"cards\":null}", 0},
  };
  for (const Row& row : rows) {
    json::object fault = row.fault;
    fault["path"] = listPath;
    switchOn(fault);
    const Reply spoilt = wallet_->post(listPath, {});
    EXPECT_EQ(spoilt.status, row.status) << row.fault;
    EXPECT_EQ(spoilt.text.rfind(row.beginsWith, 0), 0U) << row.fault << spoilt.text.substr(0, 99);
    EXPECT_GE(spoilt.text.size(), row.bytes) << row.fault;
    if (spoilt.status == 403) wallet_->start();
    const Reply next = wallet_->post(listPath, {});
    EXPECT_EQ(next.status, 200) << row.fault << ": it was for one request";
    EXPECT_GT(next.body.at("cards").get_array().size(), 20U) << row.fault;
  }
}

TEST_F(FaultInjection, SilenceLastsUntilTheClientLeaves) {
  wallet_->http.set_read_timeout(std::chrono::milliseconds(20));
  for (const char* kind : {"silence", "header-then-silence"}) {
    switchOn({{"kind", kind}, {"path", listPath}});
    EXPECT_EQ(wallet_->post(listPath, {}).status, 0) << kind;
  }
}

TEST_F(FaultInjection, MeetsItsPathAfterTheSkippedAndForItsCount) {
  switchOn({{"kind", "status"}, {"path", listPath}, {"skip", 2}, {"count", 3}});
  std::string seen;
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(wallet_->lookUp("FIXED-25").status, 200) << "another path";
    seen += wallet_->post(listPath, {}).status == 500 ? 'x' : '.';
  }
  EXPECT_EQ(seen, "..xxx..");

  switchOn({{"kind", "status"}, {"status", 403}, {"count", -1}});
  for (int i = 0; i < 20; ++i) EXPECT_EQ(wallet_->lookUp("FIXED-25").status, 403);
  EXPECT_EQ(replyOf(wallet_->http.Get("/terms/tavlo.html")).status, 200) << "not below /vello";
  EXPECT_EQ(integerOf(control("/control/faults").at("faults").at(1).get_object(), "hits"), 20);
  sandbox_.control("DELETE", "/control/faults");
  EXPECT_EQ(wallet_->lookUp("FIXED-25").status, 200);
}

TEST_F(FaultInjection, PurchaseIsCountedWhetherOrNotItWasCarriedOut) {
  struct Row {
    json::object fault;
    int paid;
  };
  int received = 0;
  int paid = 0;
  for (const Row& row :
       std::vector<Row>{{{{"kind", "hang-up"}}, 1},
                        {{{"kind", "hang-up"}, {"carriedOut", false}}, 0},
                        {{{"kind", "status"}, {"status", 500}}, 0},
                        {{{"kind", "status"}, {"status", 500}, {"carriedOut", true}}, 1},
                        {{{"kind", "not-json"}}, 1}}) {
    json::object fault = row.fault;
    fault["path"] = "/vello/purchase/TALU";
    switchOn(fault);
    EXPECT_NE(pay(pinPurchase()), "SUCCESS") << row.fault;
    const json::object account = control("/control/purchases");
    EXPECT_EQ(integerOf(account, "received"), ++received) << row.fault;
    EXPECT_EQ(integerOf(account, "paid"), paid += row.paid) << row.fault;
  }
  sandbox_.control("DELETE", "/control/purchases");
  EXPECT_EQ(integerOf(control("/control/purchases"), "received"), 0);
}

TEST_F(FaultInjection, NewConnectionsAreRefusedBeforeAnyRequest) {
  for (const char* kind : {"reset-connection", "refuse-handshake"}) {
    switchOn({{"kind", kind}});
    EXPECT_EQ(wallet_->post(listPath, {}).status, 200) << "the open connection is not met";
    sandbox_.control("DELETE", "/control/connections");
    EXPECT_EQ(wallet_->post(listPath, {}).status, 0) << kind;
    EXPECT_EQ(wallet_->post(listPath, {}).status, 200) << kind << ": it was for one connection";
  }
}

TEST_F(FaultInjection, WishThatMakesNoSenseIsRefusedWithTheReason) {
  for (const char* wish : {R"({})", R"({"kind":"nonsense"})", R"({"kind":"redirect"})",
                           R"({"kind":"status","status":99})", R"({"kind":"status","surplus":1})",
                           R"({"kind":7})", "no JSON"}) {
    EXPECT_THROW(sandbox_.control("POST", "/control/faults", wish), std::runtime_error) << wish;
  }
  EXPECT_THROW(sandbox_.control("POST", "/control/start", R"({"answer":"x"})"), std::runtime_error);
  EXPECT_THROW(sandbox_.control("POST", "/control/cards", R"({"bin":"1"})"), std::runtime_error);
  EXPECT_THROW(sandbox_.control("POST", "/control/nothing"), std::runtime_error);
}

TEST_F(FaultInjection, SwitchesWorkOverTheNetworkToo) {
  const auto posted = wallet_->http.Post("/control/start", R"({"answer":"notice","message":"Hm"})",
                                         "application/json");
  ASSERT_TRUE(posted && posted->status == 200);
  EXPECT_EQ(wallet_->start().body.at("message"), "Hm");
  wallet_->http.Post("/control/enrolled", R"({"everyDevice":false})", "application/json");
  EXPECT_EQ(wallet_->start().body.at("activated"), false);
}

TEST_F(FaultInjection, EchoTellsWhatReachedTheTargetOfARedirect) {
  const httplib::Headers tokens{{"x-session-token1", "a"}, {"x-session-token2", "b"}};
  const Reply kept = replyOf(wallet_->http.Post("/control/echo", tokens, "{}", "application/json"));
  EXPECT_EQ(kept.body.at("method"), "POST");
  EXPECT_EQ(kept.body.at("bytes"), 2);
  EXPECT_EQ(kept.body.at("token1"), true);
  const Reply bare = replyOf(wallet_->http.Get("/control/echo"));
  EXPECT_EQ(bare.body.at("method"), "GET");
  EXPECT_EQ(bare.body.at("token1"), false);
  EXPECT_EQ(bare.body.at("token2"), false);
}

}  // namespace
}  // namespace orlix::sandbox::test
