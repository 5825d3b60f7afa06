#include <stdexcept>

#include <gtest/gtest.h>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/MTApiResponse.h"
#include "orlixkit/records/MTBinInfo.h"
#include "orlixkit/records/MTCardResponse.h"
#include "orlixkit/records/MTCardValidateResponse.h"
#include "orlixkit/records/MTPinResponse.h"
#include "orlixkit/records/MTSmsResponse.h"
#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

TEST(CardOption, TakesEveryFieldFromItsKey) {
  const auto card = parsed<CardOption>(
      R"({"cardId":9007199254740993,"cardHint":"1234","needCvv":true,"cardType":"VISA",
          "drawLine":"yes","method":"AMT","imageId":"77","product":"Gold","authed3Ds":1,
          "validated":"true","validationtype":"DOB","issuer":"Bank","allowCnp":true})");
  EXPECT_EQ(card.cardId, 9007199254740993);
  EXPECT_EQ(card.cardHint, "1234");
  EXPECT_EQ(card.cardType, "VISA");
  EXPECT_EQ(card.drawLine, "yes");
  EXPECT_EQ(card.method, CardOptionMethod::amt);
  EXPECT_EQ(card.imageId, 77);
  EXPECT_EQ(card.product, "Gold");
  EXPECT_EQ(card.validationtype, "DOB");
  EXPECT_EQ(card.issuer, "Bank");
  EXPECT_TRUE(card.needCvv && card.authed3Ds && card.validated && card.allowCnp);
  EXPECT_TRUE(card.hasCardHint && card.hasNeedCvv && card.hasCardType && card.hasDrawLine &&
              card.hasMethod && card.hasImageId && card.hasProduct && card.hasAuthed3Ds &&
              card.hasValidated && card.hasValidationtype && card.hasIssuer);
  EXPECT_FALSE(card.hasCardId || card.hasAllowCnp) << "these two are never set";
}

TEST(CardOption, KeepsItsTwoIrregularFlags) {
  const auto idOnly = parsed<CardOption>(R"({"cardId":5})");
  EXPECT_EQ(idOnly.cardId, 5);
  EXPECT_FALSE(idOnly.hasCardHint || idOnly.hasCardId);
  EXPECT_TRUE(parsed<CardOption>(R"({"cardHint":null})").hasCardHint);

  EXPECT_TRUE(parsed<CardOption>(R"({"allowCnp":false})").allowCnp);
  EXPECT_FALSE(parsed<CardOption>("{}").allowCnp);
  EXPECT_THROW(parsed<CardOption>(R"({"allowCnp":null})"), std::invalid_argument);
}

TEST(CardOption, KnowsItsMethodInAnyCase) {
  const std::pair<const char*, CardOptionMethod> rows[] = {
      {R"("AMT")", CardOptionMethod::amt},       {R"("secure_code")", CardOptionMethod::secureCode},
      {R"("Wallet")", CardOptionMethod::wallet}, {R"("CNP")", CardOptionMethod::cnp},
      {R"("CASH")", CardOptionMethod::notSet},   {R"("AMT ")", CardOptionMethod::notSet},
      {R"("")", CardOptionMethod::notSet},       {"1", CardOptionMethod::notSet},
      {"null", CardOptionMethod::notSet},
  };
  for (const auto& [value, method] : rows) {
    const auto card = parsed<CardOption>(std::string(R"({"method":)") + value + "}");
    EXPECT_EQ(card.method, method) << value;
    EXPECT_TRUE(card.hasMethod) << value;
  }
  EXPECT_FALSE(parsed<CardOption>("{}").hasMethod);
}

TEST(CardList, AppendsInTheServersOrder) {
  const auto body = view(R"({"cards":[{"cardId":3},{"cardId":1},{"cardId":2}]})");
  MTCardList list;
  list.parseFromData(body);
  ASSERT_EQ(list.cardsArray.size(), 3U);
  EXPECT_EQ(list.cardsArray_Count, 3);
  EXPECT_EQ(list.cardsArray[0].cardId, 3);
  EXPECT_EQ(list.cardsArray[2].cardId, 2);
  EXPECT_EQ(list.parseFromData(body).cardsArray_Count, 6);
  EXPECT_EQ(list.cardsArray[3].cardId, 3);
  EXPECT_EQ(list.parseFromData(view("{}")).cardsArray_Count, 6);
  EXPECT_EQ(parsed<MTCardList>("{}").cardsArray_Count, 0);
}

TEST(CardResponse, KnowsItsStatusByTheExactTextOnly) {
  const std::pair<const char*, CardResponseStatus> rows[] = {
      {R"({"status":"SUCCESS"})", CardResponseStatus::success},
      {R"({"status":"FAILED"})", CardResponseStatus::failed},
      {R"({"status":"RELINK"})", CardResponseStatus::relink},
      {R"({"status":"success"})", CardResponseStatus::notSet},
      {R"({"status":"OTHER"})", CardResponseStatus::notSet},
      {R"({"status":null})", CardResponseStatus::notSet},
      {"{}", CardResponseStatus::notSet},
  };
  for (const auto& [body, status] : rows) {
    const auto response = parsed<MTCardResponse>(body);
    EXPECT_EQ(response.status, status) << body;
    EXPECT_EQ(response.hasStatus, status != CardResponseStatus::notSet) << body;
    EXPECT_FALSE(response.hasReceipt || response.hasCardList || response.receipt ||
                 response.cardList);
  }
}

