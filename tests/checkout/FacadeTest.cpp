#include <limits>

#include <gmock/gmock.h>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

using namespace std::chrono_literals;

std::string codeWith(const std::string& key, const std::string& amountString) {
  return R"({"code":"C-1","amountString":")" + amountString + R"(",")" + key + R"(":true})";
}

const std::string kRefused = R"({"sessionId":"a","activated":true,"allowConnection":false,)"
                             R"("message":"Too old"})";
const std::string kNotice = R"({"sessionId":"a","sessionId2":"b","activated":true,)"
                            R"("allowConnection":true,"message":"New version"})";
const std::string kNotActivated = R"({"sessionId":"a","sessionId2":"b","activated":false})";

}  // namespace

TEST(Facade, TheLookedUpCodeDecidesWhetherThePaymentScreenComes) {
  struct Case {
    std::string name, codeInfo;
    double amount;
    std::string outcome;  ///< empty: the payment screen
  };
  const std::string open = R"({"code":"C-1","amountString":""})";
  const std::string fixed = R"({"code":"C-1","amountString":"25.00"})";
  const std::vector<Case> cases{
      {"open amount", open, 0, ""},
      {"open amount, host's amount", open, 10, ""},
      {"fixed amount", fixed, 0, ""},
      {"negative host amount counts as none", fixed, -1, ""},
      {"two amounts", fixed, 10.0, "error 7"},
      {"unknown code", "", 0, "error 4"},
      {"billing", codeWith("requestBilling", ""), 0, "error 4"},
      {"shipping", codeWith("requestShipping", "25.00"), 0, "error 4"},
      {"tip", codeWith("requestTip", "25.00"), 0, "error 4"},
      {"tip and host's amount", codeWith("requestTip", ""), 10, "error 4"},
      {"tip and two amounts", codeWith("requestTip", "25.00"), 10, "error 7"},
      {"partial payment", codeWith("requestPartialPayment", ""), 0, "error 4"},
      {"orlixData", codeWith("orlixData", ""), 0, "error 4"},
      {"contact is no obstacle", codeWith("requestContact", ""), 0, ""},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.wallet.codeInfo = row.codeInfo;
    phone.checkout(row.amount);
    phone.host.runFor(5s);
    EXPECT_EQ(phone.app->heard, row.outcome.empty() ? Heard{} : Heard{row.outcome});
    EXPECT_EQ(phone.screen(), row.outcome.empty() ? "Product" : "");
  }
}

TEST(Facade, ALookupThatFailsIsRetried) {
  Phone phone;
  phone.wallet.nextFails("/lookup/");
  phone.checkout();
  phone.host.runUntilAlert("Connection problem");
  phone.host.pressAlert("Retry");
  phone.host.runUntilScreen("Product");
  EXPECT_TRUE(phone.app->heard.empty());
}

TEST(Facade, CancelAfterAFailedLookupLeavesTheWaitingScreenAndTellsNobody) {
  Phone phone;
  phone.wallet.nextFails("/lookup/");
  phone.checkout();
  phone.host.runUntilAlert("Connection problem");
  phone.host.pressAlert("Cancel");
  phone.host.runFor(60s);
  EXPECT_EQ(phone.screen(), "Waiting");
  EXPECT_TRUE(phone.app->heard.empty());
}

TEST(Facade, AnUnknownCodeAfterARetryTellsNobody) {
  Phone phone;
  phone.wallet.nextFails("/lookup/");
  phone.wallet.codeInfo.clear();
  phone.checkout();
  phone.host.runUntilAlert("Connection problem");
  phone.host.pressAlert("Retry");
  phone.host.runFor(60s);
  EXPECT_TRUE(phone.app->heard.empty());
  EXPECT_EQ(phone.screen(), "Waiting");
}

