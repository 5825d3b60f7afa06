// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXPresentationController.h"
#include "orlixkit/checkout/OXUtil.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

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
      OXSession::currentSession()->cards.emplace_back().cardId = cardId;
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
  phone.runUntilOutcome();
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  EXPECT_TRUE(phone.host.log().contains("The last used card could not be stored"));
}

TEST(Utilities, AControllerIsShownAsACardByTheOneThatIsGiven) {
  Phone phone;
  const auto controller = std::make_shared<ViewController>();
  OXUtil::showController(controller, phone.host.root());
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.host.root()->presentedViewController(), controller);
  EXPECT_TRUE(
      std::dynamic_pointer_cast<OXPresentationController>(controller->presentationController()));
}

TEST(Utilities, EachBrandOfCardHasItsImage) {
  const std::vector<std::pair<std::optional<std::string>, std::string>> images{
      {"orbis", "orbis100"},
      {"visa", "visa100"},
      {"amex", "america_express100"},
      {"Visa", "other100"},
      {std::nullopt, "other100"}};
  for (const auto& [type, image] : images) {
    EXPECT_EQ(OXUtil::imageForCardType(type), image) << type.value_or("(none)");
  }
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

}  // namespace orlix::test
