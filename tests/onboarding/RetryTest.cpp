#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/onboarding/Flow.h"

namespace orlix {
namespace {

constexpr const char* kConnectionProblem =
    "Connection problem: Please check your network connection and try again.";

/// A step of these screens whose request may fail.
struct Step {
  std::string name;
  std::string path;
  /// Up to the tap that makes the request, that included.
  std::function<void(Flow&)> take;
  std::string screen;      ///< where the user stands while it fails
  int attempts;            ///< requests before the user is asked
  std::string answer;      ///< that lets the flow go on
  std::string nextScreen;  ///< where it goes on
};

void openCards(Flow& flow) {
  flow.begin(Entry::wallet, "WalletManagement", "");
  flow.host.tap("cardView");
  flow.host.runUntilIdle();
}

const std::vector<Step>& steps() {
  static const std::vector<Step> kSteps{
      {"sending the number", "/sms/send",
       [](Flow& flow) {
         flow.answer("/session/new", Answers::kNotActivated);
         flow.begin(Entry::checkout, "Activation", "0821234567");
         flow.host.tap("proceedButton");
       },
       "Activation", 2, Answers::kSmsSent, "ActivationCode"},
      {"sending the code", "/sms/activateSession",
       [](Flow& flow) {
         flow.beginEnrolment(Entry::checkout);
         flow.host.type("codeField", "1234");
         flow.host.tap("proceedButton");
       },
       "ActivationCode", 2, Answers::kSmsSent, "Product"},
      {"looking the card number up", "/card/bin/",
       [](Flow& flow) {
         flow.beginAddCard(Entry::wallet);
         flow.answer("/card/link/", Answers::kRelink);
         flow.proceedWithCard();
       },
       "AddCard", 1, Answers::kNothingNeeded, "MsisdnRelink"},
      {"linking the card", "/card/link/",
       [](Flow& flow) {
         flow.beginAddCard(Entry::wallet);
         flow.proceedWithCard();
       },
       "AddCard", 1, Answers::kRelink, "MsisdnRelink"},
      {"confirming the number", "/card/link/",
       [](Flow& flow) {
         flow.beginAddCard(Entry::wallet);
         OXSession::currentSession()->cardInfoResponse = std::make_shared<CardInfoResponse>();
         OXSession::currentSession()->cardInfoResponse->cardNumber = "4000123412341234";
         OXSession::currentSession()->showMsisdnRelinkScreen();
         flow.setCards({cardJson(12, "0012")});
         flow.host.type("msisdnField", "0821234567");
         flow.host.tap("proceedButton");
       },
       "MsisdnRelink", 1, Answers::kLinked, "WalletManagement"},
      {"validating the card", "/card/validate/",
       [](Flow& flow) {
         flow.begin(Entry::checkout, "Product", "");
         OXSession::currentSession()->showCardValidationScreen();
         flow.host.tap("proceedButton");
       },
       "CardValidation", 1, R"({"message":"Your card has been added"})", "Product"},
      {"deleting the card", "/card/delink/",
       [](Flow& flow) {
         openCards(flow);
         flow.host.user().tapRowButton("tableView", 1);
         flow.host.runUntilIdle();
         flow.host.pressAlert("Delete");
       },
       "Cards", 1, "{}", "WalletManagement"},
  };
  return kSteps;
}

TEST(NetworkAlert, RetryThatSucceedsTakesTheSameStepWithTheSameInput) {
  for (const Step& step : steps()) {
    Flow flow;
    flow.fail(step.path, step.attempts, step.answer);
    step.take(flow);
    flow.host.runUntilAlert("Connection problem");
    EXPECT_EQ(flow.alert(), kConnectionProblem) << step.name;
    EXPECT_FALSE(flow.indicatorIsUp()) << step.name;
    EXPECT_EQ(flow.requestsTo(step.path), static_cast<std::size_t>(step.attempts)) << step.name;
    flow.host.pressAlert("Retry");
    flow.host.runUntilIdle();
    const auto requests = flow.host.connections().requestsTo(step.path);
    ASSERT_EQ(requests.size(), static_cast<std::size_t>(step.attempts) + 1) << step.name;
    EXPECT_EQ(requests.front().body, requests.back().body) << step.name;
    EXPECT_EQ(flow.screen(), step.nextScreen) << step.name;
    EXPECT_FALSE(flow.indicatorIsUp()) << step.name;
    EXPECT_EQ(flow.application->calls, Calls{}) << step.name;
  }
}

TEST(NetworkAlert, RetryThatFailsAgainAsksAgainAndCancelLeavesTheUserThere) {
  for (const Step& step : steps()) {
    Flow flow;
    flow.fail(step.path);
    step.take(flow);
    flow.host.runUntilAlert("Connection problem");
    flow.host.pressAlert("Retry");
    flow.host.runUntilIdle();
    EXPECT_EQ(flow.alert(), kConnectionProblem) << step.name;
    EXPECT_EQ(flow.requestsTo(step.path), 2U * static_cast<std::size_t>(step.attempts))
        << step.name;
    flow.host.pressAlert("Cancel");
    flow.host.runUntilIdle();
    EXPECT_EQ(flow.screen(), step.screen) << step.name;
    EXPECT_FALSE(flow.indicatorIsUp()) << step.name;
    EXPECT_EQ(flow.requestsTo(step.path), 2U * static_cast<std::size_t>(step.attempts))
        << step.name;
    EXPECT_EQ(flow.application->calls, Calls{}) << step.name;
  }
}

TEST(NetworkAlert, OfAFlowThatASecondEntryCallReplacedDoesNothing) {
  for (const Step& step : steps()) {
    Flow flow;
    flow.fail(step.path);
    step.take(flow);
    flow.host.runUntilAlert("Connection problem");
    const auto alert = flow.host.user().topAlert();
    const auto replaced = flow.application;
    flow.application = std::make_shared<RecordingHost>();
    flow.answer("/session/new", Answers::kSession);
    flow.begin(Entry::wallet);
    alert->press(1);
    const std::size_t asked = flow.requestsTo(step.path);
    flow.host.runUntilIdle();
    EXPECT_EQ(flow.requestsTo(step.path), asked) << step.name;
    EXPECT_EQ(flow.alert(), "") << step.name;
    EXPECT_EQ(replaced->calls, Calls{}) << step.name;
  }
}

}  // namespace
}  // namespace orlix