TEST(Facade, TheWalletsCardsDecideWhatPreRegistrationAndWalletManagementBeginWith) {
  struct Case {
    std::string name;
    bool preRegister, hasCards;
    std::string outcome, screen;
  };
  for (const Case& row : std::vector<Case>{{"registered already", true, true, "registered", ""},
                                           {"first card", true, false, "", "AddCard"},
                                           {"wallet", false, true, "", "WalletManagement"},
                                           {"empty wallet", false, false, "", "AddCard"}}) {
    for (const bool failsFirst : {false, true}) {
      SCOPED_TRACE(row.name + (failsFirst ? " after a retry" : ""));
      Phone phone;
      phone.addPlainScreens({"AddCard", "WalletManagement"});
      if (!row.hasCards) {
        phone.wallet.cards = "[]";
      }
      const WalletRequestArguments request{.apiKey = "key",
                                           .system = kLiveSystem,
                                           .controller = phone.host.root(),
                                           .delegate = phone.app};
      if (failsFirst) {
        phone.wallet.nextFails("/card/list/");
      }
      row.preRegister ? phone.facade->preRegister(request)
                      : phone.facade->walletManagement(request);
      if (failsFirst) {
        phone.host.runUntilAlert("Connection problem");
        phone.host.pressAlert("Retry");
      }
      phone.host.runFor(5s);
      EXPECT_EQ(phone.app->heard, row.outcome.empty() ? Heard{} : Heard{row.outcome});
      EXPECT_EQ(phone.screen(), row.screen);
      EXPECT_EQ(phone.wallet.asked("/lookup/"), 0U);
    }
  }
}

TEST(Facade, EachWayInWhichASessionStartsLeadsSomewhere) {
  struct Case {
    std::string name, session, alert, screen;
  };
  for (const Case& row : std::vector<Case>{{"refused", kRefused, "Error: Too old", ""},
                                           {"with a notice", kNotice, "", "Product"},
                                           {"not activated", kNotActivated, "", "Activation"},
                                           {"no JSON", "oops", kConnectionProblem, ""}}) {
    SCOPED_TRACE(row.name);
    Phone phone;
    phone.addPlainScreens({"Activation"});
    phone.wallet.session = row.session;
    phone.checkout();
    phone.host.runFor(5s);
    EXPECT_EQ(phone.alert(), row.alert);
    EXPECT_EQ(phone.screen(), row.screen);
    EXPECT_TRUE(phone.app->heard.empty());
  }
}

TEST(Facade, AFailedStartIsRetriedOrCancelsTheFlow) {
  for (const bool retry : {true, false}) {
    Phone phone;
    phone.wallet.nextFails("/session/new/");
    phone.checkout();
    phone.host.runUntilAlert("Connection problem");
    phone.host.pressAlert(retry ? "Retry" : "Cancel");
    phone.host.runFor(5s);
    EXPECT_EQ(phone.screen(), retry ? "Product" : "");
    EXPECT_EQ(phone.app->heard, retry ? Heard{} : Heard{"cancelled"});
  }
}

TEST(Facade, OneThatHasShownTheWaitingScreenShowsItOnlyOnce) {
  Phone phone;
  phone.addPlainScreens({"Activation"});
  phone.showPaymentScreen();
  phone.host.tap("cancelAction");
  phone.host.runUntilIdle();
  phone.wallet.always("/session/new/",
                      ServerReply().after(std::chrono::seconds(9)).status(200).body(kNotActivated));
  phone.checkout();
  phone.host.runFor(1s);
  EXPECT_EQ(phone.screen(), "");
  // The waiting screen is kept, but stands nowhere: nothing is to be dismissed first.
  phone.host.runUntilScreen("Activation");
  // On that path it is let go, so that the next call shows one again.
  phone.checkout();
  phone.host.runUntilScreen("Waiting");
  EXPECT_EQ(phone.app->heard, Heard{"cancelled"});
}

TEST(Facade, ADeviceThatIsNotActivatedIsNoBusinessOfAFacadeWithoutAWaitingScreen) {
  Phone phone;
  phone.facade->velloNotActivated();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.screen(), "");
}

TEST(Facade, ASecondEntryCallTakesThePlaceOfTheFlowOnScreen) {
  // What the first flow is at when the second call comes.
  for (const std::string stage : {"waiting", "choosing", "paying", "polling", "alert", "leaving"}) {
    for (const bool sameFacade : {true, false}) {
      SCOPED_TRACE(stage + (sameFacade ? ", same facade" : ", new facade"));
      Phone phone;
      const ServerReply late =
          ServerReply().after(3s).status(200).body(R"({"status":"ERROR","transactionId":1})");
      if (stage == "paying") {
        phone.wallet.next("/purchase/", late);
      } else if (stage == "polling") {
        phone.wallet.next("/receipt/poll/", late);
      } else if (stage == "alert") {
        phone.wallet.nextFails("/purchase/");
      }
      phone.checkout();
      if (stage != "waiting") {
        phone.host.runUntilScreen("Product");
      }
      if (stage == "leaving") {
        phone.host.tap("cancelAction");
      } else if (stage != "waiting" && stage != "choosing") {
        phone.pay();
        phone.host.runFor(1s);
      }

      const auto first = phone.app;
      phone.app = std::make_shared<HostApp>();
      if (!sameFacade) {
        phone.facade = OXOrlix::make();
      }
      phone.checkout();
      EXPECT_FALSE(phone.busy());
      phone.host.runUntilScreen("Product");
      phone.host.runFor(120s);
      EXPECT_EQ(phone.alert(), "");
      EXPECT_EQ(first->heard, stage == "leaving" ? Heard{"cancelled"} : Heard{});
      EXPECT_TRUE(phone.app->heard.empty());
      phone.pay();
      phone.host.runUntil([&] { return !phone.app->heard.empty(); });
      EXPECT_EQ(phone.app->heard, Heard{"succeeded 9007199254740993"});
    }
  }
}

