// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "tests/protocol/ClientAndServer.h"

namespace orlix::test {

namespace {

PurchaseRequest fullPurchase() {
  PurchaseRequest request;
  request.code = "6AB9";
  request.cardId = 9007199254740993;
  request.cvv = SecretString("321");
  request.location = Location{-26.5, 28.25, {}, {}, {}, {}};
  request.amount = "12.50";
  request.tipAmount = "1.00";
  request.extraRefValue = "a \"b\" \\ \n\r\t\b\f \x01 / é";
  request.billingListId = -7;
  request.shippingListId = 8;
  return request;
}

PurchaseRequest barePurchase() {
  PurchaseRequest request;
  request.code = "6AB9";
  return request;
}

CardInfoResponse cardWith(std::optional<std::string> month, std::optional<std::string> year) {
  CardInfoResponse card;
  card.cardNumber = SecretString("5413330089010640");
  card.expiryDateMonth = std::move(month);
  card.expiryDateYear = std::move(year);
  return card;
}

// Members of a body, as they are written.
const std::string kBare = R"(  "cardId" : 0,
  "billingListId" : 0,
  "shippingListId" : 0,
  "code" : "6AB9")";
const std::string kFull = R"(  "cvv" : "321",
  "locationInfo" : "[G:-26.5,28.25]",
  "amount" : "12.50",
  "tipAmount" : "1.00",
  "extraRefValue" : "a \"b\" \\ \n\r\t\b\f \u0001 \/ é",
  "cardId" : 9007199254740993,
  "billingListId" : -7,
  "shippingListId" : 8,
  "code" : "6AB9")";
const std::string kPinData = R"(  "pinData" : {
    "pinBlock" : "F005B8AE32436B80"
  },
)";
const std::string kSecureCode = R"(  "secureCodeData" : {
    "PaRes" : "pa+\/res=",
    "secureCodeId" : 77
  },
)";
const std::string kEmptyLink = R"(  "cardNumber" : "5413330089010640",
  "account" : "",
  "dateOfBirth" : "",
  "expiryMonth" : "",
  "expiryYear" : "",
  "linkedMsisdn" : "",
  "cardHolderName" : "",
  "locationInfo" : "")";
const std::string kFullLink = R"(  "cardNumber" : "5413330089010640",
  "account" : "acc",
  "dateOfBirth" : "1980-02-29",
  "expiryMonth" : "01",
  "expiryYear" : "27",
  "linkedMsisdn" : "27821234567",
  "cardHolderName" : "A Holder",
  "locationInfo" : "[G:1.5,2.5]")";

struct Row {
  std::string name;
  Call call;
  std::string path;
  std::string members;
};

const VelloSecureCodeData kAuthentication{77, SecretString("pa+/res=")};

const std::vector<Row> kRows = {
    {"sendMsisdn", [](auto& c) { c.sendMsisdn("+2782"); }, "/sms/send", R"(  "msisdn" : "+2782")"},
    {"processActivationCode", [](auto& c) { c.processActivationCode("0123"); },
     "/sms/activateSession", R"(  "activationCode" : "0123")"},
    {"getCardList", [](auto& c) { c.getCardList(); }, "/card/list/TALU", ""},
    {"delinkCard", [](auto& c) { c.delinkCard(9223372036854775807); }, "/card/delink/TALU",
     R"(  "cardId" : 9223372036854775807)"},
    {"validateCard", [](auto& c) { c.validateCard(false, 5, "1980-02-29"); }, "/card/validate/TALU",
     "  \"validate\" : false,\n  \"cardId\" : 5,\n  \"inputValue\" : \"1980-02-29\""},
    {"getBinInfo", [](auto& c) { c.getBinInfo("5413330089010640"); }, "/card/bin/TALU",
     R"(  "bin" : "541333008")"},
    {"getBinInfo counts characters, not bytes", [](auto& c) { c.getBinInfo("５４1333008"); },
     "/card/bin/TALU", R"(  "bin" : "５４1333008")"},
    {"updateTC has no node", [](auto& c) { c.updateTC(); }, "/profile/updateTC", ""},
    {"linkCard drops a year without a month, in the caller's record too",
     [](auto& c) {
       CardInfoResponse card = cardWith({}, "27");
       c.linkCard(card);
       EXPECT_EQ(card.expiryDateYear, "");
       EXPECT_EQ(card.account, "");
       EXPECT_FALSE(card.location);
     },
     "/card/link/TALU", kEmptyLink},
    {"linkCard with everything",
     [](auto& c) {
       CardInfoResponse card{SecretString("5413330089010640"),
                             "acc",
                             "01",
                             "27",
                             "1980-02-29",
                             "27821234567",
                             "A Holder",
                             Location{1.5, 2.5, {}, {}, {}, {}}};
       c.linkCard(card);
     },
     "/card/link/TALU", kFullLink},
    {"getCodeInfoV2", [](auto& c) { c.getCodeInfoV2("6AB9", "inapp"); }, "/lookup/query/v2/TALU",
     "  \"qrValue\" : \"6AB9\",\n  \"method\" : \"inapp\""},
    {"getSecureCodeUrl without amount", [](auto& c) { c.getSecureCodeUrl(5, "6AB9", {}); },
     "/card/scUrl/TALU", "  \"cardId\" : 5,\n  \"code\" : \"6AB9\",\n  \"amount\" : \"\""},
    {"get3DAuthSecureCodeUrl", [](auto& c) { c.get3DAuthSecureCodeUrl(5); },
     "/card/get3dsValidateUrl/TALU", R"(  "cardId" : 5)"},
    {"puchaseCNP with nothing but a code", [](auto& c) { c.puchaseCNP(barePurchase()); },
     "/purchase/TALU", kBare},
    {"puchaseCNP with everything", [](auto& c) { c.puchaseCNP(fullPurchase()); }, "/purchase/TALU",
     kFull},
    {"purchaseAMT",
     [](auto& c) {
       c.establishSession();
       c.purchaseAMT(fullPurchase(), SecretString("1234"));
     },
     "/purchase/TALU", kPinData + kFull},
    {"purchaseSecureCode", [](auto& c) { c.purchaseSecureCode(barePurchase(), kAuthentication); },
     "/purchase/TALU", kSecureCode + kBare},
    {"auth3DsCard", [](auto& c) { c.auth3DsCard(barePurchase(), kAuthentication); },
     "/auth3Ds/TALU", kSecureCode + kBare},
    {"pollForReceipt", [](auto& c) { c.pollForReceipt(12); }, "/receipt/poll/TALU",
     R"(  "transactionId" : 12)"},
};

