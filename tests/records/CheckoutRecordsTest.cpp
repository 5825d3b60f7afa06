// SPDX-License-Identifier: Apache-2.0

#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

int flagsSet(const MTCodeInfo& info) {
  return info.hasCode + info.hasAmountString + info.hasCurrency + info.hasMerchantName +
         info.hasShortDescription + info.hasAcceptedCards + info.hasAcceptedPayments +
         info.hasExtraReferenceName + info.hasVasInput + info.hasVasInputMessage +
         info.hasVasImageURL + info.hasAmount + info.hasTipFixed + info.hasTipPercentage +
         info.hasOrlixData + info.hasRequestContact + info.hasRequestBilling +
         info.hasRequestShipping + info.hasIsOnUs + info.hasRequestPartialPayment +
         info.hasRequestTip;
}

TEST(CodeInfo, TakesEachFieldFromItsKeyAndFlagsThatAlone) {
  const auto info = parsed<MTCodeInfo>(R"({"code":"a","amountString":"b","currency":"c",
      "merchantName":"d","shortDescription":"e","acceptedCards":"f","acceptedPayments":"g",
      "extraReferenceName":"h","vasInput":"i","vasInputMessage":"j","vasImageURL":"k","amount":"l",
      "tipFixed":"m","tipPercentage":"n","orlixData":1,"requestContact":"true","requestBilling":1,
      "requestShipping":1,"isOnUs":1,"requestPartialPayment":1,"requestTip":1,"vasProfileId":"42"})");
  EXPECT_EQ(*info.code + *info.amountString + *info.currency + *info.merchantName +
                *info.shortDescription + *info.acceptedCards + *info.acceptedPayments +
                *info.extraReferenceName + *info.vasInput + *info.vasInputMessage +
                *info.vasImageURL + *info.amount + *info.tipFixed + *info.tipPercentage,
            "abcdefghijklmn");
  EXPECT_TRUE(info.orlixData && info.requestContact && info.requestBilling &&
              info.requestShipping && info.isOnUs && info.requestPartialPayment && info.requestTip);
  EXPECT_EQ(info.vasProfileId, 42);
  EXPECT_EQ(flagsSet(info), 21);
  EXPECT_EQ(flagsSet(parsed<MTCodeInfo>("{}")), 0);
  EXPECT_EQ(flagsSet(parsed<MTCodeInfo>(R"({"isOnUs":0,"code":null})")), 2) << "by the key alone";
  EXPECT_THROW(parsed<MTCodeInfo>(R"({"requestTip":null})"), std::invalid_argument);
}

TEST(CodeInfo, FillsItsNestedRecords) {
  const auto info = parsed<MTCodeInfo>(
      R"({"amountOptions":{"min":"1.00","max":"9.00","discountPercentage":"5"},"extraInput":{"a":[1]},"vasAccountsList":{"vasAccounts":[
          {"company":"c","name":"n","accountNumber":"1","detail":"d","billId":"b","amount":"2.00"},
          {"name":"second"}]}})");
  const MTAmountOptions& options = *info.amountOptions;
  EXPECT_EQ(*options.min + *options.max + *options.discountPercentage, "1.009.005");
  EXPECT_TRUE(options.hasMin && options.hasMax && options.hasDiscountPercentage);
  EXPECT_FALSE(options.hasDiscountFixed);
  EXPECT_EQ(boost::json::serialize(*info.extraInput), R"({"a":[1]})");
  ASSERT_EQ(info.vasAccountsList->vasAccountsArray_Count, 2U);
  const MTVasAccount& first = info.vasAccountsList->vasAccountsArray[0];
  EXPECT_EQ(*first.company + *first.name + *first.accountNumber + *first.detail + *first.billId +
                *first.amount,
            "cn1db2.00");
  EXPECT_EQ(info.vasAccountsList->vasAccountsArray[1].name, "second");
  EXPECT_FALSE(info.vasAccountsList->vasAccountsArray[1].hasAmount);
}

