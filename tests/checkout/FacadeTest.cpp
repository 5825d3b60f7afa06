// SPDX-License-Identifier: Apache-2.0

#include <limits>

#include "orlixkit/Version.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/records/Failures.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

std::string codeWith(const std::string& key, const std::string& amountString) {
  return R"({"code":"C-1","amountString":")" + amountString + R"(",")" + key + R"(":true})";
}

}  // namespace

TEST(Facade, TheLookedUpCodeDecidesWhetherThePaymentScreenComes) {
  struct Case {
    std::string name, codeInfo;
    double amount;
    Heard outcome;  ///< empty: the payment screen
  };
  const std::string open = R"({"code":"C-1","amountString":""})";
  const std::string fixed = R"({"code":"C-1","amountString":"25.00"})";
  const std::vector<Case> cases{
      {"open amount", open, 0, {}},
      {"open amount, host's amount", open, 10, {}},
      {"fixed amount", fixed, 0, {}},
      {"negative host amount counts as none", fixed, -1, {}},
      {"two amounts", fixed, 10.0, {"error 7"}},
      {"no amount's text, and the host's amount", R"({"code":"C-1"})", 10, {}},
      {"unknown code", "", 0, {"error 4"}},
      {"billing", codeWith("requestBilling", ""), 0, {"error 4"}},
      {"shipping", codeWith("requestShipping", "25.00"), 0, {"error 4"}},
      {"tip and host's amount", codeWith("requestTip", ""), 10, {"error 4"}},
      {"tip and two amounts", codeWith("requestTip", "25.00"), 10, {"error 7"}},
      {"partial payment", codeWith("requestPartialPayment", ""), 0, {"error 4"}},
      {"orlixData", codeWith("orlixData", ""), 0, {"error 4"}},
      {"contact is no obstacle", codeWith("requestContact", ""), 0, {}},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.codeInfo = row.codeInfo;
    phone.checkout(row.amount);
    phone.host.runFor(5s);
    EXPECT_EQ(phone.app->heard, row.outcome);
    EXPECT_EQ(phone.screen(), row.outcome.empty() ? "Product" : "");
  }
}

TEST(Facade, AnUnknownCodeAfterARetryTellsNobody) {
  Phone phone;
  phone.wallet.next("/lookup/", unreachable());
  phone.wallet.codeInfo.clear();
  phone.checkout();
  phone.host.runUntilAlert("Connection problem");
  phone.host.pressAlert("Retry");
  phone.host.runFor(60s);
  EXPECT_TRUE(phone.app->heard.empty());
  EXPECT_EQ(phone.screen(), "Waiting");
}

TEST(Facade, EachSessionAnswerAndEachWalletLeadsToItsFirstScreenOrOutcome) {
  struct Case {
    std::string name;
    Entry entry;
    std::string session;
    bool hasCards;
    std::string shows;  ///< a screen or an alert
    Heard outcome;
  };
  const std::string& open = answers::kSession;
  const std::string refused = R"({"activated":true,"allowConnection":false,"message":"Too old"})";
  const std::string notice = R"({"sessionId":"a","sessionId2":"b","activated":true,)"
                             R"("allowConnection":true,"message":"New version"})";
  const std::vector<Case> cases{
      {"registered already", Entry::preRegister, open, true, "", {"registered"}},
      {"first card", Entry::preRegister, open, false, "AddCard", {}},
      {"wallet", Entry::wallet, open, true, "WalletManagement", {}},
      {"empty wallet", Entry::wallet, open, false, "AddCard", {}},
      {"refused", Entry::checkout, refused, true, "Error: Too old", {}},
      {"with a notice", Entry::checkout, notice, true, "Product", {}},
      {"not activated", Entry::checkout, answers::kNotActivated, true, "Activation", {}},
      {"no JSON", Entry::checkout, "oops", true, kConnectionProblem, {}},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.session = row.session;
    if (!row.hasCards) {
      phone.wallet.cards.clear();
    }
    phone.begin(row.entry);
    if (row.session == notice) {
      phone.host.runUntilAlert("Warning");
      EXPECT_EQ(phone.alert(), "Warning: New version");
    }
    phone.host.runFor(5s);
    EXPECT_EQ(phone.alert().empty() ? phone.screen() : phone.alert(), row.shows);
    EXPECT_EQ(phone.app->heard, row.outcome);
    EXPECT_EQ(phone.wallet.asked("/lookup/"), row.name == "with a notice" ? 1U : 0U);
  }
}

