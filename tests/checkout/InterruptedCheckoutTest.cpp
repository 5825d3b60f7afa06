#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

const std::vector<std::string> kStages{"/session/new/", "/lookup/",       "choosing",
                                       "/purchase/",    "/receipt/poll/", "pausing",
                                       "alert",         "retrying",       "leaving"};

/// Brings a checkout to the stage: to a request that is slow, or to what its name says.
void bring(Phone& phone, const std::string& stage) {
  const ServerReply slow = late(9s, "{}");
  if (stage == "alert" || stage == "retrying") {
    phone.wallet.next("/purchase/", unreachable());
  } else if (stage.starts_with("/")) {
    phone.wallet.next(stage, slow);
  } else if (stage == "pausing") {
    phone.wallet.receipt = "{}";
  }
  phone.checkout();
  phone.host.runFor(1s);
  if (phone.screen() == "Product" && stage == "leaving") {
    phone.host.tap("cancelAction");
  } else if (phone.screen() == "Product" && stage != "choosing") {
    phone.pay();
    phone.host.runFor(1s);
  }
  if (stage == "retrying") {
    phone.host.pressAlert("Retry");
  }
}

}  // namespace

TEST(InterruptedCheckout, ByTheHostsEndItIsOverAtOnceAndNobodyIsCalledBackAndNothingIsLeft) {
  for (const std::string& stage : kStages) {
    SCOPED_TRACE(stage);
    std::optional<Phone> phone(std::in_place);
    bring(*phone, stage);
    const auto app = phone->app;
    const std::weak_ptr<ViewController> top = phone->host.topController();
    const std::weak_ptr<ViewController> screen = phone->host.root()->presentedViewController();
    const std::weak_ptr<OXSession> session = OXSession::currentSession();
    const SteadyTime before = phone->host.clock().steadyNow();
    phone->host.shutdown();
    EXPECT_EQ(phone->host.clock().steadyNow(), before);
    phone.reset();
    EXPECT_TRUE(app->heard.empty());
    EXPECT_TRUE(top.expired() && screen.expired() && session.expired());
  }
}

TEST(InterruptedCheckout, ByASecondEntryCallItGivesWayToTheNewFlow) {
  for (const std::string& stage : kStages) {
    for (const bool sameFacade : {true, false}) {
      SCOPED_TRACE(stage + (sameFacade ? ", same facade" : ", new facade"));
      Phone phone;
      bring(phone, stage);
      const auto first = phone.app;
      if (sameFacade) {
        phone.app = std::make_shared<HostApp>();
        phone.checkout();
      } else {
        phone.beginAnew(Entry::checkout);
      }
      EXPECT_FALSE(phone.busy());
      phone.host.runUntilScreen("Product");
      phone.host.runFor(120s);
      EXPECT_EQ(phone.alert(), "");
      EXPECT_EQ(first->heard, stage == "leaving" ? Heard{"cancelled"} : Heard{});
      EXPECT_TRUE(phone.app->heard.empty());
      phone.wallet.receipt = R"({"status":"SUCCESS"})";
      phone.pay();
      phone.runUntilOutcome();
      EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
    }
  }
}

}  // namespace orlix::test
