// SPDX-License-Identifier: Apache-2.0

// What a store that is locked, full or unreadable does to a flow.

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/protocol/OMVello.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

constexpr auto kStoredCard = "test.lastUsedCard";

/// A store that another process keeps locked for a while: each write waits.
class LockedStore : public UserDefaults {
 public:
  LockedStore(std::shared_ptr<UserDefaults> store, std::shared_ptr<Clock> clock)
      : store_(std::move(store)), clock_(std::move(clock)) {}
  std::optional<StoredValue> value(const std::string& key) const override {
    return store_->value(key);
  }
  void setValue(const std::string& key, const StoredValue& value) override {
    clock_->sleep(4s);
    store_->setValue(key, value);
  }

 private:
  const std::shared_ptr<UserDefaults> store_;
  const std::shared_ptr<Clock> clock_;
};

MemoryHostSettings withLockedStore() {
  return {.adapt = [](Ports& ports) {
    ports.userDefaults = std::make_shared<LockedStore>(ports.userDefaults, ports.clock);
  }};
}

void useSystem(std::int64_t system) {
  OMVello::sharedOMVello().initSessionWithLibKey("key", system, nullptr);
}

std::int64_t stored(const Phone& phone, const std::string& key = kStoredCard) {
  return phone.host.userDefaults()->integerForKey(key);
}

}  // namespace

TEST(LastUsedCard, CountsAtOnceAndIsWrittenInTheBackgroundUnderTheSystemOfItsChoice) {
  Phone phone;
  useSystem(kTestSystem);
  OXUtil::setLastUsedCardId(5);
  OXUtil::setLastUsedCardId(7);
  useSystem(kLiveSystem);
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 0);
  OXUtil::setLastUsedCardId(9);
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 9);
  useSystem(kTestSystem);
  EXPECT_EQ(OXUtil::getLastUsedCardid(), 7);
  EXPECT_EQ(phone.host.userDefaults()->keys(), std::vector<std::string>{})
      << "nothing waits for it";
  phone.host.runUntilIdle();
  EXPECT_EQ(stored(phone), 7);
  EXPECT_EQ(stored(phone, "live.lastUsedCard"), 9);
}

TEST(LastUsedCard, IsWrittenAgainOnlyWhenItIsAnother) {
  Phone phone;
  useSystem(kTestSystem);
  const auto storedAfter = [&](std::int64_t cardId) {
    phone.host.userDefaults()->setValue(kStoredCard, std::int64_t{0});
    OXUtil::setLastUsedCardId(cardId);
    phone.host.runUntilIdle();
    return stored(phone);
  };
  EXPECT_EQ(storedAfter(5), 5);
  EXPECT_EQ(storedAfter(5), 0) << "it is there already";
  EXPECT_EQ(storedAfter(6), 6);
  EXPECT_EQ(storedAfter(5), 5);
  phone.host.userDefaults()->setFailing(true);
  OXUtil::setLastUsedCardId(6);
  phone.host.runUntilIdle();
  phone.host.userDefaults()->setFailing(false);
  EXPECT_EQ(storedAfter(6), 6) << "the first attempt failed";
}

TEST(LastUsedCard, ThatIsChosenWhileAnotherIsBeingWrittenIsWrittenAfterIt) {
  Phone phone(withLockedStore());
  useSystem(kTestSystem);
  OXUtil::setLastUsedCardId(5);
  phone.host.runFor(10s);
  OXUtil::setLastUsedCardId(7);
  phone.host.runFor(1s);
  OXUtil::setLastUsedCardId(5);
  phone.host.runFor(20s);
  EXPECT_EQ(stored(phone), 5);
}

TEST(LastUsedCard, WaitsForALockedStoreWhileThePaymentGoesOn) {
  Phone phone(withLockedStore());
  phone.showPaymentScreen();
  const SteadyTime before = phone.host.clock().steadyNow();
  phone.pay();
  EXPECT_EQ(phone.host.clock().steadyNow(), before);
  phone.runUntilOutcome();
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
  phone.host.runFor(10s);
  EXPECT_EQ(stored(phone), 5);
}

