#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

/// A sandbox as it is without flags: a device that was never seen must enrol.
class Enrolment : public testing::Test {
 protected:
  Enrolment() : sandbox_({.onEvent = events_.sink()}) { sandbox_.start(); }

  Events events_;
  Sandbox sandbox_;
};

TEST_F(Enrolment, UnknownDeviceGetsASessionThatCanOnlyEnrol) {
  Wallet wallet(sandbox_);
  const Reply start = wallet.start();
  EXPECT_EQ(start.body.at("activated"), false);
  EXPECT_EQ(wallet.pinKey.size(), 16U);
  EXPECT_EQ(wallet.lookUp("FIXED-25").status, 401);
  EXPECT_EQ(textOf(wallet.enrol(events_, "27821112222").body, "status"), "SUCCESS");
  EXPECT_EQ(wallet.lookUp("FIXED-25").status, 200) << "the same session goes on";
  EXPECT_EQ(wallet.start().body.at("activated"), true);
}

TEST_F(Enrolment, TokenOpensTheWalletOfItsOwnDeviceOnly) {
  Wallet mine(sandbox_, "[p:01]");
  mine.enrol(events_, "27821112222");
  Wallet thief(sandbox_, "[p:02]");
  thief.ssToken = mine.ssToken;
  EXPECT_EQ(thief.start().body.at("activated"), false);

  const std::string before = mine.ssToken;
  mine.enrol(events_, "27821112222");
  EXPECT_NE(mine.ssToken, before);
  mine.ssToken = before;
  EXPECT_EQ(mine.start().body.at("activated"), false) << "a new token takes the old one's place";
}

TEST_F(Enrolment, NumberDecidesHowItEnds) {
  struct Row {
    const char* what;
    const char* msisdn;
    const char* status;
    bool hasToken;
    bool knownAfterwards;
  };
  const std::vector<Row> rows{
      {"any number", "27829876543", "SUCCESS", true, true},
      {"number whose code is never right", "27820000002", "INVALID_CODE", false, false},
      {"number whose token is not known afterwards", "27820000003", "SUCCESS", true, false},
      {"number with an empty token", "27820000004", "SUCCESS", true, false},
      {"number without a token", "27820000005", "SUCCESS", false, false},
  };
  for (const Row& row : rows) {
    Wallet wallet(sandbox_, "[p:0A]");
    const Reply reply = wallet.enrol(events_, row.msisdn);
    EXPECT_EQ(textOf(reply.body, "status"), row.status) << row.what;
    EXPECT_EQ(reply.body.contains("newSsToken"), row.hasToken) << row.what;
    EXPECT_EQ(wallet.start().body.at("activated"), row.knownAfterwards) << row.what;
  }
  Wallet refused(sandbox_);
  refused.start();
  EXPECT_EQ(textOf(refused.post("/vello/sms/send", {{"msisdn", "27820000001"}}).body, "status"),
            "REFUSED");
  EXPECT_EQ(events_.codeFor("27820000001"), "");
  for (const char* malformed : {"", "082 123", "+27821234567", "123456", "1234567890123456"}) {
    EXPECT_EQ(refused.post("/vello/sms/send", {{"msisdn", malformed}}).status, 400) << malformed;
  }
}

TEST_F(Enrolment, CodeIsVoidAfterFiveWrongTriesAndAfterUse) {
  Wallet wallet(sandbox_);
  const auto submit = [&](const std::string& code) {
    return textOf(wallet.post("/vello/sms/activateSession", {{"activationCode", code}}).body,
                  "status");
  };
  wallet.start();
  EXPECT_EQ(submit(""), "INVALID_CODE") << "no SMS was sent";
  wallet.post("/vello/sms/send", {{"msisdn", "27825550000"}});
  for (int i = 0; i < 5; ++i) EXPECT_EQ(submit("x"), "INVALID_CODE");
  EXPECT_EQ(submit(events_.codeFor("27825550000")), "INVALID_CODE");
  wallet.post("/vello/sms/send", {{"msisdn", "27825550000"}});
  for (int i = 0; i < 4; ++i) EXPECT_EQ(submit("x"), "INVALID_CODE");
  const std::string code = events_.codeFor("27825550000");
  EXPECT_EQ(submit(code), "SUCCESS");
  EXPECT_EQ(submit(code), "INVALID_CODE");
}

