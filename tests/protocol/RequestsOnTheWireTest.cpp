#include <gtest/gtest.h>

#include "tests/protocol/ClientAndServer.h"

namespace orlix {

namespace {

const std::string base = "https://live.example/vello";

PurchaseRequest fullPurchase() {
  PurchaseRequest request;
  request.code = "6AB9";
  request.cardId = 9007199254740993;
  request.cvv = SecretString("321");
  request.location = Location{-26.5, 28.25, {}, {}, {}, {}};
  request.amount = "12.50";
  request.tipAmount = "1.00";
  request.extraRefValue = "a \"b\" \\ \n \x01 / é";
  request.billingListId = -7;
  request.shippingListId = 8;
  return request;
}

PurchaseRequest barePurchase() {
  PurchaseRequest request;
  request.code = "6AB9";
  return request;
}

const std::vector<std::string> bareMembers = {R"("cardId" : 0)", R"("billingListId" : 0)",
                                              R"("shippingListId" : 0)", R"("code" : "6AB9")"};
const std::vector<std::string> fullMembers = {R"("cvv" : "321")",
                                              R"("locationInfo" : "[G:-26.5,28.25]")",
                                              R"("amount" : "12.50")",
                                              R"("tipAmount" : "1.00")",
                                              R"("extraRefValue" : "a \"b\" \\ \n \u0001 \/ é")",
                                              R"("cardId" : 9007199254740993)",
                                              R"("billingListId" : -7)",
                                              R"("shippingListId" : 8)",
                                              R"("code" : "6AB9")"};
const std::string pinDataOf1234 = "\"pinData\" : {\n    \"pinBlock\" : \"F005B8AE32436B80\"\n  }";
const std::string secureCodeData =
    "\"secureCodeData\" : {\n    \"PaRes\" : \"pa+\\/res=\",\n    \"secureCodeId\" : 77\n  }";

std::string objectAfter(const std::string& first, std::vector<std::string> members) {
  members.insert(members.begin(), first);
  return object(members);
}

CardInfoResponse cardWith(std::optional<std::string> month, std::optional<std::string> year) {
  CardInfoResponse card;
  card.cardNumber = "5413330089010640";
  card.expiryDateMonth = std::move(month);
  card.expiryDateYear = std::move(year);
  return card;
}

std::string linkBody(const std::string& month, const std::string& year) {
  return object({R"("cardNumber" : "5413330089010640")", R"("account" : "")",
                 R"("dateOfBirth" : "")", R"("expiryMonth" : ")" + month + "\"",
                 R"("expiryYear" : ")" + year + "\"", R"("linkedMsisdn" : "")",
                 R"("cardHolderName" : "")", R"("locationInfo" : "")"});
}

struct Row {
  std::string name;
  ClientAndServer::Call call;
  std::string path;
  std::string body;
};

const VelloSecureCodeData authentication{77, "pa+/res="};

