// SPDX-License-Identifier: Apache-2.0

#include <future>
#include <thread>
#include <utility>

#include <fmt/format.h>

#include "sandbox/console/ConsoleStream.h"
#include "sandbox/console/QrPicture.h"
#include "sandbox/console/RequestRules.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

class Console : public SandboxTest {
 protected:
  Console() : page_(sandbox_.console()) {
    const size_t port = page_.find(':', 6) + 1;
    const size_t path = page_.find('/', port);
    root_ = page_.substr(path);
    http_.emplace("127.0.0.1", std::stoi(page_.substr(port, path - port)));
  }

  Reply get(const std::string& path) { return replyOf(http_->Get((root_ + path).c_str())); }
  Reply wish(const json::object& body, const char* type = "application/json") {
    return replyOf(http_->Post((root_ + "control").c_str(), json::serialize(body), type));
  }
  /// The latest request with its bodies, as the page gets it.
  Reply latest() {
    const json::object listed = control("GET", "/control/requests");
    return get(fmt::format("requests/{}", listed.at("requests").get_array().size()));
  }

  std::string page_, root_;
  std::optional<httplib::Client> http_;
};

TEST_F(Console, ExplainsTheSecretsOfARequestAndHoldsNoneOfThem) {
  struct Row {
    const char *hint, *pin, *cvv, *words;
  };
  for (const Row& row : std::vector<Row>{{"1111", "1234", "", "PIN block, correct PIN"},
                                         {"1111", "4321", "", "PIN block, wrong PIN"},
                                         {"9999", "1234", "", "session or card that is not known"},
                                         {"3333", "", "1234", "CVV, correct"},
                                         {"3333", "", "9876", "CVV, wrong"},
                                         {"1111", "1234", "739", "CVV, which the card does not"}}) {
    const json::object body = wallet_->purchase("FIXED-25", row.hint, "25.00", row.pin, row.cvv);
    wallet_->pay(body);
    const std::string seen = latest().text;
    EXPECT_NE(seen.find(row.words), std::string::npos) << seen;
    std::vector<std::string> secrets{wallet_->token1, wallet_->token2};
    if (*row.cvv != '\0') secrets.push_back(fmt::format("\\\"{}\\\"", row.cvv));
    if (const auto* pin = body.if_contains("pinData")) {
      secrets.push_back(textOf(pin->get_object(), "pinBlock"));
    }
    for (const std::string& secret : secrets) EXPECT_EQ(seen.find(secret), std::string::npos);
  }
  wallet_->start();
  const std::string started = latest().text;
  EXPECT_EQ(started.find(wallet_->token1), std::string::npos);
  EXPECT_NE(started.find("PIN key, 24 characters"), std::string::npos) << started;
}

TEST_F(Console, ExplainsAPaResAndKeepsNoneNeitherInAFormNorInAPage) {
  json::object payment = wallet_->purchase("FIXED-25", "0301", "25.00", "");
  const Reply page =
      wallet_->post("card/scUrl/TALU",
                    {{"cardId", payment.at("cardId")}, {"code", "FIXED-25"}, {"amount", "25.00"}});
  const std::string paReq = textOf(page.body, "payload");
  EXPECT_EQ(latest().text.find(paReq), std::string::npos);
  const Reply back = replyOf(wallet_->http.Post(
      "/issuer/otp", httplib::Params{{"PaReq", paReq},
                                     {"TermUrl", "https://127.0.0.1/vello/secure_code.jsp"},
                                     {"otp", "123456"}}));
  const std::string before = "name='PaRes' value='";
  const size_t at = back.text.find(before) + before.size();
  const std::string paRes = back.text.substr(at, back.text.find('\'', at) - at);
  ASSERT_FALSE(paRes.empty());
  const std::string form = latest().text;
  for (const std::string& secret : {paReq, paRes, std::string("123456")}) {
    EXPECT_EQ(form.find(secret), std::string::npos) << form;
  }
  EXPECT_NE(form.find("with the fields PaReq"), std::string::npos) << form;
  for (const auto& [word, explained] :
       std::vector<std::pair<std::string, std::string>>{{paRes + "x", "PaRes, not the issuer's"},
                                                        {paRes, "the authentication passed"},
                                                        {paRes, "used before"}}) {
    payment["secureCodeData"] = {{"PaRes", word}, {"secureCodeId", page.body.at("secureCodeId")}};
    wallet_->post("purchase/TALU", payment);
    const std::string seen = latest().text;
    EXPECT_NE(seen.find(explained), std::string::npos) << seen;
    EXPECT_EQ(seen.find(paRes), std::string::npos);
  }
}

