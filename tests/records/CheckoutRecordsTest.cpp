#include <stdexcept>

#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/Location.h"
#include "orlixkit/records/MTCardResponse.h"
#include "orlixkit/records/MTCodeResponse.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"
#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

/// One field of the lookup's record: the key, how it is read, how it is flagged.
template <class Field>
struct Row {
  const char* key;
  Field MTCodeInfo::*field;
  bool MTCodeInfo::*flag;
};

const Row<std::optional<std::string>> texts[] = {
    {"code", &MTCodeInfo::code, &MTCodeInfo::hasCode},
    {"amountString", &MTCodeInfo::amountString, &MTCodeInfo::hasAmountString},
    {"currency", &MTCodeInfo::currency, &MTCodeInfo::hasCurrency},
    {"merchantName", &MTCodeInfo::merchantName, &MTCodeInfo::hasMerchantName},
    {"shortDescription", &MTCodeInfo::shortDescription, &MTCodeInfo::hasShortDescription},
    {"acceptedCards", &MTCodeInfo::acceptedCards, &MTCodeInfo::hasAcceptedCards},
    {"acceptedPayments", &MTCodeInfo::acceptedPayments, &MTCodeInfo::hasAcceptedPayments},
    {"extraReferenceName", &MTCodeInfo::extraReferenceName, &MTCodeInfo::hasExtraReferenceName},
    {"vasInput", &MTCodeInfo::vasInput, &MTCodeInfo::hasVasInput},
    {"vasInputMessage", &MTCodeInfo::vasInputMessage, &MTCodeInfo::hasVasInputMessage},
    {"vasImageURL", &MTCodeInfo::vasImageURL, &MTCodeInfo::hasVasImageURL},
    {"amount", &MTCodeInfo::amount, &MTCodeInfo::hasAmount},
    {"tipFixed", &MTCodeInfo::tipFixed, &MTCodeInfo::hasTipFixed},
    {"tipPercentage", &MTCodeInfo::tipPercentage, &MTCodeInfo::hasTipPercentage},
};

const Row<bool> booleans[] = {
    {"orlixData", &MTCodeInfo::orlixData, &MTCodeInfo::hasOrlixData},
    {"requestContact", &MTCodeInfo::requestContact, &MTCodeInfo::hasRequestContact},
    {"requestBilling", &MTCodeInfo::requestBilling, &MTCodeInfo::hasRequestBilling},
    {"requestShipping", &MTCodeInfo::requestShipping, &MTCodeInfo::hasRequestShipping},
    {"isOnUs", &MTCodeInfo::isOnUs, &MTCodeInfo::hasIsOnUs},
    {"requestPartialPayment", &MTCodeInfo::requestPartialPayment,
     &MTCodeInfo::hasRequestPartialPayment},
    {"requestTip", &MTCodeInfo::requestTip, &MTCodeInfo::hasRequestTip},
};

int flagsSet(const MTCodeInfo& info) {
  int count =
      info.hasVasProfileId + info.hasExtraInput + info.hasAmountOptions + info.hasVasAccountsList;
  for (const auto& row : texts) {
    count += info.*row.flag;
  }
  for (const auto& row : booleans) {
    count += info.*row.flag;
  }
  return count;
}

TEST(CodeInfo, TakesEachFieldFromItsKeyAndFlagsThatAlone) {
  const auto only = [](const char* key, const char* value) {
    return parsed<MTCodeInfo>("{\"" + std::string(key) + "\":" + value + "}");
  };
  for (const auto& row : texts) {
    const auto info = only(row.key, R"("text")");
    EXPECT_EQ(info.*row.field, "text") << row.key;
    EXPECT_TRUE(info.*row.flag) << row.key;
    EXPECT_EQ(flagsSet(info), 1) << row.key;
    EXPECT_TRUE(only(row.key, "null").*row.flag) << row.key;
  }
  for (const auto& row : booleans) {
    const auto info = only(row.key, R"("true")");
    EXPECT_TRUE(info.*row.field && info.*row.flag) << row.key;
    EXPECT_EQ(flagsSet(info), 1) << row.key;
    EXPECT_THROW(only(row.key, "null"), std::invalid_argument) << row.key;
  }
  EXPECT_EQ(only("vasProfileId", R"("42")").vasProfileId, 42);
  EXPECT_EQ(flagsSet(parsed<MTCodeInfo>("{}")), 0);
}

