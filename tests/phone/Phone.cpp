// SPDX-License-Identifier: Apache-2.0

#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

MemoryHostSettings withLibrary(MemoryHostSettings settings) {
  settings.install = installOrlixKit;
  return settings;
}

}  // namespace

Phone::Phone(MemoryHostSettings settings) : host(withLibrary(std::move(settings))) {
  host.world().setOnMainWait([this](const std::string& what) {
    if (!mainMayWait) {
      ADD_FAILURE() << "the main thread " << what;
    }
  });
}

void Phone::checkout(double amount) {
  facade->checkout({.code = "C-1",
                    .amount = amount,
                    .apiKey = "key",
                    .system = kTestSystem,
                    .controller = host.root(),
                    .delegate = app});
}

void Phone::showPaymentScreen(double amount) {
  checkout(amount);
  host.runUntilScreen("Product");
}

void Phone::pay(const std::string& pin) {
  host.type("pinField", pin);
  host.tap("proceedButton");
}

void Phone::begin(Entry entry, const std::string& screen, const std::string& preMSISDN) {
  facade = OXOrlix::make();
  const PreMSISDN number{preMSISDN};
  if (entry == Entry::checkout) {
    facade->checkoutWithCode("C-1", 0, "key", kTestSystem, host.root(), app, number);
  } else if (entry == Entry::preRegister) {
    facade->preRegister("key", kTestSystem, host.root(), app, number);
  } else {
    facade->WalletManagement("key", kTestSystem, host.root(), app, number);
  }
  if (!screen.empty()) {
    host.runUntilScreen(screen);
  }
}

void Phone::beginAnew(Entry entry) {
  app = std::make_shared<HostApp>();
  begin(entry);
}

void Phone::beginActivation(Entry entry, const std::string& preMSISDN) {
  wallet.session = answers::kNotActivated;
  begin(entry, "Activation", preMSISDN);
}

void Phone::beginEnrolment(Entry entry) {
  beginActivation(entry, "0821234567");
  host.tap("proceedButton");
  host.runUntilScreen("ActivationCode");
}

void Phone::beginAddCard(Entry entry) {
  if (entry == Entry::checkout) {
    begin(entry, "Product");
    OXSession::currentSession()->showAddCardScreen();
    return;
  }
  wallet.cards.clear();
  begin(entry, "AddCard");
}

void Phone::proceedWithCard(const std::string& number) {
  host.user().replaceAll("cardNumberField", number);
  host.user().replaceAll("cardHolderField", "A N Other");
  host.tap("proceedButton");
}

void Phone::addPlainScreens(const std::vector<std::string>& identifiers) {
  for (const std::string& identifier : identifiers) {
    host.application().storyboard().add(identifier,
                                        [] { return std::make_shared<ViewController>(); });
  }
}

void Phone::tap(const std::string& name) {
  host.tap(name);
  host.runUntilIdle();
}

void Phone::press(const std::string& button) {
  host.pressAlert(button);
  host.runUntilIdle();
}

std::string Phone::alert() const {
  const auto alert = std::dynamic_pointer_cast<AlertController>(host.topController());
  return alert ? alert->title() + ": " + alert->message() : "";
}

}  // namespace orlix::test