TEST_F(Console, TheEndOfTheSandboxEndsOpenPages) {
  std::promise<void> open;
  std::thread page([&] {
    bool first = true;
    http_->Get((root_ + "events").c_str(), [&](const char*, size_t) {
      if (std::exchange(first, false)) open.set_value();
      return true;
    });
  });
  open.get_future().wait();
  sandbox_.stop();
  page.join();
  EXPECT_FALSE(http_->Get(root_.c_str())) << "nothing listens any more";
}

TEST_F(Console, EveryAnswerForbidsWhatThePageDoesNotNeed) {
  for (const std::string& path :
       {root_, root_ + "console.js", root_ + "data/state", std::string("/"), root_ + "none"}) {
    const auto answer = http_->Get(path.c_str());
    ASSERT_TRUE(answer) << path;
    const std::string policy = answer->get_header_value("Content-Security-Policy");
    EXPECT_EQ(policy.rfind("default-src 'none'; script-src 'self'", 0), 0U) << path;
    EXPECT_NE(policy.find("frame-ancestors 'none'"), std::string::npos);
    EXPECT_EQ(answer->get_header_value("Cache-Control"), "no-store");
    EXPECT_EQ(answer->get_header_value("X-Content-Type-Options"), "nosniff");
    EXPECT_EQ(answer->get_header_value("Referrer-Policy"), "no-referrer");
    EXPECT_FALSE(answer->has_header("Access-Control-Allow-Origin"));
  }
  const std::string html = get("").text;
  EXPECT_NE(html.find("<title>"), std::string::npos);
  EXPECT_EQ(html.find("style="), std::string::npos);
  EXPECT_EQ(html.find("://"), std::string::npos) << "no address of another server";
}

TEST(ConsoleRules, OnlyThePageItselfMayAsk) {
  using Maybe = std::optional<std::string>;
  struct Row {
    const char* host;
    Maybe origin;
    Maybe site;
    bool may;
  };
  for (const Row& row :
       std::vector<Row>{{"127.0.0.1:81", {}, {}, true},
                        {"localhost:81", {}, "none", true},
                        {"127.0.0.1:81", "http://127.0.0.1:81", "same-origin", true},
                        {"127.0.0.1:81", "http://localhost:81", "same-origin", false},
                        {"127.0.0.1:81", "http://127.0.0.1:82", {}, false},
                        {"127.0.0.1:81", "null", {}, false},
                        {"127.0.0.1:81", "", {}, false},
                        {"127.0.0.1:81", {}, "same-site", false},
                        {"127.0.0.1:81", {}, "cross-site", false},
                        {"127.0.0.1", {}, {}, false},
                        {"127.0.0.1:82", {}, {}, false},
                        {"rebound.example:81", {}, {}, false},
                        {"", {}, {}, false}}) {
    const RequestSource source{.host = row.host, .origin = row.origin, .fetchSite = row.site};
    EXPECT_EQ(!refusalOf(source, 81), row.may)
        << row.host << " " << row.origin.value_or("-") << " " << row.site.value_or("-");
  }
}

TEST_F(Console, AsksForItsSecretItsHostAndJson) {
  const json::object fault{
      {"method", "POST"}, {"path", "/control/faults"}, {"body", json::object{{"kind", "silence"}}}};
  EXPECT_EQ(http_->Get("/")->status, 404);
  EXPECT_EQ(http_->Get(("/" + std::string(32, '0') + "/data/state").c_str())->status, 404);
  EXPECT_EQ(http_->Get(root_.c_str(), {{"Host", "rebound.example"}})->status, 403);
  EXPECT_EQ(http_->Get(root_.c_str(), {{"Sec-Fetch-Site", "cross-site"}})->status, 403);
  EXPECT_EQ(wish(fault, "text/plain").status, 415);
  EXPECT_EQ(wish(fault, "application/x-www-form-urlencoded").status, 415);
  EXPECT_EQ(get("control").status, 404) << "changing things takes a POST";
  EXPECT_TRUE(control("GET", "/control/faults").at("faults").get_array().empty());
  EXPECT_EQ(wish(fault).status, 200);
  EXPECT_EQ(control("GET", "/control/faults").at("faults").get_array().size(), 1U);
  EXPECT_EQ(wish({{"method", "POST"}, {"path", "/control/none"}, {"body", json::object{}}}).status,
            404);
}

