#include <gtest/gtest.h>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/protocol/LocationUtil.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

CardOption cardWithId(std::int64_t cardId) {
  CardOption card;
  card.cardId = cardId;
  return card;
}

}  // namespace

TEST(Utilities, TheSystemOfTheLastStartNamesServerAndStore) {
  Phone phone;
  EXPECT_EQ(OXUtil::storageKeyForItem("lastUsedCard"), "live.lastUsedCard");
  EXPECT_EQ(OXUtil::velloUrl(), "https://live.example/vello");
  phone.checkout();
  EXPECT_EQ(OXUtil::storageKeyForItem("lastUsedCard"), "test.lastUsedCard");
  EXPECT_EQ(OXUtil::velloUrl(), "https://test.example/vello");
  OXUtil::setLastUsedCardId(7);
  EXPECT_EQ(phone.host.userDefaults()->integerForKey("test.lastUsedCard"), 7);
  EXPECT_EQ(phone.host.userDefaults()->integerForKey("live.lastUsedCard"), 0);
}

TEST(Utilities, TheLastUsedCardIsTheStoredOneOrTheFirst) {
  struct Case {
    std::string name;
    std::int64_t stored;
    std::vector<std::int64_t> cards;
    std::optional<std::int64_t> found;
    std::int64_t storedAfterwards;
  };
  for (const Case& row : std::vector<Case>{{"stored", 9, {5, 9}, 9, 9},
                                           {"gone", 12, {5, 9}, 5, 0},
                                           {"gone, and a card of id 0", 0, {5, 0}, 0, 0},
                                           {"never stored", 0, {5}, 5, 0},
                                           {"no cards", 12, {}, {}, 12}}) {
    SCOPED_TRACE(row.name);
    Phone phone;
    OXUtil::setLastUsedCardId(row.stored);
    for (const std::int64_t cardId : row.cards) {
      OXSession::currentSession()->cards.push_back(cardWithId(cardId));
    }
    const auto found = OXUtil::getLastUsedCard();
    EXPECT_EQ(found ? std::optional(found->cardId) : std::nullopt, row.found);
    EXPECT_EQ(OXUtil::getLastUsedCardid(), row.storedAfterwards);
  }
}

TEST(Utilities, ACardThatCannotBeRememberedIsLoggedAndThePaymentGoesOn) {
  Phone phone;
  phone.showPaymentScreen();
  phone.host.userDefaults()->setFailing(true);
  phone.pay();
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  EXPECT_TRUE(phone.host.log().contains("The last used card could not be stored"));
}

TEST(Utilities, ACardBrandHasItsImage) {
  const std::vector<std::pair<std::optional<std::string>, std::string>> images{
      {"orbis", "orbis100"}, {"visa", "visa100"}, {"amex", "america_express100"},
      {"Visa", "other100"},  {"", "other100"},    {{}, "other100"}};
  for (const auto& [cardType, image] : images) {
    EXPECT_EQ(OXUtil::imageForCardType(cardType), image) << cardType.value_or("(none)");
  }
}

TEST(Utilities, ThePositionIsTheLastFixOrALineInTheLog) {
  Phone phone;
  EXPECT_FALSE(OXUtil::getLocation().gpsLatitude);
  EXPECT_TRUE(phone.host.log().contains("WARNING: clLocation not available"));
  LocationUtil::sharedLocationUtil().startLocationDetection();
  phone.host.locationManager().sendFixes({{1.5, -2.5, 5, {}}});
  EXPECT_EQ(OXUtil::getLocation().gpsLatitude, 1.5);
  EXPECT_EQ(OXUtil::getLocation().gpsLongditude, -2.5);
}

TEST(Utilities, OnlyALowScreenInLandscapeMovesTheView) {
  struct Case {
    std::string name;
    std::optional<Size> screen;
    Orientation orientation;
    bool secure, moves;
  };
  for (const Case& row :
       std::vector<Case>{{"portrait", Size{568, 320}, Orientation::portrait, false, false},
                         {"tall", Size{667, 321}, Orientation::landscape, false, false},
                         {"low", Size{568, 320}, Orientation::landscape, false, true},
                         {"low, secure", Size{568, 320}, Orientation::landscape, true, false},
                         {"no screen", {}, Orientation::landscape, false, true}}) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.host.application().mainScreen = row.screen;
    phone.host.application().statusBarOrientation = row.orientation;
    ViewController controller;
    controller.view()->setFrame({10, 20, 30, 40});
    OXUtil::checkOrientationHeight(controller, row.secure);
    EXPECT_EQ(controller.view()->frame(),
              row.moves ? (Rect{10, 45, 300, 350}) : (Rect{10, 20, 30, 40}));
  }
}

TEST(Utilities, TheNetworkAlertWaitsForTheIndicatorAndOffersCancelThenRetry) {
  Phone phone;
  std::string done;
  phone.host.application().progressIndicator().show("busy");
  OXUtil::showNetworkErrorRetryObject([&] { done += "retry "; }, [&] { done += "cancel "; });
  bool indicatorWasUp = false;
  phone.host.runUntil([&] {
    indicatorWasUp = indicatorWasUp || (phone.host.user().topAlert() && phone.busy());
    return phone.alert() == kConnectionProblem;
  });
  EXPECT_FALSE(indicatorWasUp);
  const auto alert = phone.host.user().topAlert();
  ASSERT_EQ(alert->actions().size(), 2U);
  EXPECT_EQ(alert->actions()[0].title, "Cancel");
  EXPECT_EQ(alert->actions()[1].title, "Retry");
  phone.host.application().progressIndicator().show("busy again");
  phone.host.pressAlert("Cancel");
  phone.host.runUntilIdle();
  EXPECT_EQ(done, "cancel ");
  EXPECT_FALSE(phone.busy());
}

TEST(Utilities, TheNetworkAlertIsGoodForItsOwnSessionOnly) {
  Phone phone;
  bool called = false;
  const Task handler = [&] { called = true; };
  for (const char* button : {"Retry", "Cancel"}) {
    OXUtil::showNetworkErrorRetryObject(handler, handler);
    phone.host.runUntilAlert("Connection problem");
    OXSession::reset();
    phone.host.pressAlert(button);
    phone.host.runUntilIdle();
  }
  OXUtil::showNetworkErrorRetryObject(handler);
  OXSession::reset();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), "");
  EXPECT_FALSE(called);
}

TEST(Utilities, TheNetworkAlertMayBeAskedForOffTheMainThread) {
  Phone phone;
  phone.host.backgroundQueues().global(QualityOfService::background,
                                       [] { OXUtil::showNetworkErrorRetryObject([] {}); });
  phone.host.runUntilAlert("Connection problem");
}

TEST(Utilities, ButtonsAreStyledDownTheTreeButForThoseTaggedOut) {
  Phone phone;
  const auto view = std::make_shared<View>();
  const auto group = std::make_shared<View>();
  const auto deep = std::make_shared<Button>();
  const auto plain = std::make_shared<Button>();
  plain->setTag(9999);
  view->addSubview(group);
  view->addSubview(plain);
  group->addSubview(deep);
  OXUtil::styleButtonsForView(view);
  EXPECT_EQ(deep->cornerRadius(), 5);
  EXPECT_EQ(deep->borderWidth(), 1);
  EXPECT_EQ(plain->borderWidth(), 0);
}

}  // namespace orlix::test