TEST(Facade, ASecondEntryCallOnAnotherControllerLeavesNoDeadScreenBehind) {
  Phone phone;
  phone.showPaymentScreen();
  const auto otherRoot = std::make_shared<ViewController>();
  phone.facade->checkout(
      {.code = "C-1", .apiKey = "key", .controller = otherRoot, .delegate = phone.app});
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.host.root()->presentedViewController(), nullptr);
  EXPECT_EQ(otherRoot->presentedViewController()->identifier(), "Product");
}

TEST(Facade, AHostMayBeginTheNextFlowInItsCallback) {
  Phone phone;
  phone.showPaymentScreen();
  phone.app->onOutcome = [&] {
    phone.app->onOutcome = {};
    phone.facade = OXOrlix::make();
    phone.checkout();
  };
  phone.pay();
  phone.host.runUntil([&] { return !phone.app->heard.empty(); });
  phone.host.runUntilScreen("Product");
  EXPECT_EQ(phone.app->heard.size(), 1U);
}

TEST(Facade, AChangedCustomerWipesTheWalletBeforeTheStart) {
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
}

TEST(Facade, ACustomerWhoseFormerWalletCannotBeWipedDoesNotGetIt) {
  Phone phone;
  phone.facade->saveCustomerId("anna");
  phone.showPaymentScreen();
  const auto session = OXSession::currentSession();
  phone.host.userDefaults()->setFailing(true);
  EXPECT_THROW(phone.facade->checkoutWithCode("C-1", 0, "key", kTestSystem, phone.host.root(),
                                              phone.app, CustomerId{"bert"}),
               NetworkException);
  EXPECT_EQ(OXSession::currentSession(), session);
  EXPECT_EQ(phone.host.userDefaults()->stringForKey("customerId"), "anna");
  EXPECT_THROW(phone.facade->reset(), NetworkException);
  EXPECT_EQ(phone.alert(), "");
}

TEST(Facade, ResetDeregistersAndSaysSo) {
  Phone phone;
  phone.showPaymentScreen();
  phone.facade->reset();
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.alert(), "Deregister: Succesfully deregistered.");
  EXPECT_TRUE(phone.host.userDefaults()->dataForKey("test.data").has_value());
}

TEST(Facade, EveryFormOfAnEntryCallCarriesItsArguments) {
  struct Case {
    std::string name;
    std::function<void(OXOrlix&, Phone&)> call;
    bool preRegister, wallet, hasNumber, hasCustomer;
  };
  const PreMSISDN number{"082 123 4567"};
  const CustomerId customer{"anna"};
  const auto code = [](auto... more) {
    return [=](OXOrlix& facade, Phone& phone) {
      facade.checkoutWithCode("C-9", 12.5, "key", 1, phone.host.root(), phone.app, more...);
    };
  };
  const auto registration = [](auto... more) {
    return [=](OXOrlix& facade, Phone& phone) {
      facade.preRegister("key", 1, phone.host.root(), phone.app, more...);
    };
  };
  const auto wallet = [](auto... more) {
    return [=](OXOrlix& facade, Phone& phone) {
      facade.WalletManagement("key", 1, phone.host.root(), phone.app, more...);
    };
  };
  const std::optional<CustomerId> c = customer;
  const std::optional<PreMSISDN> n = number;
  const std::vector<Case> cases{
      {"code", code(), false, false, false, false},
      {"code, customer", code(c), false, false, false, true},
      {"code, number", code(n), false, false, true, false},
      {"code, both", code(n, c), false, false, true, true},
      {"registration", registration(), true, false, false, false},
      {"registration, customer", registration(c), true, false, false, true},
      {"registration, number", registration(n), true, false, true, false},
      {"registration, both", registration(n, c), true, false, true, true},
      {"wallet", wallet(), false, true, false, false},
      {"wallet, customer", wallet(c), false, true, false, true},
      {"wallet, number", wallet(n), false, true, true, false},
      {"wallet, both", wallet(n, c), false, true, true, true},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Phone phone;
    row.call(*phone.facade, phone);
    const auto session = OXSession::currentSession();
    const bool isCheckout = !row.preRegister && !row.wallet;
    EXPECT_EQ(session->code, isCheckout ? std::optional<std::string>("C-9") : std::nullopt);
    EXPECT_EQ(session->inAmount, isCheckout ? std::optional<std::string>("12.5") : std::nullopt);
    EXPECT_EQ(session->preRegister, row.preRegister);
    EXPECT_EQ(session->walletManagement, row.wallet);
    EXPECT_EQ(session->system, 1);
    EXPECT_EQ(session->delegate, phone.app);
    EXPECT_EQ(session->preMSISDN,
              row.hasNumber ? std::optional<std::string>("+27821234567") : std::nullopt);
    EXPECT_EQ(phone.host.userDefaults()->stringForKey("customerId").has_value(), row.hasCustomer);
    EXPECT_EQ(phone.screen(), "Waiting");
  }
}

