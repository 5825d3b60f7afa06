#include "tests/sandbox/EnrolledTest.h"

namespace orlix::sandbox::test {
namespace {

/// A device enrolled by number, whose wallet is empty at first.
class Cards : public testing::Test {
 protected:
  Cards() : sandbox_({.onEvent = events_.sink()}) {
    sandbox_.start();
    wallet_.emplace(sandbox_);
    EXPECT_EQ(wallet_->enrol(events_, "27821112222").status, 200);
  }

  static json::object card(const std::string& number) {
    return {{"cardNumber", number}, {"account", ""},     {"dateOfBirth", ""},
            {"expiryMonth", ""},    {"expiryYear", ""},  {"linkedMsisdn", ""},
            {"cardHolderName", ""}, {"locationInfo", ""}};
  }

  /// With what most BINs ask for.
  static json::object usualCard(const std::string& number) {
    json::object body = card(number);
    body["expiryMonth"] = "12";
    body["expiryYear"] = "40";
    body["cardHolderName"] = "A B Customer";
    return body;
  }

  Reply link(const json::object& body) { return wallet_->post("/vello/card/link/TALU", body); }

  std::string validate(std::string_view hint, std::string_view input) {
    const json::object body{
        {"validate", true}, {"cardId", wallet_->cardEnding(hint)}, {"inputValue", input}};
    return textOf(wallet_->post("/vello/card/validate/TALU", body).body, "message");
  }