TEST(Facade, AStartSaysWhichDeviceItIsAndARetryStaysTheSameDevice) {
  const std::vector<std::pair<int, std::string>> zones{
      {0, "+00:00"},     {19800, "+05:30"}, {-12600, "-03:30"}, {50400, "+14:00"},
      {-1500, "-00:25"}, {-20, "+00:00"},   {1172, "+00:19"}};
  for (const auto& [offset, zone] : zones) {
    Phone phone;
    phone.host.device().offset = std::chrono::seconds(offset);
    phone.host.device().vendor = "";  // so that each start makes an identifier of its own
    phone.wallet.next("/session/new/", unreachable());
    phone.checkout();
    phone.host.runUntilAlert("Connection problem");
    const std::string serial = phone.wallet.sent("/session/new/", "deviceSerial");
    EXPECT_EQ(serial.size(), std::string("[p:]").size() + 32) << serial;
    phone.press("Retry");
    EXPECT_EQ(phone.screen(), "Product");
    EXPECT_EQ(phone.wallet.sent("/session/new/", "deviceSerial"), serial);
    EXPECT_EQ(phone.wallet.sent("/session/new/", "timeZone"), zone);
    EXPECT_EQ(phone.wallet.sent("/session/new/", "appVersion"), "iPhone TALU " ORLIXKIT_VERSION);
    EXPECT_EQ(phone.host.requests()[0].url, "https://test.example/vello/session/new/TALU");
    phone.checkout();
    phone.host.runUntilIdle();
    EXPECT_NE(phone.wallet.sent("/session/new/", "deviceSerial"), serial);
  }
}

TEST(Facade, OneThatHasShownTheWaitingScreenShowsItOnlyOnce) {
  Phone phone;
  phone.facade->velloNotActivated();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.screen(), "") << "without a waiting screen it is no business of the facade's";
  phone.showPaymentScreen();
  phone.tap("cancelAction");
  phone.wallet.always("/session/new/", late(9s, answers::kNotActivated));
  phone.checkout();
  phone.host.runFor(1s);
  EXPECT_EQ(phone.screen(), "");
  // The waiting screen is kept but not presented: nothing is to be dismissed first.
  phone.host.runUntilScreen("Activation");
  // On that path it is released, so that the next call shows one again.
  phone.checkout();
  phone.host.runUntilScreen("Waiting");
  EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
}

TEST(Facade, OneThatIsKeptForAnotherHostShowsItsWaitingScreenThere) {
  std::shared_ptr<OXOrlix> kept;
  {
    Phone former;
    former.showPaymentScreen();
    former.tap("cancelAction");
    kept = former.facade;
  }
  Phone phone;
  phone.facade = kept;
  phone.checkout();
  phone.host.runUntilScreen("Waiting");
  phone.host.runUntilScreen("Product");
}

TEST(Facade, WithoutAControllerNothingIsShownAndNoCallbackIsMade) {
  Phone phone;
  phone.facade->checkout({.code = "C-1", .apiKey = "key", .delegate = phone.app});
  phone.host.runUntilIdle();
  OXOrlix::reloadData();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.wallet.asked("/lookup/"), 2U);
  EXPECT_EQ(phone.screen(), "");
  OXSession::currentSession()->returnUserDidCancel();
  phone.host.runUntilIdle();
  EXPECT_TRUE(phone.app->heard.empty());
}

TEST(Facade, AScreenThatIsNotInTheStoryboardIsNamedToTheUser) {
  Phone phone;
  phone.facade->showScreen("Nowhere", phone.host.root());
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), "Error: The storyboard has no screen \"Nowhere\".");
}

TEST(Facade, HidingTheLoadingDialogDismissesTheControllerThatIsGiven) {
  Phone phone;
  phone.wallet.always("/session/new/", late(9s, answers::kSession));
  phone.checkout();
  phone.host.runUntilScreen("Waiting");
  OXOrlix::hideLoadingDialog(nullptr);
  OXOrlix::hideLoadingDialog(phone.host.root());
  phone.host.runFor(1s);
  EXPECT_EQ(phone.screen(), "Waiting") << "the host's own controller is presented by none";
  const auto dialog = phone.host.topController();
  OXOrlix::hideLoadingDialog(dialog);
  EXPECT_TRUE(dialog->isBeingDismissed()) << "animated";
  phone.host.runFor(1s);
  EXPECT_EQ(phone.host.root()->presentedViewController(), nullptr);
}