const std::vector<Row> rows = {
    {"sendMsisdn", [](auto& c) { c.sendMsisdn("+27821234567"); }, "/sms/send",
     object({R"("msisdn" : "+27821234567")"})},
    {"processActivationCode", [](auto& c) { c.processActivationCode("0123"); },
     "/sms/activateSession", object({R"("activationCode" : "0123")"})},
    {"getCardList", [](auto& c) { c.getCardList(); }, "/card/list/TALU", "{\n\n}"},
    {"delinkCard", [](auto& c) { c.delinkCard(9223372036854775807); }, "/card/delink/TALU",
     object({R"("cardId" : 9223372036854775807)"})},
    {"validateCard", [](auto& c) { c.validateCard(false, 5, "1980-02-29"); }, "/card/validate/TALU",
     object({R"("validate" : false)", R"("cardId" : 5)", R"("inputValue" : "1980-02-29")"})},
    {"getBinInfo", [](auto& c) { c.getBinInfo("5413330089010640"); }, "/card/bin/TALU",
     object({R"("bin" : "541333008")"})},
    {"getBinInfo counts characters, not bytes", [](auto& c) { c.getBinInfo("５４1333008"); },
     "/card/bin/TALU", object({R"("bin" : "５４1333008")"})},
    {"updateTC has no node", [](auto& c) { c.updateTC(); }, "/profile/updateTC", "{\n\n}"},
    {"linkCard without month and year",
     [](auto& c) {
       CardInfoResponse card = cardWith({}, {});
       c.linkCard(card);
     },
     "/card/link/TALU", linkBody("", "")},
    {"linkCard drops a year without a month, in the caller's record too",
     [](auto& c) {
       CardInfoResponse card = cardWith({}, "27");
       c.linkCard(card);
       EXPECT_EQ(card.expiryDateYear, "");
       EXPECT_EQ(card.account, "");
       EXPECT_FALSE(card.location);
     },
     "/card/link/TALU", linkBody("", "")},
    {"linkCard with everything",
     [](auto& c) {
       CardInfoResponse card{
           "5413330089010640", "acc",         "01",       "27",
           "1980-02-29",       "27821234567", "A Holder", Location{1.5, 2.5, {}, {}, {}, {}}};
       c.linkCard(card);
     },
     "/card/link/TALU",
     object({R"("cardNumber" : "5413330089010640")", R"("account" : "acc")",
             R"("dateOfBirth" : "1980-02-29")", R"("expiryMonth" : "01")", R"("expiryYear" : "27")",
             R"("linkedMsisdn" : "27821234567")", R"("cardHolderName" : "A Holder")",
             R"("locationInfo" : "[G:1.5,2.5]")"})},
    {"getCodeInfoV2", [](auto& c) { c.getCodeInfoV2("6AB9", "inapp"); }, "/lookup/query/v2/TALU",
     object({R"("qrValue" : "6AB9")", R"("method" : "inapp")"})},
    {"getSecureCodeUrl without amount", [](auto& c) { c.getSecureCodeUrl(5, "6AB9", {}); },
     "/card/scUrl/TALU", object({R"("cardId" : 5)", R"("code" : "6AB9")", R"("amount" : "")"})},
    {"get3DAuthSecureCodeUrl", [](auto& c) { c.get3DAuthSecureCodeUrl(5); },
     "/card/get3dsValidateUrl/TALU", object({R"("cardId" : 5)"})},
    {"puchaseCNP with nothing but a code", [](auto& c) { c.puchaseCNP(barePurchase()); },
     "/purchase/TALU", object(bareMembers)},
    {"puchaseCNP with everything", [](auto& c) { c.puchaseCNP(fullPurchase()); }, "/purchase/TALU",
     object(fullMembers)},
    {"purchaseAMT",
     [](auto& c) {
       c.establishSession();
       c.purchaseAMT(fullPurchase(), SecretString("1234"));
     },
     "/purchase/TALU", objectAfter(pinDataOf1234, fullMembers)},
    {"purchaseSecureCode", [](auto& c) { c.purchaseSecureCode(barePurchase(), authentication); },
     "/purchase/TALU", objectAfter(secureCodeData, bareMembers)},
    {"auth3DsCard", [](auto& c) { c.auth3DsCard(barePurchase(), authentication); }, "/auth3Ds/TALU",
     objectAfter(secureCodeData, bareMembers)},
    {"pollForReceipt", [](auto& c) { c.pollForReceipt(12); }, "/receipt/poll/TALU",
     object({R"("transactionId" : 12)"})},
};

using Headers = std::vector<std::pair<std::string, std::string>>;

TEST(RequestsOnTheWire, CarryExactlyThesePathsBodiesAndHeaders) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    ClientAndServer test;
    EXPECT_EQ(test.run(row.call).failure, nullptr);
    ASSERT_EQ(test.host.requests().size(), 2U);
    const RecordedRequest& request = test.host.requests()[1];
    EXPECT_EQ(request.url, base + row.path);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.body, row.body);
    EXPECT_EQ(request.headers, (Headers{{"Content-Type", "application/json"},
                                        {"x-session-token1", "one-1"},
                                        {"x-session-token2", "two-1"}}));
  }
}

