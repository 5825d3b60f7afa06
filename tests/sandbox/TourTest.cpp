// SPDX-License-Identifier: Apache-2.0

// Goes through all that the sandbox's README lists. What is asserted here is little; but a run that
// is recorded holds every kind of answer, and scripts/check-contract holds those against the
// protocol.

#include <set>

#include "sandbox/CardKinds.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

class Tour : public SandboxTest {
 protected:
  /// Undoes what a code has brought upon the device, so that the next one is met by itself.
  void recover() {
    control("DELETE", "/control/faults");
    wallet_->start();  // takes up what the code has prepared for it
    wallet_->start();
    wallet_->post("profile/updateTC");
  }

  void pollToTheEnd(std::int64_t transaction) {
    for (int poll = 0; poll < 4; ++poll) {
      EXPECT_EQ(wallet_->post("receipt/poll/TALU", {{"transactionId", transaction}}).status, 200);
    }
  }

  Reply page(std::string_view path, std::int64_t card, json::object body = {}) {
    body["cardId"] = card;
    return wallet_->post(path, body);
  }

  json::object valuesFor(const CardKind& kind) {
    const auto when = [](bool asked, const char* value) { return asked ? value : ""; };
    return {{"cardNumber", kind.number},
            {"account", when(kind.needAccount, "Savings")},
            {"dateOfBirth", when(kind.needDob, "19901231")},
            {"expiryMonth", when(kind.needExp, "12")},
            {"expiryYear", when(kind.needExp, "40")},
            {"linkedMsisdn", ""},
            {"cardHolderName", when(kind.needCardHolderName, "A Customer")},
            {"locationInfo", ""}};
  }
};

TEST_F(Tour, EveryCodeCanBeLookedUpAndBoughtFrom) {
  // The first waits in real time, the next two leave a client without an answer.
  const std::set<std::string> left{"SLOW-LOOKUP", "HANG-UP", "SILENCE"};
  const std::set<int> answers{200, 403, 500};
  const json::object listed = control("GET", "/control/codes");
  for (const json::value& row : listed.at("codes").get_array()) {
    const std::string code = textOf(row.get_object(), "code");
    if (left.contains(code)) continue;
    const Reply found = wallet_->lookUp(code);
    ASSERT_TRUE(found.body.contains("codeInfo")) << code << found.text;
    const std::string fixed = textOf(row.get_object(), "amount");
    const std::string name = textOf(found.body.at("codeInfo").get_object(), "code");
    const std::string amount = fixed.empty() ? "12.50" : fixed;
    for (int time = 0; time < 2; ++time) {  // of some codes every other one is answered well
      const Reply paid = wallet_->post("purchase/TALU", wallet_->purchase(name, "1111", amount));
      EXPECT_TRUE(answers.contains(paid.status)) << code << paid.text;
      if (paid.body.contains("transactionId")) pollToTheEnd(integerOf(paid.body, "transactionId"));
    }
    recover();
  }
}

TEST_F(Tour, EveryCardCanBeAskedAboutLinkedProvenAndRemoved) {
  for (const CardKind& kind : CardKinds::documented()) {
    EXPECT_EQ(wallet_->post("card/bin/TALU", {{"bin", kind.bin}}).status, 200);
    EXPECT_EQ(wallet_->post("card/link/TALU", valuesFor(kind)).status, 200) << kind.number;
    const std::int64_t card = wallet_->cardEnding(kind.number.substr(kind.number.size() - 4));
    EXPECT_EQ(page("card/scUrl/TALU", card, {{"code", "FIXED-25"}, {"amount", "25.00"}}).status,
              200);
    EXPECT_EQ(page("card/get3dsValidateUrl/TALU", card).status, 200);
    EXPECT_EQ(wallet_
                  ->post("card/validate/TALU",
                         {{"validate", true}, {"cardId", card}, {"inputValue", kind.dateOfBirth}})
                  .status,
              200);
    EXPECT_EQ(wallet_->post("card/delink/TALU", {{"cardId", card}}).status, 200);
  }
}

TEST_F(Tour, TheIssuersWayBackAndTheTermsArePages) {
  const std::string form = "application/x-www-form-urlencoded";
  EXPECT_EQ(wallet_->http.Post("/vello/secure_code.jsp", "PaRes=eJx1&MD=", form)->status, 200);
  EXPECT_EQ(wallet_->http.Get("/terms/tavlo.html")->status, 200);
}

}  // namespace
}  // namespace orlix::sandbox::test