TEST(CodeInfo, FillsItsNestedRecords) {
  const auto info = parsed<MTCodeInfo>(
      R"({"amountOptions":{"min":"1.00"},"extraInput":{"a":[1]},"vasAccountsList":{"vasAccounts":[
          {"company":"c","name":"n","accountNumber":"1","detail":"d","billId":"b","amount":"2.00"},
          {"name":"second"}]}})");
  EXPECT_EQ(info.amountOptions->min, "1.00");
  EXPECT_TRUE(info.amountOptions->hasMin);
  EXPECT_FALSE(info.amountOptions->hasMax || info.amountOptions->hasDiscountFixed ||
               info.amountOptions->hasDiscountPercentage);
  EXPECT_EQ(boost::json::serialize(*info.extraInput), R"({"a":[1]})");
  ASSERT_EQ(info.vasAccountsList->vasAccountsArray_Count, 2U);
  const MTVasAccount& first = info.vasAccountsList->vasAccountsArray[0];
  EXPECT_EQ(first.company, "c");
  EXPECT_EQ(first.name, "n");
  EXPECT_EQ(first.accountNumber, "1");
  EXPECT_EQ(first.detail, "d");
  EXPECT_EQ(first.billId, "b");
  EXPECT_EQ(first.amount, "2.00");
  EXPECT_EQ(info.vasAccountsList->vasAccountsArray[1].name, "second");
  EXPECT_FALSE(info.vasAccountsList->vasAccountsArray[1].hasAmount);
}

TEST(CodeResponse, WithoutCodeInfoHasAMessageOnly) {
  const auto response = parsed<MTCodeResponse>(R"({"message":"unknown code"})");
  EXPECT_EQ(response.message, "unknown code");
  EXPECT_TRUE(response.hasMessage);
  EXPECT_FALSE(response.codeInfo || response.hasCodeInfo || response.cardList ||
               response.hasCardList || response.URLResponse || response.hasURLResponse);
}

TEST(CodeResponse, HoldsTheCodeTheCardsAndTheRawAddressAnswer) {
  const auto response = parsed<MTCodeResponse>(
      R"({"codeInfo":{"code":"c"},"cardList":{"cards":[{}]},"URLResponse":null})");
  EXPECT_EQ(response.codeInfo->code, "c");
  EXPECT_EQ(response.cardList->cardsArray_Count, 1);
  ASSERT_TRUE(response.hasCodeInfo && response.hasCardList && response.hasURLResponse);
  EXPECT_EQ(boost::json::serialize(*response.URLResponse), "null");
  EXPECT_THROW(parsed<MTCodeResponse>(R"({"codeInfo":null})"), std::invalid_argument);
  EXPECT_THROW(parsed<MTCodeResponse>(R"({"cardList":{"cards":{}}})"), std::invalid_argument);
  EXPECT_THROW(parsed<MTCodeResponse>("[]"), NetworkException);
}

TEST(Receipt, IsTheSameOnItsOwnAndWithinACardResponse) {
  const std::string text =
      R"({"receiptId":12,"preview1":"p1","preview2":"p2","htmlContent":"<b>","status":"SUCCESS","amount":12.5})";
  const auto nested = parsed<MTCardResponse>("{\"receipt\":" + text + "}");
  for (const MTReceipt& receipt : {parsed<MTReceipt>(text), *nested.receipt}) {
    EXPECT_EQ(receipt.receiptId, 12);
    EXPECT_EQ(receipt.preview1, "p1");
    EXPECT_EQ(receipt.preview2, "p2");
    EXPECT_EQ(receipt.htmlContent, "<b>");
    EXPECT_EQ(receipt.status, "SUCCESS");
    EXPECT_EQ(receipt.amount, "12.5");
    EXPECT_TRUE(receipt.hasReceiptId && receipt.hasPreview1 && receipt.hasPreview2 &&
                receipt.hasHtmlContent && receipt.hasStatus && receipt.hasAmount);
  }
  EXPECT_FALSE(parsed<MTReceipt>("{}").hasStatus);
}

