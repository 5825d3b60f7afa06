// SPDX-License-Identifier: Apache-2.0

#include "tests/TemporaryFolder.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

using orlix::test::TemporaryFolder;

/// A sandbox as it is without flags: a device that was never seen must enrol.
class Enrolment : public SandboxTest {
 protected:
  Enrolment() : SandboxTest(false) {}
};

TEST_F(Enrolment, NumberDecidesHowItEnds) {
  struct Row {
    const char *msisdn, *status;
    bool hasToken, knownAfterwards;
  };
  for (const Row& row : std::vector<Row>{{"27829876543", "SUCCESS", true, true},
                                         {"27820000002", "INVALID_CODE", false, false},
                                         {"27820000003", "SUCCESS", true, false},
                                         {"27820000004", "SUCCESS", true, false},
                                         {"27820000005", "SUCCESS", false, false}}) {
    Wallet wallet(sandbox_, "[p:0A]");
    const Reply reply = enrol(wallet, row.msisdn);
    EXPECT_EQ(textOf(reply.body, "status"), row.status) << row.msisdn;
    EXPECT_EQ(reply.body.contains("newSsToken"), row.hasToken) << row.msisdn;
    EXPECT_EQ(wallet.start().body.at("activated"), row.knownAfterwards) << row.msisdn;
    Wallet thief(sandbox_, "[p:0B]");
    thief.ssToken = wallet.ssToken;
    EXPECT_EQ(thief.start().body.at("activated"), false) << "the token of another device";
  }
  EXPECT_EQ(wallet_->statusOf("sms/send", {{"msisdn", "27820000001"}}), "REFUSED");
  EXPECT_EQ(codeFor("27820000001"), "");
  for (const char* malformed : {"", "082 123", "+27821234567", "123456", "1234567890123456"}) {
    EXPECT_EQ(wallet_->post("sms/send", {{"msisdn", malformed}}).status, 400) << malformed;
  }
}

/// An enrolled device whose wallet is empty at first.
class Cards : public Enrolment {
 protected:
  Cards() { enrol(*wallet_, "27821112222"); }

  /// A card with these values; "" for what is not asked for.
  static json::object card(std::string_view number, std::string_view month = "12",
                           std::string_view year = "40", std::string_view holder = "A B Customer") {
    return {{"cardNumber", number}, {"account", ""},           {"dateOfBirth", ""},
            {"expiryMonth", month}, {"expiryYear", year},      {"linkedMsisdn", ""},
            {"locationInfo", ""},   {"cardHolderName", holder}};
  }
  std::string link(const json::object& body) { return wallet_->statusOf("card/link/TALU", body); }
};

TEST_F(Cards, LinkingTakesWhatTheBinAsksForAndNothingElse) {
  json::object all = card("4100006000000106");
  all["dateOfBirth"] = "19901231";
  json::object noAccount = all;
  all["account"] = "Savings";
  noAccount["account"] = "Gold";
  json::object confirmed = card("4100008000000108");
  confirmed["linkedMsisdn"] = "+27 82 123 4567";
  json::object misconfirmed = confirmed;
  misconfirmed["linkedMsisdn"] = "0821234568";
  struct Row {
    json::object body;
    const char* status;  ///< "": refused as no request of the protocol
    size_t cards;
  };
  for (const Row& row : std::vector<Row>{{card("4000001000001111"), "SUCCESS", 1},
                                         {card("4000001000001111"), "SUCCESS", 1},
                                         {card("4100001000000101", "", "", ""), "SUCCESS", 2},
                                         {all, "SUCCESS", 3},
                                         {noAccount, "FAILED", 3},
                                         {card("4000001000001111", "00"), "FAILED", 3},
                                         {card("4100002000000102"), "", 3},
                                         {card("4100004000000104", "", "", ""), "FAILED", 3},
                                         {card("4100007000000107"), "FAILED", 3},
                                         {card("9999999999999999"), "FAILED", 3},
                                         {card("4000001000ABCDEF"), "FAILED", 3},
                                         {card("4100009000000109"), "FAILED", 3},
                                         {card("4100010000000110"), "FAILED", 3},
                                         {card("4100011000000111"), "PENDING", 3},
                                         {card("4100008000000108"), "RELINK", 3},
                                         {misconfirmed, "FAILED", 3},
                                         {confirmed, "SUCCESS", 4}}) {
    EXPECT_EQ(link(row.body), row.status) << row.body;
    const json::object list = wallet_->post("card/list/TALU").body;
    EXPECT_EQ(list.at("cards").get_array().size(), row.cards) << row.body;
  }
  const json::object list = wallet_->post("card/list/TALU").body;
  EXPECT_EQ(list.at("cards").get_array().back().at("cardHint"), "0108") << "a new card comes last";
}

TEST(Database, KeepsDevicesCardsTermsAndBinRulesOverARestartAndRefusesAnotherFile) {
  const TemporaryFolder folder;
  const std::string file = folder.path() / "state.db";
  std::string token;
  {
    Bench before(false, file);
    before.enrol(*before.wallet_, "27820000010");
    token = before.wallet_->ssToken;
    const std::int64_t cardId = before.wallet_->cardEnding("0202");
    before.wallet_->post("card/validate/TALU",
                         {{"validate", true}, {"cardId", cardId}, {"inputValue", ""}});
    before.control("POST", "/control/cards", R"({"bin":"499999999","needAccount":true})");
    before.control("POST", "/control/terms", R"({"version":7,"waitMilliseconds":1})");
  }
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  {
    Bench after(false, file);
    after.wallet_->ssToken = token;
    const Reply start = after.wallet_->start();
    EXPECT_EQ(start.body.at("activated"), true);
    EXPECT_EQ(start.body.at("requestTCs"), true);
    EXPECT_EQ(after.wallet_->pay(after.wallet_->purchase("FIXED-25", "0202")), "SUCCESS");
    const json::object bin = after.wallet_->post("card/bin/TALU", {{"bin", "499999999"}}).body;
    EXPECT_EQ(bin.at("needAccount"), true);
  }
  const std::string letter = "Dear Sir or Madam, this is certainly no database of any kind at all.";
  std::ofstream(file) << letter;
  Sandbox other({.database = file});
  EXPECT_THROW(other.start(), std::runtime_error);
  EXPECT_EQ(folder.everyByte(), letter);
}

}  // namespace
}  // namespace orlix::sandbox::test
