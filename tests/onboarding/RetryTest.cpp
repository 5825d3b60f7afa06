// SPDX-License-Identifier: Apache-2.0

#include "tests/phone/Meddler.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

/// A step whose request may fail. Those that lead to no screen of ours end the flow.
struct Step {
  std::string name, path;
  std::size_t attempts;               ///< requests before the user is asked
  std::string answer;                 ///< that lets the flow go on
  std::string goesOnTo, cancelledTo;  ///< screens; "" for the host's own
  std::function<void(Phone&)> take;   ///< up to the tap that makes the request, that included

  Heard outcome() const { return goesOnTo.empty() ? Heard{"succeeded 1"} : Heard{}; }
  Heard outcomeOfCancel() const { return cancelledTo.empty() ? Heard{"cancelled"} : Heard{}; }
};

void checkout(Phone& phone) { phone.checkout(); }
void payFor(Phone& phone) {
  phone.wallet.purchase = R"({"status":"SUCCESS","transactionId":1})";
  phone.showPaymentScreen();
  phone.pay();
}
void sendNumber(Phone& phone) {
  phone.beginActivation(Entry::checkout, "0821234567");
  phone.host.tap("proceedButton");
}
void sendCode(Phone& phone) {
  phone.beginEnrolment(Entry::checkout);
  phone.host.type("codeField", "1234");
  phone.host.tap("proceedButton");
}
void linkCard(Phone& phone) {
  phone.beginAddCard(Entry::wallet);
  phone.wallet.next("/card/link/", ok(answers::kRelink), 9);
  phone.proceedWithCard();
}
void linkOnce(Phone& phone) {
  phone.beginAddCard(Entry::wallet);
  phone.proceedWithCard();
}
void confirmNumber(Phone& phone) {
  phone.beginAddCard(Entry::wallet);
  const auto session = OXSession::currentSession();
  session->cardInfoResponse = std::make_shared<CardInfoResponse>();
  session->cardInfoResponse->cardNumber = SecretString("4000123412341234");
  session->showMsisdnRelinkScreen();
  phone.wallet.cards = {cardJson(12, "0012")};
  phone.host.type("msisdnField", "0821234567");
  phone.host.tap("proceedButton");
}
void validate(Phone& phone) {
  phone.showPaymentScreen();
  OXSession::currentSession()->showCardValidationScreen();
  phone.host.tap("proceedButton");
}
void deleteCard(Phone& phone) {
  phone.begin(Entry::wallet, "WalletManagement");
  phone.tap("cardView");
  phone.host.user().tapRowButton("tableView", 0);
  phone.host.runUntilIdle();
  phone.host.pressAlert("Delete");
}

const std::vector<Step>& steps() {
  using namespace answers;
  const std::string code = R"({"codeInfo":{"code":"C-1","amountString":""}})";
  const std::string paid = R"({"status":"SUCCESS","transactionId":1})";
  const std::string noCards = R"({"cards":[]})";
  static const std::vector<Step> kSteps{
      {"session", "/session/new/", 1, kSession, "Product", "", checkout},
      // Cancel leaves the user on the waiting screen, without a callback.
      {"code", "/lookup/", 1, code, "Product", "Waiting", checkout},
      {"cards", "/card/list/", 1, noCards, "AddCard", "Waiting",
       [](Phone& phone) { phone.begin(Entry::preRegister); }},
      {"purchase", "/purchase/", 1, paid, "", "Product", payFor},
      {"receipt", "/receipt/poll/", 1, R"({"status":"SUCCESS"})", "", "Product", payFor},
      {"number", "/sms/send", 2, kSmsSent, "ActivationCode", "Activation", sendNumber},
      {"SMS code", "/sms/activateSession", 2, kSmsSent, "Product", "ActivationCode", sendCode},
      {"card number", "/card/bin/", 1, kNothingNeeded, "MsisdnRelink", "AddCard", linkCard},
      {"link", "/card/link/", 1, kRelink, "MsisdnRelink", "AddCard", linkOnce},
      {"relink", "/card/link/", 1, kLinked, "WalletManagement", "MsisdnRelink", confirmNumber},
      {"validation", "/card/validate/", 1, kValidated, "Product", "CardValidation", validate},
      {"deletion", "/card/delink/", 1, "{}", "WalletManagement", "Cards", deleteCard},
  };
  return kSteps;
}

}  // namespace