TEST(Automator, LearnsItsTypeFromStatusThenFromType) {
  using Type = SecureCodeAutomatorType;
  const struct {
    const char* body;
    Type type;
    bool hasType;
  } rows[] = {
      {R"({"status":"SmsOtp"})", Type::smsOtp, true},
      {R"({"status":"SMSOTP"})", Type::notSet, false},
      {R"({"type":"SMS_OTP"})", Type::smsOtp, true},
      {R"({"type":"password"})", Type::password, true},
      {R"({"type":"Push_Ussd"})", Type::pushUssd, true},
      {R"({"type":"js_only"})", Type::jsOnly, true},
      {R"({"status":"SmsOtp","type":"JS_ONLY"})", Type::jsOnly, true},
      {R"({"status":"SmsOtp","type":"OTHER"})", Type::smsOtp, true},
      {R"({"type":"OTHER"})", Type::notSet, true},
      {R"({"type":null})", Type::notSet, true},
      {"{}", Type::notSet, false},
  };
  for (const auto& row : rows) {
    const auto automator = parsed<SecureCodeAutomator>(row.body);
    EXPECT_EQ(automator.type, row.type) << row.body;
    EXPECT_EQ(automator.hasType, row.hasType) << row.body;
  }
}

TEST(SecureCodeAnswer, HoldsThePageOrItsAddress) {
  const auto response = parsed<MTSecureCodeURLResponse>(
      R"({"cardSupported":true,"secureCodeId":9,"url":"https://issuer.example","payload":"PaReq",
          "automator":{"javascript":"go();","smsRegex":"\\d+","inputPrompt":"code?"},
          "error":"e","htmlPresent":true,"htmlContent":"<p>\u20ac</p>"
})");
  EXPECT_TRUE(response.cardSupported && response.htmlPresent);
  EXPECT_EQ(response.secureCodeId, 9);
  EXPECT_EQ(response.URL, "https://issuer.example");
  EXPECT_EQ(response.payload, "PaReq");
  EXPECT_EQ(response.error, "e");
  EXPECT_EQ(response.htmlContent, "<p>\xE2\x82\xAC</p>");
  EXPECT_EQ(response.automator->javascript, "go();");
  EXPECT_EQ(response.automator->smsRegex, "\\d+");
  EXPECT_EQ(response.automator->inputPrompt, "code?");
  EXPECT_TRUE(response.hasCardSupported && response.hasSecureCodeId && response.hasURL &&
              response.hasAutomator && response.hasPayload && response.hasError &&
              response.hasHtmlPresent && response.hasHtmlContent);

  const auto other = parsed<MTSecureCodeURLResponse>(R"({"URL":"x","htmlPresent":false})");
  EXPECT_FALSE(other.hasURL) << "the key is in lower case";
  EXPECT_TRUE(other.hasHtmlPresent);
  EXPECT_FALSE(other.automator || other.hasAutomator);
}

TEST(LocationText, NamesWhatIsKnown) {
  const struct {
    const char* name;
    Location location;
    const char* text;
  } rows[] = {
      {"nothing", {}, ""},
      {"GPS", {.gpsLatitude = 52.370216, .gpsLongditude = -4.895168}, "[G:52.370216,-4.895168]"},
      {"whole degrees", {.gpsLatitude = 52, .gpsLongditude = 0}, "[G:52,0]"},
      {"as exact as the number",
       {.gpsLatitude = 0.1 + 0.2, .gpsLongditude = 1e-7},
       "[G:0.30000000000000004,1e-07]"},
      {"no longitude", {.gpsLatitude = 1.5}, "[G:1.5,(null)]"},
      {"no latitude", {.gpsLongditude = 1.5}, ""},
      {"network",
       {.networkMCC = "204", .networkMNC = "08", .networkCellId = "7", .networkLac = "9"},
       "[N:204,08,7,9]"},
      {"network in part", {.networkCellId = "7"}, "[N:(null),(null),7,(null)]"},
      {"no cell", {.networkMCC = "204"}, ""},
      {"both",
       {.gpsLatitude = 1,
        .gpsLongditude = 2,
        .networkMCC = "204",
        .networkMNC = "08",
        .networkCellId = "7",
        .networkLac = "9"},
       "[G:1,2],[N:204,08,7,9]"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.location.buildLocation(), row.text) << row.name;
  }
}

}  // namespace

}  // namespace orlix
