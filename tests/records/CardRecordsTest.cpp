// SPDX-License-Identifier: Apache-2.0

#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

TEST(CardOption, TakesEveryFieldFromItsKeyAndKeepsItsIrregularFlags) {
  const auto card = parsed<CardOption>(
      R"({"cardId":9007199254740993,"cardHint":"1234","needCvv":true,"cardType":"VISA",
          "drawLine":"yes","method":"AMT","imageId":"77","product":"Gold","authed3Ds":1,
          "validated":"true","validationtype":"DOB","issuer":"Bank","allowCnp":true})");
  EXPECT_EQ(card.cardId, 9007199254740993);
  EXPECT_EQ(card.imageId, 77);
  EXPECT_EQ(*card.cardHint + *card.cardType + *card.drawLine + *card.product +
                *card.validationtype + *card.issuer,
            "1234VISAyesGoldDOBBank");
  EXPECT_TRUE(card.needCvv && card.authed3Ds && card.validated && card.allowCnp);
  EXPECT_TRUE(card.hasCardHint && card.hasNeedCvv && card.hasCardType && card.hasDrawLine &&
              card.hasMethod && card.hasImageId && card.hasProduct && card.hasAuthed3Ds &&
              card.hasValidated && card.hasValidationtype && card.hasIssuer);
  EXPECT_FALSE(card.hasCardId || card.hasAllowCnp) << "these two are never set";

  EXPECT_TRUE(parsed<CardOption>(R"({"cardHint":null})").hasCardHint);
  EXPECT_TRUE(parsed<CardOption>(R"({"allowCnp":false})").allowCnp) << "the key alone allows";
  EXPECT_FALSE(parsed<CardOption>("{}").allowCnp);
  EXPECT_THROW(parsed<CardOption>(R"({"allowCnp":null})"), std::invalid_argument);
}

TEST(CardOption, KnowsItsMethodInAnyCase) {
  using enum CardOptionMethod;
  expectEach(&CardOption::method, &CardOption::hasMethod, true,
             {{R"({"method":"AMT"})", amt},
              {R"({"method":"secure_code"})", secureCode},
              {R"({"method":"Wallet"})", wallet},
              {R"({"method":"CNP"})", cnp},
              {R"({"method":"CASH"})", notSet},
              {R"({"method":"AMT "})", notSet},
              {R"({"method":1})", notSet},
              {R"({"method":null})", notSet}});
}

TEST(CardResponse, KnowsItsStatusByTheExactTextOnly) {
  using enum CardResponseStatus;
  expectEach(&MTCardResponse::status, &MTCardResponse::hasStatus, false,
             {{R"({"status":"SUCCESS"})", success},
              {R"({"status":"FAILED"})", failed},
              {R"({"status":"RELINK"})", relink},
              {R"({"status":"success"})", notSet},
              {R"({"status":null})", notSet},
              {"{}", notSet}});
  const auto bare = parsed<MTCardResponse>("{}");
  EXPECT_FALSE(bare.hasReceipt || bare.hasCardList);
  const auto body =
      view(R"({"receipt":{"receiptId":8},"cardList":{"cards":[{"cardId":3},{"cardId":1}]}})");
  MTCardResponse response;
  response.parseFromData(body).parseFromData(body);
  EXPECT_TRUE(response.hasReceipt && response.hasCardList);
  EXPECT_EQ(response.receipt->receiptId, 8);
  EXPECT_EQ(response.cardList->cardsArray_Count, 4) << "it goes on filling the same list";
  EXPECT_EQ(response.cardList->cardsArray[1].cardId, 1);
  EXPECT_EQ(response.cardList->cardsArray[2].cardId, 3);
}

TEST(PinResponse, KnowsItsStatusInAnyCaseAndFlagsTheKey) {
  using enum PinResponseStatus;
  expectEach(&MTPinResponse::status, &MTPinResponse::hasStatus, true,
             {{R"({"status":"success"})", success},
              {R"({"status":"ERROR"})", error},
              {R"({"status":"Invalid_Password"})", invalidPassword},
              {R"({"status":"PENDING"})", notSet},
              {R"({"status":null})", notSet}});
  const auto response = parsed<MTPinResponse>(R"({"transactionId":"12","errorMessage":"no"})");
  EXPECT_TRUE(!response.hasStatus && response.hasTransactionId && response.hasErrorMessage);
  EXPECT_EQ(response.transactionId, 12);
  EXPECT_EQ(response.errorMessage, "no");
}

TEST(SmsResponse, BringsATokenOnSuccessOnly) {
  using enum SmsResponseStatus;
  const struct {
    const char* body;
    SmsResponseStatus status;
    std::optional<std::string> token;
    bool hasToken;
  } rows[] = {
      {R"({"status":"SUCCESS","newSsToken":"t"})", success, "t", true},
      {R"({"status":"SUCCESS","newSsToken":""})", success, std::nullopt, false},
      {R"({"status":"SUCCESS"})", success, std::nullopt, true},
      {R"({"status":"SUCCESS","newSsToken":null})", success, std::nullopt, true},
      {R"({"status":"SUCCESS","newSsToken":12})", success, "12", true},
      {R"({"status":"success","newSsToken":"t"})", other, std::nullopt, false},
      {R"({"status":true})", other, std::nullopt, false},
      {"{}", other, std::nullopt, false},
  };
  for (const auto& row : rows) {
    const auto response = parsed<MTSmsResponse>(row.body);
    EXPECT_EQ(response.status, row.status) << row.body;
    EXPECT_TRUE(response.hasStatus) << row.body;
    EXPECT_EQ(response.newSsToken, row.token) << row.body;
    EXPECT_EQ(response.hasNewSsToken, row.hasToken) << row.body;
  }
}

TEST(CardAnswers, FlagTheKeysThatAreThereAndRefuseABodyThatIsNoObject) {
  const auto info = parsed<MTBinInfo>(
      R"({"cardSupported":true,"needAccount":false,"needExp":"Y","needCardHolderName":1})");
  EXPECT_TRUE(info.cardSupported && info.needExp && info.needCardHolderName);
  EXPECT_FALSE(info.needAccount || info.needDob || info.hasNeedDob);
  EXPECT_TRUE(info.hasCardSupported && info.hasNeedAccount && info.hasNeedExp &&
              info.hasNeedCardHolderName);
  const auto validated =
      parsed<MTCardValidateResponse>(R"({"message":"done","cardList":{"cards":[{"cardId":1}]}})");
  EXPECT_EQ(validated.message, "done");
  EXPECT_TRUE(validated.hasMessage && validated.hasCardList);
  EXPECT_EQ(validated.cardList->cardsArray.at(0).cardId, 1);

  EXPECT_THROW(parsed<MTCardList>("[]"), NetworkException);
  EXPECT_THROW(parsed<MTCardResponse>(""), NetworkException);
  EXPECT_THROW(parsed<MTCardValidateResponse>("x"), NetworkException);
  EXPECT_THROW(parsed<MTPinResponse>("null"), NetworkException);
  EXPECT_THROW(parsed<MTSmsResponse>("1"), NetworkException);
  EXPECT_THROW(parsed<MTBinInfo>("{"), NetworkException);
  EXPECT_FALSE(parsed<MTApiResponse>("no JSON").hasStatus) << "this one is never looked at";
  EXPECT_FALSE(parsed<MTApiResponse>(R"({"status":"SUCCESS"})").status);
}

}  // namespace

}  // namespace orlix