TEST_F(Enrolment, SessionBodyMustBeTheProtocols) {
  Wallet wallet(sandbox_);
  const json::object right = wallet.device;
  const auto answerTo = [&](const std::function<void(json::object&)>& change) {
    json::object body = right;
    change(body);
    return wallet.post("/vello/session/new/TALU", body).status;
  };
  EXPECT_EQ(answerTo([](auto&) {}), 200);
  for (const char* key :
       {"deviceSerial", "appVersion", "hasDoubleSession", "ssToken", "timeZone", "platform"}) {
    EXPECT_EQ(answerTo([&](auto& body) { body.erase(key); }), 400) << key;
    EXPECT_EQ(answerTo([&](auto& body) { body[key] = 1; }), 400) << key;
  }
  for (const char* key : {"appVersion", "device", "node", "os", "libKey", "osVersion"}) {
    EXPECT_EQ(answerTo([&](auto& body) { body["platform"].get_object().erase(key); }), 400) << key;
  }
  struct Row {
    const char* key;
    const char* value;
  };
  for (const Row& row : std::vector<Row>{{"deviceSerial", ""},
                                         {"deviceSerial", "[p:1],"},
                                         {"timeZone", "+0200"},
                                         {"appVersion", "iPhone"},
                                         {"surplus", "x"}}) {
    EXPECT_EQ(answerTo([&](auto& body) { body[row.key] = row.value; }), 400) << row.key;
  }
  EXPECT_EQ(answerTo([](auto& body) { body["hasDoubleSession"] = false; }), 400);
}

TEST_F(Enrolment, RequestWithoutBothTokensIsForbidden) {
  Wallet wallet(sandbox_);
  wallet.enrol(events_, "27821112222");
  const std::string one = wallet.token1;
  const std::string two = wallet.token2;
  const std::vector<std::pair<std::string, std::string>> wrong{
      {"", ""}, {one, ""}, {"", two}, {two, one}, {one, "x"}};
  for (const auto& [first, second] : wrong) {
    wallet.token1 = first;
    wallet.token2 = second;
    EXPECT_EQ(wallet.post("/vello/card/list/TALU", {}).status, 403) << first << " " << second;
  }
  wallet.token1 = one;
  wallet.token2 = two;
  EXPECT_EQ(wallet.post("/vello/card/list/TALU", {}).status, 200);
  EXPECT_EQ(wallet.post("/vello/card/list/OTHER", {}).status, 404);
  EXPECT_EQ(replyOf(wallet.http.Get("/vello/card/list/TALU")).status, 405);
  sandbox_.control("DELETE", "/control/sessions");
  EXPECT_EQ(wallet.post("/vello/card/list/TALU", {}).status, 403);
}

/// A folder that goes with the test.
struct Folder {
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "sandbox-test-XXXXXX").string();
    path = mkdtemp(name.data());
  }
  ~Folder() { std::filesystem::remove_all(path); }
  std::filesystem::path path;
};

TEST(Database, KeepsDevicesCardsTermsAndBinRulesOverARestart) {
  const Folder folder;
  const std::string file = (folder.path / "state.db").string();
  std::string token;
  std::int64_t cardId = 0;
  {
    Events events;
    Sandbox sandbox({.database = file, .onEvent = events.sink()});
    sandbox.start();
    Wallet wallet(sandbox);
    wallet.enrol(events, "27820000010");
    token = wallet.ssToken;
    cardId = wallet.cardEnding("0202");
    wallet.post("/vello/card/validate/TALU",
                {{"validate", true}, {"cardId", cardId}, {"inputValue", ""}});
    sandbox.control("POST", "/control/cards", R"({"bin":"499999999","needAccount":true})");
    sandbox.control("POST", "/control/terms", R"({"version":7,"waitMilliseconds":1})");
  }
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  Sandbox sandbox({.database = file});
  sandbox.start();
  Wallet wallet(sandbox);
  wallet.ssToken = token;
  const Reply start = wallet.start();
  EXPECT_EQ(start.body.at("activated"), true);
  EXPECT_EQ(start.body.at("requestTCs"), true);
  EXPECT_EQ(wallet.cardEnding("0202"), cardId);
  json::object body = wallet.withPin(wallet.purchase("FIXED-25", "0202", "25.00"), "1234");
  EXPECT_EQ(textOf(wallet.post("/vello/purchase/TALU", body).body, "status"), "SUCCESS");
  EXPECT_EQ(wallet.post("/vello/card/bin/TALU", {{"bin", "499999999"}}).body.at("needAccount"),
            true);
}

TEST(Database, ThatIsNoDatabaseIsRefusedAndLeftAlone) {
  const Folder folder;
  const std::string file = (folder.path / "letter.txt").string();
  std::ofstream(file) << "Dear Sir or Madam, this is certainly no database of any kind at all.";
  Sandbox sandbox({.database = file});
  EXPECT_THROW(sandbox.start(), std::runtime_error);
  EXPECT_EQ(std::filesystem::file_size(file), 68U);
}

}  // namespace
}  // namespace orlix::sandbox::test