TEST(CardResponse, FillsItsNestedRecordsAndGoesOnFillingThem) {
  const auto body = view(
      R"({"status":"SUCCESS","receipt":{"receiptId":8,"status":"SUCCESS"},"cardList":{"cards":[{}]}})");
  MTCardResponse response;
  response.parseFromData(body).parseFromData(body);
  EXPECT_TRUE(response.hasReceipt && response.hasCardList);
  EXPECT_EQ(response.receipt->receiptId, 8);
  EXPECT_EQ(response.cardList->cardsArray_Count, 2);
}

TEST(CardValidateResponse, HoldsAMessageAndTheCards) {
  const auto response =
      parsed<MTCardValidateResponse>(R"({"message":"done","cardList":{"cards":[{"cardId":1}]}})");
  EXPECT_EQ(response.message, "done");
  EXPECT_TRUE(response.hasMessage && response.hasCardList);
  EXPECT_EQ(response.cardList->cardsArray.at(0).cardId, 1);
  EXPECT_FALSE(parsed<MTCardValidateResponse>("{}").cardList);
}

TEST(PinResponse, KnowsItsStatusInAnyCaseAndFlagsTheKey) {
  const std::pair<const char*, PinResponseStatus> rows[] = {
      {R"({"status":"success"})", PinResponseStatus::success},
      {R"({"status":"ERROR"})", PinResponseStatus::error},
      {R"({"status":"Invalid_Password"})", PinResponseStatus::invalidPassword},
      {R"({"status":"PENDING"})", PinResponseStatus::notSet},
      {R"({"status":null})", PinResponseStatus::notSet},
  };
  for (const auto& [body, status] : rows) {
    const auto response = parsed<MTPinResponse>(body);
    EXPECT_EQ(response.status, status) << body;
    EXPECT_TRUE(response.hasStatus) << body;
  }
  const auto response = parsed<MTPinResponse>(R"({"transactionId":"12","errorMessage":"no"})");
  EXPECT_FALSE(response.hasStatus);
  EXPECT_TRUE(response.hasTransactionId && response.hasErrorMessage);
  EXPECT_EQ(response.transactionId, 12);
  EXPECT_EQ(response.errorMessage, "no");
}

TEST(SmsResponse, BringsATokenOnSuccessOnly) {
  const struct {
    const char* body;
    SmsResponseStatus status;
    std::optional<std::string> token;
    bool hasToken;
  } rows[] = {
      {R"({"status":"SUCCESS","newSsToken":"t"})", SmsResponseStatus::success, "t", true},
      {R"({"status":"SUCCESS","newSsToken":""})", SmsResponseStatus::success, std::nullopt, false},
      {R"({"status":"SUCCESS"})", SmsResponseStatus::success, std::nullopt, true},
      {R"({"status":"SUCCESS","newSsToken":null})", SmsResponseStatus::success, std::nullopt, true},
      {R"({"status":"SUCCESS","newSsToken":12})", SmsResponseStatus::success, "12", true},
      {R"({"status":"success","newSsToken":"t"})", SmsResponseStatus::other, std::nullopt, false},
      {R"({"status":"FAILED"})", SmsResponseStatus::other, std::nullopt, false},
      {R"({"status":true})", SmsResponseStatus::other, std::nullopt, false},
      {"{}", SmsResponseStatus::other, std::nullopt, false},
  };
  for (const auto& row : rows) {
    const auto response = parsed<MTSmsResponse>(row.body);
    EXPECT_EQ(response.status, row.status) << row.body;
    EXPECT_TRUE(response.hasStatus) << row.body;
    EXPECT_EQ(response.newSsToken, row.token) << row.body;
    EXPECT_EQ(response.hasNewSsToken, row.hasToken) << row.body;
  }
  EXPECT_EQ(static_cast<int>(SmsResponseStatus::success), 2);
}

TEST(BinInfo, FlagsTheKeysThatAreThere) {
  const auto info = parsed<MTBinInfo>(
      R"({"cardSupported":true,"needAccount":false,"needExp":"Y","needCardHolderName":1})");
  EXPECT_TRUE(info.cardSupported && info.needExp && info.needCardHolderName);
  EXPECT_FALSE(info.needAccount || info.needDob || info.hasNeedDob);
  EXPECT_TRUE(info.hasCardSupported && info.hasNeedAccount && info.hasNeedExp &&
              info.hasNeedCardHolderName);
}

TEST(ApiResponse, IsNeverLookedAt) {
  for (const char* body : {"", "no JSON", R"({"status":"SUCCESS"})"}) {
    const auto response = parsed<MTApiResponse>(body);
    EXPECT_FALSE(response.hasStatus || response.status) << body;
  }
}

TEST(Records, RefuseABodyThatIsNoObject) {
  EXPECT_THROW(parsed<MTCardList>("[]"), NetworkException);
  EXPECT_THROW(parsed<MTCardResponse>(""), NetworkException);
  EXPECT_THROW(parsed<MTCardValidateResponse>("x"), NetworkException);
  EXPECT_THROW(parsed<MTPinResponse>("null"), NetworkException);
  EXPECT_THROW(parsed<MTSmsResponse>("1"), NetworkException);
  EXPECT_THROW(parsed<MTBinInfo>("{"), NetworkException);
}

}  // namespace

}  // namespace orlix