using Headers = std::vector<std::pair<std::string, std::string>>;

}  // namespace

TEST(RequestsOnTheWire, CarryExactlyThesePathsBodiesAndHeaders) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    ClientAndServer test;
    EXPECT_EQ(test.run(row.call), "done");
    ASSERT_EQ(test.host.requests().size(), 2U);
    const RecordedRequest& request = test.host.requests()[1];
    EXPECT_EQ(request.url, "https://live.example/vello" + row.path);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.body, "{\n" + row.members + "\n}");
    EXPECT_EQ(request.headers, (Headers{{"Content-Type", "application/json"},
                                        {"x-session-token1", "one-1"},
                                        {"x-session-token2", "two-1"}}));
  }
}

TEST(RequestsOnTheWire, TheSessionRequestCarriesNoTokensAtFirst) {
  ClientAndServer test;
  test.run([](auto& c) { c.establishSession(); });
  const RecordedRequest& request = test.host.requests().at(0);
  EXPECT_EQ(request.url, "https://live.example/vello/session/new/TALU");
  EXPECT_EQ(request.headers, (Headers{{"Content-Type", "application/json"}}));
  EXPECT_EQ(request.body, R"({
  "deviceSerial" : "[p:)" + test.host.device().vendor +
                              R"(]",
  "appVersion" : "iPhone TALU 2.1.0",
  "hasDoubleSession" : true,
  "ssToken" : "",
  "timeZone" : "+02:00",
  "platform" : {
    "appVersion" : "2.1.0",
    "device" : "x86_64",
    "node" : "TALU",
    "os" : "IOS",
    "libKey" : "shop-key",
    "osVersion" : "17.4"
  }
})");
}

TEST(RequestsOnTheWire, ABodyThatCannotBeBuiltFailsAsSuchAndSendsNothing) {
  struct Case {
    std::string name;
    Call call;
    std::string end = "invalid argument";
    std::size_t sent = 0;
  };
  const std::vector<Case> cases = {
      {"a link without card number",
       [](auto& c) {
         CardInfoResponse card;
         c.linkCard(card);
       }},
      {"a link with month and no year",
       [](auto& c) {
         CardInfoResponse card = cardWith("01", {});
         c.linkCard(card);
       }},
      {"a number of 8 characters", [](auto& c) { c.getBinInfo("５４133300"); }, "out of range"},
      {"a lookup without code", [](auto& c) { c.getCodeInfoV2({}, "inapp"); }},
      {"a PIN before any session",
       [](auto& c) { c.purchaseAMT(barePurchase(), SecretString("1234")); }},
      {"an authentication without result",
       [](auto& c) { c.purchaseSecureCode(barePurchase(), {}); }},
      {"a PIN that is longer than a block",
       [](auto& c) {
         c.establishSession();
         c.purchaseAMT(barePurchase(), SecretString("12345678901234"));
       },
       "invalid argument", 1},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    ClientAndServer test;
    EXPECT_EQ(test.run(row.call), row.end);
    EXPECT_EQ(test.host.requests().size(), row.sent) << "the session's at most";
  }
}

TEST(RequestsOnTheWire, WhatCannotBeWrittenAsJsonIsAnEmptyObject) {
  EXPECT_EQ(KCVelloConnection::toJSONFrom({{"a", std::string("é")}}), "{\n  \"a\" : \"é\"\n}");
  for (const char* const text :
       {"\xff", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe2\x82"}) {
    EXPECT_EQ(KCVelloConnection::toJSONFrom({{"a", std::string(text)}}), "{}");
  }
}

}  // namespace orlix::test