TEST(CodeResponse, HoldsTheCodeTheCardsAndTheRawAddressAnswer) {
  const auto response = parsed<MTCodeResponse>(
      R"({"codeInfo":{"code":"c"},"cardList":{"cards":[{}]},"URLResponse":null})");
  EXPECT_EQ(response.codeInfo->code, "c");
  EXPECT_EQ(response.cardList->cardsArray_Count, 1);
  ASSERT_TRUE(response.hasCodeInfo && response.hasCardList && response.hasURLResponse);
  EXPECT_EQ(boost::json::serialize(*response.URLResponse), "null");
  const auto bare = parsed<MTCodeResponse>(R"({"message":"unknown code"})");
  EXPECT_EQ(bare.message, "unknown code");
  EXPECT_FALSE(bare.hasCodeInfo || bare.hasCardList || bare.hasURLResponse || !bare.hasMessage);
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
    EXPECT_EQ(*receipt.preview1 + *receipt.preview2 + *receipt.htmlContent + *receipt.status +
                  *receipt.amount,
              "p1p2<b>SUCCESS12.5");
    EXPECT_TRUE(receipt.hasReceiptId && receipt.hasPreview1 && receipt.hasPreview2 &&
                receipt.hasHtmlContent && receipt.hasStatus && receipt.hasAmount);
  }
}

TEST(Automator, LearnsItsTypeFromStatusThenFromType) {
  using enum SecureCodeAutomatorType;
  const std::pair<SecureCodeAutomatorType, std::vector<const char*>> rows[] = {
      {smsOtp,
       {R"({"status":"SmsOtp"})", R"({"type":"SMS_OTP"})",
        R"({"status":"SmsOtp","type":"OTHER"})"}},
      {password, {R"({"type":"password"})"}},
      {pushUssd, {R"({"type":"Push_Ussd"})"}},
      {jsOnly, {R"({"type":"js_only"})", R"({"status":"SmsOtp","type":"JS_ONLY"})"}},
      {notSet, {R"({"status":"SMSOTP"})", R"({"type":null})", "{}"}},
  };
  for (const auto& [type, bodies] : rows) {
    for (const char* body : bodies) {
      EXPECT_EQ(parsed<SecureCodeAutomator>(body).type, type) << body;
    }
  }
  EXPECT_TRUE(parsed<SecureCodeAutomator>(R"({"type":null})").hasType);
  EXPECT_FALSE(parsed<SecureCodeAutomator>(R"({"status":"SMSOTP"})").hasType);
}

TEST(SecureCodeAnswer, HoldsThePageOrItsAddress) {
  const auto response = parsed<MTSecureCodeURLResponse>(
      R"({"cardSupported":true,"secureCodeId":9,"url":"https://issuer.example","payload":"PaReq",
          "automator":{"javascript":"go();","smsRegex":"\\d+","inputPrompt":"code?"},
          "error":"e","htmlPresent":true,"htmlContent":"<p>\u20ac</p>"
})");
  EXPECT_TRUE(response.cardSupported && response.htmlPresent);
  EXPECT_EQ(response.secureCodeId, 9);
  EXPECT_EQ(*response.URL + *response.payload + *response.error + *response.htmlContent,
            "https://issuer.examplePaReqe<p>\xE2\x82\xAC</p>");
  EXPECT_EQ(*response.automator->javascript + *response.automator->smsRegex +
                *response.automator->inputPrompt,
            "go();\\d+code?");
  EXPECT_TRUE(response.hasCardSupported && response.hasSecureCodeId && response.hasURL &&
              response.hasAutomator && response.hasPayload && response.hasError &&
              response.hasHtmlPresent && response.hasHtmlContent);
  EXPECT_FALSE(parsed<MTSecureCodeURLResponse>(R"({"URL":"x"})").hasURL) << "in lower case only";
}

TEST(LocationText, NamesWhatIsKnown) {
  const std::pair<Location, const char*> rows[] = {
      {{}, ""},
      {{.gpsLatitude = 52.370216, .gpsLongditude = -4.895168}, "[G:52.370216,-4.895168]"},
      {{.gpsLatitude = 0.1 + 0.2, .gpsLongditude = 1e-7}, "[G:0.30000000000000004,1e-07]"},
      {{.gpsLatitude = 1.5}, "[G:1.5,(null)]"},
      {{.gpsLongditude = 1.5}, ""},
      {{.networkCellId = "7"}, "[N:(null),(null),7,(null)]"},
      {{.networkMCC = "204"}, ""},
      {{.gpsLatitude = 1,
        .gpsLongditude = 2,
        .networkMCC = "204",
        .networkMNC = "08",
        .networkCellId = "7",
        .networkLac = "9"},
       "[G:1,2],[N:204,08,7,9]"},
  };
  for (const auto& [location, text] : rows) {
    EXPECT_EQ(location.buildLocation(), text);
  }
}

}  // namespace

}  // namespace orlix