TEST(LastUsedCard, IsWrittenAtTheShutdownAtTheLatestAndTheNewestStays) {
  for (const Duration begun : {0s, 1s, 5s, 9s}) {
    SCOPED_TRACE(begun.count());
    Phone phone(withLockedStore());
    useSystem(kTestSystem);
    for (const std::int64_t cardId : {3, 4, 5}) {
      OXUtil::setLastUsedCardId(cardId);
    }
    phone.host.runFor(begun);
    OXUtil::setLastUsedCardId(6);
    OXUtil::setLastUsedCardId(7);
    phone.host.shutdown();
    EXPECT_EQ(stored(phone), 7);
  }
}

TEST(LastUsedCard, ThatCannotBeStoredIsLoggedAndCountsUntilTheEnd) {
  for (const bool atShutdown : {false, true}) {
    Phone phone;
    useSystem(kTestSystem);
    phone.host.userDefaults()->setFailing(true);
    OXUtil::setLastUsedCardId(4);
    OXUtil::setLastUsedCardId(5);
    atShutdown ? phone.host.shutdown() : phone.host.runUntilIdle();
    EXPECT_EQ(phone.host.log().count("The last used card could not be stored: "), 1U)
        << "only the newest choice is written";
    EXPECT_EQ(OXUtil::getLastUsedCardid(), 5);
    phone.host.userDefaults()->setFailing(false);
    EXPECT_EQ(stored(phone), 0);
  }
}

TEST(UnreadableStore, EndsTheFlowThatAsksForTheLastUsedCard) {
  struct Row {
    const char* name;
    std::function<void(Phone&)> begin, goOn;
  };
  // The store fails when the session has been opened and the first answer is still to come.
  const auto untilSecondRequest = [](Phone& phone) {
    phone.host.runUntil([&phone] { return phone.host.requests().size() == 2; });
  };
  const auto nothing = [](Phone&) {};
  const Row rows[] = {
      {"the payment screen",
       [&](Phone& phone) {
         phone.checkout();
         untilSecondRequest(phone);
       },
       nothing},
      {"the wallet",
       [&](Phone& phone) {
         phone.begin(Entry::wallet);
         untilSecondRequest(phone);
       },
       nothing},
      {"the screen that validates a card",
       [](Phone& phone) {
         phone.host.userDefaults()->setValue(kStoredCard, 5);
         phone.wallet.cards = {
             cardJson(5, "4242", R"(,"method":"AMT","validated":false,"validationtype":"DOB")")};
         phone.showPaymentScreen();
       },
       [](Phone& phone) { phone.host.tap("proceedButton"); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Phone phone;
    row.begin(phone);
    phone.host.userDefaults()->setUnreadable(true);
    row.goOn(phone);
    phone.runUntilOutcome();
    phone.host.runUntilIdle();
    EXPECT_EQ(phone.app->heard, Heard{"error 2"});
    EXPECT_EQ(phone.host.topController(), phone.host.root());
    EXPECT_FALSE(phone.busy());
    EXPECT_EQ(phone.host.log().count("test.lastUsedCard cannot be read"), 1U);
  }
}

TEST(UnreadableStore, AtTheStartOfASessionIsLoggedAndOffersARetry) {
  Phone phone;
  phone.host.userDefaults()->setUnreadable(true);
  phone.checkout();
  phone.host.runUntilAlert("Connection problem");
  EXPECT_EQ(phone.host.log().count("test.data cannot be read"), 1U);
  phone.host.userDefaults()->setUnreadable(false);
  phone.host.pressAlert("Retry");
  phone.host.runUntilScreen("Product");
  EXPECT_EQ(phone.app->heard, Heard{});
}

TEST(UnreadableStore, MakesAnEntryCallWithACustomerThrowBeforeItBegins) {
  Phone phone;
  phone.showPaymentScreen();
  const auto session = OXSession::currentSession();
  phone.host.userDefaults()->setUnreadable(true);
  EXPECT_THROW(phone.facade->checkout({.controller = phone.host.root(),
                                       .delegate = phone.app,
                                       .customerId = CustomerId{"anna"}}),
               StoreException);
  EXPECT_EQ(OXSession::currentSession(), session);
  phone.pay();
  phone.runUntilOutcome();
  EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"})
      << "the flow in progress goes on";
}

}  // namespace orlix::test