TEST_F(Console, TellsNeitherThePinNorTheCvvOfACardRule) {
  const Reply told = wish({{"method", "POST"},
                           {"path", "/control/cards"},
                           {"body", json::object{{"bin", "400000100"}, {"pin", "8642"}}}});
  EXPECT_EQ(told.status, 200);
  EXPECT_EQ(told.text.find("8642"), std::string::npos);
  EXPECT_EQ(get("data/wallets").text.find("8642"), std::string::npos);
  EXPECT_EQ(wallet_->pay(wallet_->purchase("FIXED-25", "1111", "25.00", "8642")), "SUCCESS");
}

TEST_F(Console, TellsAnOpenPageOnceWhatIsNewAndALateOneAll) {
  State state("");
  Shutdown shutdown;
  ConsoleStream stream(state, shutdown, 0);
  EXPECT_EQ(stream.next().rfind("event: status\n", 0), 0U) << "no request has come";
  state.seen.arrived({.method = "POST", .path = "/first"}, {}, {}, Moment{});
  state.touch();
  EXPECT_NE(stream.next().find("/first"), std::string::npos);
  state.seen.arrived({.method = "POST", .path = "/second"}, {}, {}, Moment{});
  state.touch();
  const std::string news = stream.next();
  EXPECT_EQ(news.find("/first"), std::string::npos);
  EXPECT_NE(news.find("id: 2\n"), std::string::npos);
  EXPECT_NE(ConsoleStream(state, shutdown, 0).next().find("/first"), std::string::npos);
  EXPECT_EQ(ConsoleStream(state, shutdown, 1).next().find("/first"), std::string::npos);
  EXPECT_NE(ConsoleStream(state, shutdown, 99).next().find("/first"), std::string::npos)
      << "a page of an earlier run knows nothing";
  shutdown.begin();
  EXPECT_EQ(ConsoleStream(state, shutdown, 0).next(), "");
}

TEST_F(Console, DrawsTheCodesThatAreKnown) {
  EXPECT_EQ(get("qr?code=FIXED-25").text.rfind("<svg ", 0), 0U);
  EXPECT_EQ(get("qr?code=UNKNOWN").status, 404);
  EXPECT_FALSE(qrPicture(std::string(5000, 'x'))) << "too long for a picture";
}

TEST_F(Console, MakesCodesThatAreLookedUpAndPaid) {
  const auto make = [&](const json::object& code) {
    return wish({{"method", "POST"}, {"path", "/control/codes"}, {"body", code}});
  };
  const json::object script{
      {"merchant", "<script>alert(1)</script>"}, {"amount", "12"}, {"currency", "EUR"}};
  const std::string name = textOf(make(script).body, "code");
  const json::object found = wallet_->lookUp(name).body.at("codeInfo").get_object();
  EXPECT_EQ(textOf(found, "merchantName"), "<script>alert(1)</script>");
  EXPECT_EQ(textOf(found, "amount"), "12.00");
  EXPECT_EQ(wallet_->pay(wallet_->purchase(name, "1111", "12.00")), "SUCCESS");
  EXPECT_EQ(wallet_->pay(wallet_->purchase(name, "1111", "13.00")), "ERROR");
  make({{"merchant", "M"}, {"code", "MINE"}, {"requestTip", true}});
  EXPECT_TRUE(booleanOf(wallet_->lookUp("MINE").body.at("codeInfo").get_object(), "requestTip"));
  for (const json::object& wrong :
       std::vector<json::object>{{{"amount", "1.00"}},
                                 {{"merchant", ""}},
                                 {{"merchant", "M"}, {"amount", "1,00"}},
                                 {{"merchant", "M"}, {"amount", "0.00"}},
                                 {{"merchant", "M"}, {"amount", "1.5"}},
                                 {{"merchant", "M"}, {"code", "FIXED-25"}},
                                 {{"merchant", std::string(201, 'M')}},
                                 {{"merchant", "M"}, {"surplus", true}}}) {
    EXPECT_EQ(make(wrong).status, 400) << json::serialize(wrong);
  }
  control("DELETE", "/control/codes", R"({"code":"MINE"})");
  EXPECT_FALSE(wallet_->lookUp("MINE").body.contains("codeInfo"));
}