TEST(RequestsOnTheWire, TheSessionRequestCarriesNoTokensAtFirst) {
  ClientAndServer test;
  test.run([](auto& c) { c.establishSession(); });
  const RecordedRequest& request = test.host.requests().at(0);
  EXPECT_EQ(request.url, base + "/session/new/TALU");
  EXPECT_EQ(request.headers, (Headers{{"Content-Type", "application/json"}}));
  EXPECT_EQ(request.body,
            object({"\"deviceSerial\" : \"[p:" + test.host.device().vendor + "]\"",
                    R"("appVersion" : "iPhone TALU 2.1.0")", R"("hasDoubleSession" : true)",
                    R"("ssToken" : "")", R"("timeZone" : "+02:00")",
                    "\"platform\" : {\n    \"appVersion\" : \"2.1.0\",\n"
                    "    \"device\" : \"x86_64\",\n    \"node\" : \"TALU\",\n"
                    "    \"os\" : \"IOS\",\n    \"libKey\" : \"shop-key\",\n"
                    "    \"osVersion\" : \"17.4\"\n  }"}));
}

TEST(RequestsOnTheWire, ABodyThatCannotBeBuiltFailsAsSuchAndSendsNothing) {
  struct Case {
    std::string name;
    ClientAndServer::Call call;
    bool isRange;
  };
  const PurchaseRequest withoutCode;
  const std::vector<Case> cases = {
      {"a link without card number",
       [](auto& c) {
         CardInfoResponse card;
         c.linkCard(card);
       },
       false},
      {"a link with month and no year",
       [](auto& c) {
         CardInfoResponse card = cardWith("01", {});
         c.linkCard(card);
       },
       false},
      {"a number of 8 characters", [](auto& c) { c.getBinInfo("５４133300"); }, true},
      {"a lookup without code", [](auto& c) { c.getCodeInfoV2({}, "inapp"); }, false},
      {"an address without code", [](auto& c) { c.getSecureCodeUrl(1, {}, "1"); }, false},
      {"a purchase without code", [&](auto& c) { c.puchaseCNP(withoutCode); }, false},
      {"a PIN before any session",
       [](auto& c) { c.purchaseAMT(barePurchase(), SecretString("1234")); }, false},
      {"an authentication without result",
       [](auto& c) { c.purchaseSecureCode(barePurchase(), {}); }, false},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    ClientAndServer test;
    const Outcome outcome = test.run(row.call);
    EXPECT_EQ(outcome.failedWith<std::out_of_range>(), row.isRange);
    EXPECT_EQ(outcome.failedWith<std::invalid_argument>(), !row.isRange);
    EXPECT_TRUE(test.host.requests().empty());
  }
}

TEST(RequestsOnTheWire, APinOfAnImpossibleLengthFailsBeforeAnythingIsSent) {
  ClientAndServer test;
  test.run([](auto& c) { c.establishSession(); });
  const Outcome outcome =
      test.run([](auto& c) { c.purchaseAMT(barePurchase(), SecretString("12345678901234")); });
  EXPECT_TRUE(outcome.failedWith<std::invalid_argument>());
  EXPECT_TRUE(test.requestsTo("/purchase").empty());
}

TEST(RequestsOnTheWire, AnEmptyPollIsNoReceiptAndNoFailure) {
  for (const ServerReply& reply : {ServerReply::of(200, ""), ServerReply().status(200).silence()}) {
    ClientAndServer test;
    test.host.connections().on("/receipt", reply);
    bool hasReceipt = true;
    const Outcome outcome =
        test.run([&](auto& c) { hasReceipt = c.pollForReceipt(1).has_value(); });
    EXPECT_EQ(outcome.failure, nullptr);
    EXPECT_FALSE(hasReceipt);
  }
}

TEST(RequestsOnTheWire, WhatCannotBeWrittenAsJsonIsAnEmptyObject) {
  EXPECT_EQ(KCVelloConnection::toJSONFrom({{"a", std::string("b")}}), object({R"("a" : "b")"}));
  for (const char* const text :
       {"\xff", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe2\x82"}) {
    EXPECT_EQ(KCVelloConnection::toJSONFrom({{"a", std::string(text)}}), "{}");
  }
}

TEST(RequestsOnTheWire, TheSerialNamesWhatIsThereInItsOrder) {
  EXPECT_EQ(Serial{}.buildSerial(), "");
  EXPECT_EQ((Serial{"1", "2", "3", "4", "5"}).buildSerial(), "[i:1],[s:2],[p:5],[p:4],[p:3]");
  EXPECT_EQ((Serial{"", {}, "3", "", {}}).buildSerial(), "[p:3]");
}

}  // namespace

}  // namespace orlix
