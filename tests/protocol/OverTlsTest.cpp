#include <gtest/gtest.h>

#include "tests/RealPhone.h"
#include "tests/protocol/ClientAndServer.h"

namespace orlix::test {

namespace {

/// A client on the real ports, and the sandbox in this process.
struct OverTls : RealPhone {
  OverTls() {
    install(Host::install, server.anchorPath());
    client = clientOf(server.base(), "8D1F2C3B-4A5E-4F60-9B7A-1C2D3E4F5A6B",
                      std::make_shared<OMStorage>("live.data"));
  }
  std::shared_ptr<Outcome> run(Call call) { return test::run(client, std::move(call)); }

  std::shared_ptr<KCVelloConnection> client;
};

/// The purchase of a code with the card whose hint ends in these digits.
PurchaseRequest purchaseOf(KCVelloConnection& client, const std::string& code,
                           const std::string& digits) {
  const MTCodeResponse answer = client.getCodeInfoV2(code, "inapp");
  PurchaseRequest request;
  request.code = answer.codeInfo.value().code;
  request.amount = answer.codeInfo->amount;
  for (const CardOption& card : answer.cardList.value().cardsArray) {
    if (card.cardHint.value_or("").ends_with(digits)) {
      request.cardId = card.cardId;
    }
  }
  return request;
}

}  // namespace

TEST(OverTls, AServerThatAnswersTheLetterOfTheProtocolTakesEveryRequest) {
  OverTls phone;
  const auto outcome = phone.run([&](auto& c) {
    c.establishSession();
    c.sendMsisdn("27821112222");
    c.processActivationCode("000000");
    const MTCardList list = c.getCardList();
    const std::int64_t cardId = list.cardsArray.at(0).cardId;
    c.getBinInfo("4100002000000102");
    CardInfoResponse card;
    card.cardNumber = "4100002000000102";
    card.expiryDateMonth = "01";
    card.expiryDateYear = "30";
    EXPECT_EQ(c.linkCard(card).status, CardResponseStatus::success);
    c.validateCard(true, cardId, "");
    PurchaseRequest request = purchaseOf(c, "FIXED-25", "0301");
    const MTSecureCodeURLResponse page = c.getSecureCodeUrl(request.cardId, "FIXED-25", {});
    c.purchaseSecureCode(request, {page.secureCodeId, "none"});
    c.get3DAuthSecureCodeUrl(request.cardId);
    c.auth3DsCard(request, {page.secureCodeId, "none"});
    request = purchaseOf(c, "FIXED-25", "2222");
    request.location = Location{-26.5, 28.25, {}, {}, {}, {}};
    const MTPinResponse paid = c.puchaseCNP(request);
    EXPECT_EQ(paid.status, PinResponseStatus::success);
    EXPECT_EQ(c.pollForReceipt(paid.transactionId).value().status, "SUCCESS");
    c.updateTC();
    EXPECT_EQ(c.delinkCard(cardId).status, CardResponseStatus::success);
  });
  EXPECT_EQ(outcome->failure, nullptr) << phone.log->text();
  const std::string requests = phone.server.control("GET", "/control/requests");
  EXPECT_EQ(requests.find("\"status\":4"), std::string::npos) << requests;
}

}  // namespace orlix::test