TEST(Facade, AChangedCustomerWipesTheWalletBeforeTheStartOrDoesNotGetIt) {
  Phone phone;
  const auto enter = [&](std::optional<CustomerId> customer) {
    phone.facade = OXOrlix::make();
    phone.facade->checkoutWithCode("C-1", 0, "key", kTestSystem, phone.host.root(), phone.app,
                                   customer);
    phone.host.runUntilScreen("Product");
    return phone.host.userDefaults()->dataForKey("test.data").has_value();
  };
  // No client yet, so nothing to wipe: the first customer is only remembered.
  EXPECT_FALSE(enter(CustomerId{"anna"}));
  EXPECT_EQ(phone.host.userDefaults()->stringForKey("customerId"), "anna");
  EXPECT_FALSE(enter(std::nullopt));
  EXPECT_FALSE(enter(CustomerId{"anna"}));
  EXPECT_TRUE(enter(CustomerId{"bert"}));
  EXPECT_EQ(phone.host.userDefaults()->stringForKey("customerId"), "bert");
  EXPECT_EQ(phone.alert(), "");

  const auto session = OXSession::currentSession();
  phone.host.userDefaults()->setFailing(true);
  EXPECT_THROW(enter(CustomerId{"cleo"}), NetworkException);
  EXPECT_EQ(OXSession::currentSession(), session);
  EXPECT_EQ(phone.host.userDefaults()->stringForKey("customerId"), "bert");
  EXPECT_THROW(phone.facade->reset(), NetworkException);
  EXPECT_EQ(phone.alert(), "");
  phone.host.userDefaults()->setFailing(false);
  phone.facade->reset();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), "Deregister: Succesfully deregistered.");
}

TEST(Facade, EveryFormOfAnEntryCallCarriesItsArguments) {
  const std::optional<CustomerId> c{CustomerId{"anna"}};
  const std::optional<PreMSISDN> n{PreMSISDN{"082 123 4567"}};
  for (int form = 0; form < 12; ++form) {
    SCOPED_TRACE(form);
    Phone phone;
    const auto call = [&](const auto&... more) {
      if (form < 4) {
        phone.facade->checkoutWithCode("C-9", 12.5, "key", 1, phone.host.root(), phone.app,
                                       more...);
      } else if (form < 8) {
        phone.facade->preRegister("key", 1, phone.host.root(), phone.app, more...);
      } else {
        phone.facade->WalletManagement("key", 1, phone.host.root(), phone.app, more...);
      }
    };
    const int more = form % 4;
    more == 0 ? call() : more == 1 ? call(c) : more == 2 ? call(n) : call(n, c);
    const auto session = OXSession::currentSession();
    EXPECT_EQ(session->code.value_or("-"), form < 4 ? "C-9" : "-");
    EXPECT_EQ(session->inAmount.value_or("-"), form < 4 ? "12.5" : "-");
    EXPECT_EQ(session->preRegister, form / 4 == 1);
    EXPECT_EQ(session->walletManagement, form / 4 == 2);
    EXPECT_EQ(session->system, 1);
    EXPECT_EQ(session->delegate, phone.app);
    EXPECT_EQ(session->preMSISDN.value_or("-"), more >= 2 ? "+27821234567" : "-");
    EXPECT_EQ(phone.host.userDefaults()->stringForKey("customerId").has_value(), more % 2 == 1);
    EXPECT_EQ(phone.screen(), "Waiting");
  }
}

TEST(Facade, TheHostsAmountBecomesItsShortestDecimalText) {
  const std::vector<std::pair<double, std::optional<std::string>>> cases{
      {12.5, "12.5"},
      {100.0, "100"},
      {0.1 + 0.2, "0.30000000000000004"},
      {1e21, "1000000000000000000000"},
      {1e-7, "0.0000001"},
      {-0.0, {}},
      {-5.0, {}},
      {std::numeric_limits<double>::infinity(), {}},
      {std::numeric_limits<double>::quiet_NaN(), {}}};
  for (const auto& [amount, text] : cases) {
    Phone phone;
    phone.checkout(amount);
    EXPECT_EQ(OXSession::currentSession()->inAmount, text) << amount;
  }
}

TEST(Facade, ASuggestedNumberIsBroughtIntoInternationalForm) {
  for (const std::string row :
       {"=", "abc=+", "082 123 4567=+27821234567", "0027821234567=+27821234567",
        "270821234567=+27821234567", "+27 82 123 4567=+27821234567",
        "+44 20 7946 0000=+442079460000", "0=+27", "0000=+", "00270821234567=+270821234567",
        "0270821234567=+2727821234567", "270=+27", "2700=+270", "(082) CALL-ME 7=+27827",
        "\xEF\xBC\x90\xEF\xBC\x98=+278"}) {
    const std::size_t middle = row.find('=');
    EXPECT_EQ(OXOrlix::getSuggestedMSISDN(row.substr(0, middle)), row.substr(middle + 1)) << row;
  }
  const std::string forty(40, '9');
  EXPECT_EQ(OXOrlix::getSuggestedMSISDN(forty), "+" + forty);
}

}  // namespace orlix::test