  Events events_;
  Sandbox sandbox_;
  std::optional<Wallet> wallet_;
};

TEST_F(Cards, BinTellsWhatMustBeAsked) {
  struct Row {
    const char* bin;
    bool supported, exp, dob, name, account;
  };
  for (const Row& row : std::vector<Row>{{"400000100", true, true, false, true, false},
                                         {"410000100", true, false, false, false, false},
                                         {"410000200", true, true, false, false, false},
                                         {"410000300", true, false, true, false, false},
                                         {"410000400", true, false, false, true, false},
                                         {"410000500", true, false, false, false, true},
                                         {"410000600", true, true, true, true, true},
                                         {"410000700", false, false, false, false, false},
                                         {"abcdefghi", false, false, false, false, false}}) {
    const json::object info = wallet_->post("/vello/card/bin/TALU", {{"bin", row.bin}}).body;
    EXPECT_EQ(booleanOf(info, "cardSupported"), row.supported) << row.bin;
    EXPECT_EQ(booleanOf(info, "needExp"), row.exp) << row.bin;
    EXPECT_EQ(booleanOf(info, "needDob"), row.dob) << row.bin;
    EXPECT_EQ(booleanOf(info, "needCardHolderName"), row.name) << row.bin;
    EXPECT_EQ(booleanOf(info, "needAccount"), row.account) << row.bin;
  }
  EXPECT_EQ(wallet_->post("/vello/card/bin/TALU", {{"bin", "40000010"}}).status, 400);
}

TEST_F(Cards, LinkingTakesWhatTheBinAsksForAndNothingElse) {
  struct Row {
    const char* what;
    json::object body;
    int http;
    const char* status;
    size_t cards;
  };
  json::object all = usualCard("4100006000000106");
  all["dateOfBirth"] = "19901231";
  all["account"] = "Savings";
  json::object monthZero = usualCard("4000001000001111");
  monthZero["expiryMonth"] = "00";
  json::object surplus = usualCard("4100002000000102");
  json::object noAccount = all;
  noAccount["account"] = "Gold";
  const std::vector<Row> rows{
      {"usual card", usualCard("4000001000001111"), 200, "SUCCESS", 1},
      {"the same once more", usualCard("4000001000001111"), 200, "SUCCESS", 1},
      {"nothing asked", card("4100001000000101"), 200, "SUCCESS", 2},
      {"everything asked", all, 200, "SUCCESS", 3},
      {"an account that there is not", noAccount, 200, "FAILED", 3},
      {"month 00", monthZero, 200, "FAILED", 3},
      {"a name that was not asked for", surplus, 400, "", 3},
      {"missing name", card("4100004000000104"), 200, "FAILED", 3},
      {"BIN not supported", card("4100007000000107"), 200, "FAILED", 3},
      {"unknown BIN", card("9999999999999999"), 200, "FAILED", 3},
      {"letters", card("4000001000ABCDEF"), 200, "FAILED", 3},
      {"link that fails", usualCard("4100009000000109"), 200, "FAILED", 3},
      {"somebody else's card", usualCard("4100010000000110"), 200, "FAILED", 3},
      {"unheard-of status", usualCard("4100011000000111"), 200, "PENDING", 3},
  };
  for (const Row& row : rows) {
    const Reply reply = link(row.body);
    EXPECT_EQ(reply.status, row.http) << row.what << ": " << reply.text;
    EXPECT_EQ(textOf(reply.body, "status"), row.status) << row.what;
    const json::object list = wallet_->post("/vello/card/list/TALU", {}).body;
    EXPECT_EQ(list.at("cards").get_array().size(), row.cards) << row.what;
  }
}

TEST_F(Cards, RelinkedCardNeedsTheNumberThatItsBankKnows) {
  json::object body = usualCard("4100008000000108");
  EXPECT_EQ(textOf(link(body).body, "status"), "RELINK");
  body["linkedMsisdn"] = "0821234568";
  EXPECT_EQ(textOf(link(body).body, "status"), "FAILED");
  EXPECT_EQ(wallet_->cardEnding("0108"), 0);
  for (const char* right : {"0821234567", "+27 82 123 4567", "27821234567", "0027821234567"}) {
    body["linkedMsisdn"] = right;
    EXPECT_EQ(textOf(link(body).body, "status"), "SUCCESS") << right;
  }
  EXPECT_NE(wallet_->cardEnding("0108"), 0);
}

TEST_F(Cards, NewCardComesLastInTheList) {
  link(usualCard("4000001000001111"));
  const Reply second = link(card("4100001000000101"));
  const json::array& cards = second.body.at("cardList").at("cards").get_array();
  ASSERT_EQ(cards.size(), 2U);
  EXPECT_EQ(cards.front().at("cardHint"), "1111");
  EXPECT_EQ(cards.back().at("cardHint"), "0101");
}

TEST_F(Cards, DateOfBirthValidatesTheCardOrRemovesIt) {
  link(usualCard("4200001000000201"));
  EXPECT_EQ(validate("0201", "1990-12-31"), "Your card has been added");
  json::object body = wallet_->withPin(wallet_->purchase("FIXED-25", "0201", "25.00"), "1234");
  EXPECT_EQ(textOf(wallet_->post("/vello/purchase/TALU", body).body, "status"), "SUCCESS");

  const json::object id{{"cardId", wallet_->cardEnding("0201")}};
  EXPECT_EQ(textOf(wallet_->post("/vello/card/delink/TALU", id).body, "status"), "SUCCESS");
  EXPECT_EQ(textOf(wallet_->post("/vello/card/delink/TALU", id).body, "status"), "FAILED");
  link(usualCard("4200001000000201"));
  EXPECT_NE(validate("0201", "1990-12-30"), "Your card has been added");
  EXPECT_EQ(wallet_->cardEnding("0201"), 0) << "the card is gone";
}

TEST_F(Cards, OtherValidationsLeaveTheCardWhereItIs) {
  for (const char* number : {"4200002000000202", "4200003000000203", "4200004000000204"}) {
    link(usualCard(number));
  }
  EXPECT_NE(validate("0202", "1990-12-31"), "Your card has been added");
  EXPECT_EQ(validate("0202", ""), "Your card has been added");
  EXPECT_NE(validate("0203", ""), "Your card has been added") << "its issuer comes first";
  EXPECT_NE(validate("0204", ""), "Your card has been added");
  EXPECT_NE(validate("9999", ""), "Your card has been added") << "no such card";
  EXPECT_NE(wallet_->cardEnding("0203"), 0);
  EXPECT_NE(wallet_->cardEnding("0204"), 0);
}

TEST_F(Cards, CardOfAnotherWalletIsOutOfReach) {
  link(usualCard("4000001000001111"));
  const std::int64_t mine = wallet_->cardEnding("1111");
  Wallet other(sandbox_, "[p:0B]");
  other.enrol(events_, "27823334444");
  EXPECT_EQ(textOf(other.post("/vello/card/delink/TALU", {{"cardId", mine}}).body, "status"),
            "FAILED");
  json::object body = other.purchase("FIXED-25", "1111", "25.00");
  body["cardId"] = mine;
  body = other.withPin(body, "1234");
  EXPECT_EQ(textOf(other.post("/vello/purchase/TALU", body).body, "status"), "ERROR");
  EXPECT_EQ(wallet_->cardEnding("1111"), mine);
}

}  // namespace
}  // namespace orlix::sandbox::test