TEST(Facade, TheHostsAmountBecomesItsShortestDecimalText) {
  const double infinity = std::numeric_limits<double>::infinity();
  struct Case {
    double amount;
    std::optional<std::string> text;
  };
  const std::vector<Case> cases{{12.5, "12.5"},
                                {100.0, "100"},
                                {0.1, "0.1"},
                                {0.1 + 0.2, "0.30000000000000004"},
                                {1e21, "1000000000000000000000"},
                                {1e-7, "0.0000001"},
                                {0.0, {}},
                                {-0.0, {}},
                                {-5.0, {}},
                                {infinity, {}},
                                {std::nan(""), {}}};
  for (const Case& row : cases) {
    Phone phone;
    phone.checkout(row.amount);
    EXPECT_EQ(OXSession::currentSession()->inAmount, row.text) << row.amount;
  }
}

TEST(Facade, ASuggestedNumberIsBroughtIntoInternationalForm) {
  struct Case {
    std::string number, expected;
  };
  const std::vector<Case> cases{
      {"", ""},
      {"abc", "+"},
      {"082 123 4567", "+27821234567"},
      {"0027821234567", "+27821234567"},
      {"270821234567", "+27821234567"},
      {"+27 82 123 4567", "+27821234567"},
      {"+44 20 7946 0000", "+442079460000"},
      {"0", "+27"},
      {"0000", "+"},
      {"00270821234567", "+270821234567"},
      {"0270821234567", "+2727821234567"},
      {"270", "+27"},
      {"2700", "+270"},
      {"(082) CALL-ME 7", "+27827"},
      {"\xEF\xBC\x90\xEF\xBC\x98", "+278"},
      {std::string(40, '9'), "+" + std::string(40, '9')},
  };
  for (const Case& row : cases) {
    EXPECT_EQ(OXOrlix::getSuggestedMSISDN(row.number), row.expected) << row.number;
  }
}

TEST(Facade, TheVersionIsTheProtocols) {
  EXPECT_EQ(OXOrlix::getLibVelloApiVersion(), KCVelloConnection::getApiVersion());
}

TEST(Facade, TheLoadingDialogIsHiddenByItsPresenter) {
  Phone phone;
  phone.facade->showLoadingDialogFromController(phone.host.root());
  phone.host.runUntilScreen("Waiting");
  OXOrlix::hideLoadingDialog(nullptr);
  OXOrlix::hideLoadingDialog(phone.host.root());
  EXPECT_EQ(phone.screen(), "Waiting");
  OXOrlix::hideLoadingDialog(phone.host.topController());
  phone.host.runUntilIdle();
  EXPECT_EQ(phone.screen(), "");
}

TEST(Facade, FontsThatCannotBeUsedAreLoggedAndMissingOnesSkipped) {
  Phone phone;
  const auto add = [&](const std::string& name, const std::string& contents) {
    phone.host.bundle().add(name, "otf", toBytes(contents));
    OXOrlix::loadFontWithName(name);
  };
  add("Brand-Bold", "OTTO....");
  add("Brand-Light", std::string("\0\1\0\0", 4));
  add("Brand-Broken", "<html>");
  OXOrlix::loadFontWithName("Brand-Missing");
  phone.host.log().clear();
  OXOrlix::printFonts();
  EXPECT_THAT(phone.host.log().lines(),
              testing::ElementsAre("Brand", "  Brand-Bold", "  Brand-Light"));
}

}  // namespace orlix::test