TEST(Step, ThatFailsIsRetriedWithTheSameInputOrCancelledAndLeavesTheUserThere) {
  for (const Step& step : steps()) {
    for (const bool failsAgain : {false, true}) {
      SCOPED_TRACE(step.name + (failsAgain ? ", again" : ""));
      Phone phone;
      phone.wallet.always(step.path, step.answer);
      const std::size_t failures = failsAgain ? 2 * step.attempts : step.attempts;
      phone.wallet.next(step.path, unreachable(), static_cast<int>(failures));
      step.take(phone);
      phone.host.runUntilAlert("Connection problem");
      EXPECT_EQ(phone.alert(), kConnectionProblem);
      EXPECT_FALSE(phone.busy());
      EXPECT_EQ(phone.wallet.asked(step.path), step.attempts);
      EXPECT_TRUE(phone.app->heard.empty());
      phone.press("Retry");
      if (failsAgain) {
        EXPECT_EQ(phone.alert(), kConnectionProblem);
        phone.press("Cancel");
      }
      const auto requests = phone.host.connections().requestsTo(step.path);
      ASSERT_EQ(requests.size(), failsAgain ? failures : failures + 1);
      EXPECT_EQ(requests.front().body, requests.back().body);
      EXPECT_EQ(phone.screen(), failsAgain ? step.cancelledTo : step.goesOnTo);
      EXPECT_EQ(phone.app->heard, failsAgain ? step.outcomeOfCancel() : step.outcome());
      EXPECT_FALSE(phone.busy());
    }
  }
}

TEST(Step, ThatChangesTheCardsBringsThemUpToDateAfterItsScreenWasLeft) {
  for (const Step& step : steps()) {
    if (step.name == "link" || step.name == "relink" || step.name == "validation" ||
        step.name == "deletion") {
      SCOPED_TRACE(step.name);
      Phone phone;
      phone.wallet.always(step.path, late(5s, answers::kFailed));
      step.take(phone);
      phone.host.runUntil([&] { return phone.wallet.asked(step.path) == 1; });
      OXSession::currentSession()->showWalletManagementScreen();
      const auto lists = [&] {
        return phone.wallet.asked("/lookup/") + phone.wallet.asked("/card/list/");
      };
      const std::size_t before = lists();
      phone.host.runFor(10s);
      EXPECT_EQ(lists(), before + 1);
      EXPECT_EQ(phone.screen(), "WalletManagement");
    }
  }
}

TEST(Step, TheHostMayEndTheFlowWheneverTheIndicatorChanges) {
  for (const Step& step : steps()) {
    for (const ServerReply& reply :
         {ok(step.answer), ok("{}"), ok(answers::kFailed), ok(answers::kLinked), unreachable()}) {
      for (int n = 1, left = 0; left <= 0; ++n) {
        SCOPED_TRACE(step.name + ", change " + std::to_string(n));
        Phone phone;
        std::size_t sent = 0;
        Meddler meddler(n, [&] {
          OXSession::currentSession()->returnUserDidCancel();
          sent = phone.host.requests().size();
        });
        meddler.counts = [&] {
          return phone.wallet.asked(step.path) > 0 && OXSession::currentSession()->isLive();
        };
        phone.host.application().setObserver(&meddler);
        phone.wallet.next(step.path, reply, static_cast<int>(step.attempts));
        step.take(phone);
        phone.host.runFor(1min);
        left = meddler.left;
        if (left <= 0) {
          EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
          EXPECT_EQ(phone.host.requests().size(), sent) << "nothing is sent after the outcome";
        }
        phone.host.application().setObserver(nullptr);
      }
    }
  }
}

}  // namespace orlix::test