class Decisions : public Console {
 protected:
  std::string pollOf(const json::value& id) {
    return wallet_->statusOf("receipt/poll/TALU", {{"transactionId", id}});
  }
};

TEST_F(Decisions, HeldPaymentsHaveNoStatusUntilTheyAreSettled) {
  const auto pay = [&] {
    return wallet_->post("purchase/TALU", wallet_->purchase()).body.at("transactionId");
  };
  const auto settle = [&](const json::value& id, const char* receipt) {
    const std::string text = fmt::format("{}", id.get_int64());
    control("POST", "/control/payments",
            json::serialize(json::object{{"transactionId", text}, {"receipt", receipt}}));
  };
  const json::value before = pay();
  control("POST", "/control/payments", R"({"hold":true})");
  const json::value first = pay();
  const json::value second = pay();
  EXPECT_EQ(pollOf(before), "SUCCESS") << "was made before";
  EXPECT_EQ(pollOf(first), "");
  control("POST", "/control/payments", R"({"hold":false})");
  EXPECT_EQ(pollOf(first), "") << "waits for its own decision";
  settle(first, "SUCCESS");
  settle(second, "FAILED");
  EXPECT_EQ(pollOf(first), "SUCCESS");
  EXPECT_EQ(pollOf(second), "FAILED");
  EXPECT_EQ(pollOf(pay()), "SUCCESS");
  for (const char* wrong :
       {R"({"transactionId":"1","receipt":"SUCCESS"})", R"({"receipt":"FAILED"})",
        R"({"transactionId":"7000000001","receipt":"MAYBE"})"}) {
    EXPECT_THROW(control("POST", "/control/payments", wrong), std::runtime_error) << wrong;
  }
}

TEST_F(Decisions, CardsOfAWalletAreAddedChangedAndRemoved) {
  const json::object listed = control("GET", "/control/wallets");
  const std::string wallet = textOf(listed.at("wallets").at(0).get_object(), "wallet");
  const auto of = [&](json::object more) {
    more["wallet"] = wallet;
    return json::serialize(more);
  };
  const std::int64_t unproven = wallet_->cardEnding("0201");
  EXPECT_EQ(wallet_->pay(wallet_->purchase("FIXED-25", "0201")), "ERROR");
  control("PATCH", "/control/wallets/cards", of({{"cardId", unproven}, {"validated", true}}));
  EXPECT_EQ(wallet_->pay(wallet_->purchase("FIXED-25", "0201")), "SUCCESS");
  control("DELETE", "/control/wallets/cards", of({{"cardId", unproven}}));
  EXPECT_EQ(wallet_->cardEnding("0201"), 0);
  control("POST", "/control/wallets/cards", of({{"number", "4000001000009999"}}));
  EXPECT_EQ(wallet_->pay(wallet_->purchase("FIXED-25", "9999")), "SUCCESS");
  for (const char* number : {"", "123", "4000001x00009999", "9999999990001111"}) {
    EXPECT_THROW(control("POST", "/control/wallets/cards", of({{"number", number}})),
                 std::runtime_error);
  }
}

TEST_F(Decisions, TheNextSessionStartIsAnsweredOnceOrEveryOneIs) {
  const auto allowed = [&] { return booleanOf(wallet_->start().body, "allowConnection"); };
  control("POST", "/control/start", R"({"answer":"refused","once":true})");
  EXPECT_FALSE(allowed());
  EXPECT_TRUE(allowed());
  control("POST", "/control/start", R"({"answer":"refused"})");
  EXPECT_FALSE(allowed());
  EXPECT_FALSE(allowed());
  control("POST", "/control/start", R"({"answer":"normal"})");
  EXPECT_TRUE(allowed());
}

}  // namespace
}  // namespace orlix::sandbox::test
