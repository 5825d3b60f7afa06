#include "tests/sandbox/EnrolledTest.h"

namespace orlix::sandbox::test {
namespace {

using Checkout = EnrolledTest;

json::object without(json::object body, std::string_view key) {
  body.erase({key.data(), key.size()});
  return body;
}

json::object with(json::object body, std::string_view key, json::value value) {
  body[{key.data(), key.size()}] = std::move(value);
  return body;
}

TEST_F(Checkout, LookupTellsWhatACodeStandsFor) {
  struct Row {
    const char* code;
    const char* key;
    json::value value;
  };
  const std::vector<Row> rows{
      {"FIXED-25", "amountString", "R 25.00"},
      {"FIXED-25", "amount", "25.00"},
      {"OPEN", "amountString", ""},
      {"OPEN-10", "amount", "10.00"},
      {"TIP", "requestTip", true},
      {"BILLING", "requestBilling", true},
      {"SHIPPING", "requestShipping", true},
      {"PARTIAL", "requestPartialPayment", true},
      {"ORLIX-DATA", "orlixData", true},
      {"CONTACT", "requestContact", true},
      {"RICH", "vasProfileId", "42"},
      {"EXTRA-REF", "extraReferenceName", "Customer number"},
      {"ALIAS-25", "code", "FIXED-25"},
  };
  for (const Row& row : rows) {
    const Reply reply = wallet_->lookUp(row.code);
    ASSERT_TRUE(reply.body.contains("codeInfo")) << row.code << ": " << reply.text;
    EXPECT_EQ(reply.body.at("codeInfo").at(row.key), row.value) << row.code;
    EXPECT_GT(reply.body.at("cardList").at("cards").get_array().size(), 20U) << row.code;
  }
  EXPECT_FALSE(wallet_->lookUp("NO-SUCH-CODE").body.contains("codeInfo"));
  EXPECT_FALSE(
      wallet_->lookUp("NO-CURRENCY").body.at("codeInfo").get_object().contains("currency"));
  EXPECT_TRUE(wallet_->lookUp("NO-CARDS").body.at("cardList").at("cards").get_array().empty());
}

TEST_F(Checkout, EachCardPaysInItsOwnWayOnly) {
  struct Row {
    const char* what;
    const char* hint;
    const char* pin;  ///< Empty: without PIN.
    const char* cvv;  ///< Empty: the key is left out.
    const char* status;
  };
  const std::vector<Row> rows{
      {"PIN card", "1111", "1234", "", "SUCCESS"},
      {"PIN card, wrong PIN", "1111", "4321", "", "INVALID_PASSWORD"},
      {"PIN card without PIN", "1111", "", "", "ERROR"},
      {"card without PIN", "2222", "", "", "SUCCESS"},
      {"card without PIN, with one", "2222", "1234", "", "ERROR"},
      {"CVV card", "3333", "", "1234", "SUCCESS"},
      {"CVV card, wrong CVV", "3333", "", "123", "ERROR"},
      {"CVV card without CVV", "3333", "", "", "ERROR"},
      {"CVV and PIN card", "4444", "1234", "123", "SUCCESS"},
      {"CVV and PIN card, wrong PIN", "4444", "0000", "123", "INVALID_PASSWORD"},
      {"wallet card", "5555", "1234", "", "ERROR"},
      {"card that its bank declines", "6666", "", "", "ERROR"},
      {"card with a long PIN", "7777", "987654321", "", "SUCCESS"},
      {"card that is not validated", "0201", "1234", "", "ERROR"},
      {"3-D Secure card without its issuer", "0301", "", "", "ERROR"},
      {"card of no wallet", "9999", "1234", "", "ERROR"},
  };
  for (const Row& row : rows) {
    json::object body = wallet_->purchase("FIXED-25", row.hint, "25.00");
    if (*row.cvv != '\0') body["cvv"] = row.cvv;
    if (*row.pin != '\0') body = wallet_->withPin(body, row.pin);
    EXPECT_EQ(pay(body), row.status) << row.what;
  }
}

TEST_F(Checkout, AmountMustFitTheCode) {
  struct Row {
    const char* code;
    const char* amount;
    const char* status;
  };
  for (const Row& row : std::vector<Row>{{"FIXED-25", "25.00", "SUCCESS"},
                                         {"FIXED-25", "25", "ERROR"},
                                         {"OPEN", "12.5", "SUCCESS"},
                                         {"OPEN", "0.00", "ERROR"},
                                         {"RANGE", "9.99", "ERROR"},
                                         {"RANGE", "10.00", "SUCCESS"},
                                         {"RANGE", "100.01", "ERROR"},
                                         {"DECLINED", "25.00", "ERROR"},
                                         {"LOWER-CASE", "25.00", "success"},
                                         {"ALIAS-25", "25.00", "ERROR"},
                                         {"NO-SUCH-CODE", "25.00", "ERROR"}}) {
    EXPECT_EQ(pay(pinPurchase(row.code, row.amount)), row.status) << row.code << row.amount;
  }
}

TEST_F(Checkout, BodyThatIsNotTheProtocolsIsRefusedWithTheReason) {
  const json::object right = pinPurchase();
  const json::object secureCode{{"PaRes", "x"}, {"secureCodeId", 1}};
  struct Row {
    json::object body;
    const char* reason;
  };
  const std::vector<Row> rows{
      {without(right, "code"), "lacks \\\"code\\\""},
      {without(right, "cardId"), "lacks \\\"cardId\\\""},
      {without(right, "billingListId"), "lacks \\\"billingListId\\\""},
      {without(right, "shippingListId"), "lacks \\\"shippingListId\\\""},
      {with(right, "cardId", "1001"), "is not an integer"},
      {with(right, "cardId", 1001.0), "is not an integer"},
      {with(right, "amount", 25), "is not a string"},
      {with(right, "amount", "25,00"), "no decimal number"},
      {with(right, "tipAmount", "x"), "no decimal number"},
      {with(right, "locationInfo", "[G:1,2],"), "locationInfo"},
      {with(right, "pin", "1234"), "unknown key"},
      {with(right, "pinData", json::object{}), "lacks \\\"pinBlock\\\""},
      {with(right, "pinData", json::object{{"pinBlock", "abcdef0123456789"}}), "upper-case"},
      {with(right, "secureCodeData", secureCode), "exclude each other"},
      {with(without(right, "pinData"), "secureCodeData", json::object{{"PaRes", "x"}}), "lacks"},
  };
  for (const Row& row : rows) {
    const Reply reply = wallet_->post("/vello/purchase/TALU", row.body);
    EXPECT_EQ(reply.status, 400) << reply.text;
    EXPECT_NE(reply.text.find(row.reason), std::string::npos) << reply.text;
  }
  for (const char* location : {"", "[G:-33.9,18.4]", "[N:655,1,2,3]", "[G:1.5,2],[N:655,1,2,3]"}) {
    EXPECT_EQ(pay(with(right, "locationInfo", location)), "SUCCESS") << location;
  }
}

TEST_F(Checkout, ReceiptComesAsItsCodeSays) {
  struct Row {
    const char* code;
    std::vector<std::string> polls;  ///< "status" of each poll; "-" an empty body.
  };
  const std::vector<Row> rows{
      {"FIXED-25", {"SUCCESS", "SUCCESS"}},
      {"RECEIPT-FAILED", {"FAILED"}},
      {"SLOW-RECEIPT", {"", "", "", "SUCCESS"}},
      {"EMPTY-POLLS", {"-", "-", "-", "SUCCESS"}},
      {"NO-RECEIPT", {"", "", "", "", "", "", "", "", ""}},
  };
  for (const Row& row : rows) {
    const Reply paid = wallet_->post("/vello/purchase/TALU", pinPurchase(row.code));
    const json::object poll{{"transactionId", integerOf(paid.body, "transactionId")}};
    for (const std::string& expected : row.polls) {
      const Reply receipt = wallet_->post("/vello/receipt/poll/TALU", poll);
      EXPECT_EQ(receipt.status, 200);
      EXPECT_EQ(receipt.text.empty() ? "-" : textOf(receipt.body, "status"), expected) << row.code;
    }
  }
  EXPECT_EQ(wallet_->post("/vello/receipt/poll/TALU", {{"transactionId", 1}}).status, 400);
}

TEST_F(Checkout, BigReferenceIsLostByAReaderThatUsesDoubles) {
  for (int i = 0; i < 2; ++i) {
    const Reply paid = wallet_->post("/vello/purchase/TALU", pinPurchase("BIG-REFERENCE"));
    const std::int64_t id = integerOf(paid.body, "transactionId");
    EXPECT_NE(static_cast<std::int64_t>(static_cast<double>(id)), id);
  }
}

TEST_F(Checkout, ForgottenSessionIsHealedByANewOneWithANewPinKey) {
  wallet_->lookUp("FORGET");
  const json::object underOldKey = pinPurchase();  // Its card list request meets the 403.
  EXPECT_EQ(wallet_->post("/vello/purchase/TALU", underOldKey).status, 403);
  wallet_->start();
  json::object again = underOldKey;
  again["cardId"] = wallet_->cardEnding("1111");
  EXPECT_EQ(pay(again), "INVALID_PASSWORD") << "the block was made under the forgotten key";
  EXPECT_EQ(pay(pinPurchase()), "SUCCESS");
}

TEST_F(Checkout, ForbiddenPurchasesStayForbiddenUntilTheFaultsAreCleared) {
  wallet_->lookUp("FORBIDDEN");
  for (int i = 0; i < 5; ++i) {
    wallet_->start();
    EXPECT_EQ(wallet_->post("/vello/purchase/TALU", pinPurchase()).status, 403);
  }
  EXPECT_EQ(integerOf(control("/control/purchases"), "paid"), 0);
  sandbox_.control("DELETE", "/control/faults");
  EXPECT_EQ(pay(pinPurchase()), "SUCCESS");
}

TEST_F(Checkout, CodeThatSpoilsThePurchaseDoesSoEverySecondTime) {
  struct Row {
    const char* code;
    int status;  ///< Of the first answer; 0: none arrives.
    int paid;    ///< After the first purchase.
  };
  int paid = 0;
  for (const Row& row :
       std::vector<Row>{{"SERVER-ERROR", 500, 0}, {"HANG-UP", 0, 1}, {"EMPTY-ANSWER", 200, 1}}) {
    const Reply spoilt = wallet_->post("/vello/purchase/TALU", pinPurchase(row.code));
    EXPECT_EQ(spoilt.status, row.status) << row.code;
    EXPECT_EQ(textOf(spoilt.body, "status"), "") << row.code;
    paid += row.paid;
    EXPECT_EQ(integerOf(control("/control/purchases"), "paid"), paid) << row.code;
    EXPECT_EQ(pay(pinPurchase(row.code)), "SUCCESS") << row.code;
    ++paid;
  }
  EXPECT_EQ(integerOf(control("/control/purchases"), "received"), 6);
}

TEST_F(Checkout, AccountOfPurchasesKeepsNoSecret) {
  json::object body = wallet_->purchase("FIXED-25", "4444", "25.00");
  body["cvv"] = "123";
  body = wallet_->withPin(body, "1234");
  ASSERT_EQ(pay(body), "SUCCESS");
  const json::object account = control("/control/purchases");
  const json::object& kept = account.at("purchases").at(0).at("body").get_object();
  EXPECT_EQ(kept.at("cvv"), "***");
  EXPECT_EQ(kept.at("pinData").at("pinBlock"), "***");
  EXPECT_EQ(kept.at("amount"), "25.00");
  EXPECT_EQ(account.at("purchases").at(0).at("outcome"), "SUCCESS");
}

TEST_F(Checkout, NextSessionStartIsAnsweredAsTheLookedUpCodeSaysAndOnlyOnce) {
  struct Row {
    const char* code;
    bool activated;
    bool allowed;
    json::value message;  ///< Null: the key is absent.
    bool terms;
  };
  const std::vector<Row> rows{
      {"NEXT-NOTICE", true, true, "A newer version is available.", false},
      {"NEXT-REFUSED", true, false, "This version is no longer supported.", false},
      {"NEXT-REFUSED-EMPTY", true, false, "", false},
      {"NEXT-REFUSED-ABSENT", true, false, nullptr, false},
      {"NEXT-ENROL", false, true, "", false},
  };
  for (const Row& row : rows) {
    ASSERT_EQ(wallet_->lookUp(row.code).status, 200) << row.code;
    const json::object start = wallet_->start().body;
    EXPECT_EQ(start.at("activated"), row.activated) << row.code;
    EXPECT_EQ(start.at("allowConnection"), row.allowed) << row.code;
    EXPECT_EQ(start.contains("message") ? start.at("message") : json::value(), row.message);
    EXPECT_EQ(start.at("requestTCs"), row.terms) << row.code;
    const json::object next = wallet_->start().body;
    EXPECT_EQ(next.at("activated"), true) << row.code;
    EXPECT_EQ(next.at("allowConnection"), true) << row.code;
    EXPECT_EQ(next.at("message"), "") << row.code;
  }
}

TEST_F(Checkout, ChangedTermsAreAskedForUntilAcceptedAndHoldTheLookupMeanwhile) {
  sandbox_.control("POST", "/control/terms", R"({"waitMilliseconds":1})");
  wallet_->lookUp("NEXT-TERMS");
  EXPECT_EQ(wallet_->start().body.at("requestTCs"), true);
  EXPECT_EQ(wallet_->start().body.at("requestTCs"), true);
  EXPECT_TRUE(wallet_->lookUp("FIXED-25").body.contains("codeInfo")) << "after the wait";

  sandbox_.control("POST", "/control/terms", R"({"waitMilliseconds":600000})");
  Wallet other(sandbox_);  // The same device: the one shows the terms, the other waits.
  other.start();
  std::thread accepting([&] { wallet_->post("/vello/profile/updateTC", {}); });
  EXPECT_TRUE(other.lookUp("FIXED-25").body.contains("codeInfo"));
  accepting.join();
  EXPECT_EQ(wallet_->start().body.at("requestTCs"), false);
  sandbox_.control("POST", "/control/terms");
  EXPECT_EQ(wallet_->start().body.at("requestTCs"), true) << "a new version was published";
}

}  // namespace
}  // namespace orlix::sandbox::test
