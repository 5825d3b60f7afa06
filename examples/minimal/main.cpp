// SPDX-License-Identifier: Apache-2.0

// The smallest host application with its own user interface: the terminal.
//
// usage: orlix-minimal BASE ANCHOR CODE      pays CODE with the wallet's first card, asks for the
// PIN

#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/posix/PosixPorts.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/TextField.h"

namespace {

/// What the host wants to know in the end.
struct Outcome : orlix::OXOrlixDelegate {
  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    end("Paid. Reference " + reference);
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    endUnpaid("Not paid. Reference " + reference);
  }
  void orlixError(int code) override { endUnpaid("Not paid: error " + std::to_string(code)); }
  void orlixUserDidCancel() override { endUnpaid("Cancelled"); }
  void orlixUserRegistered() override { end("Registered"); }
  void orlixUserCompletedWallet() override { end("Wallet closed"); }
  void orlixInvalidCode() override { end("Invalid code"); }

  /// After Cancel, an error or a failed payment, money may still have been taken.
  void endUnpaid(const std::string& text) {
    const orlix::PurchaseStatus purchase = facade->purchaseStatus();
    const bool unknown = purchase.state == orlix::PurchaseState::unknown;
    end(!unknown ? text
                 : "It is not known yet whether this was paid. Ask about " +
                       purchase.reference.value_or("the code"));
  }
  void end(const std::string& text) {
    std::cout << text << '\n';
    over = true;
  }
  std::shared_ptr<orlix::OXOrlix> facade = orlix::OXOrlix::make();
  bool over = false;
};

/// How the host shows a screen: here the payment screen as a question, an alert as its text.
struct Terminal : orlix::UiObserver {
  void didPresent(const std::shared_ptr<orlix::ViewController>& screen) override {
    if (const auto alert = std::dynamic_pointer_cast<orlix::AlertController>(screen)) {
      std::cout << alert->title() << ": " << alert->message() << '\n';
      alert->press(0);
    } else if (screen->identifier() == "Product") {
      std::cout << screen->outletNamed("merchantView")->shownText() << ", "
                << screen->outletNamed("amountView")->shownText() << ". PIN (empty to cancel): ";
      std::string pin;
      std::getline(std::cin, pin);
      std::dynamic_pointer_cast<orlix::TextField>(screen->outletNamed("pinField"))->setText(pin);
      orlix::wipe(pin.data(), pin.size());
      // Later, as any touch: the screen has only just appeared.
      orlix::Host::current().ports().mainQueue->async([screen, cancel = pin.empty()] {
        screen->performAction(cancel ? "cancelAction" : "proceedAction");
      });
    }
  }
};

void pay(const std::string& base, const std::string& anchor, const std::string& code) {
  orlix::PosixOptions options;
  options.applicationName = "orlix-minimal";
  options.stateDirectory = std::filesystem::temp_directory_path() / "orlix-minimal";
  options.anchorFile = anchor;
  orlix::installOrlixKit(std::make_shared<orlix::Host>(orlix::makePosixPorts(options),
                                                       orlix::Deployment{base, base, ""}));

  const auto window = std::make_shared<orlix::ViewController>();
  Terminal terminal;
  orlix::Host::current().application().showMainWindow(window);
  orlix::Host::current().application().setObserver(&terminal);

  const auto outcome = std::make_shared<Outcome>();
  outcome->facade->checkout({.code = code,
                             .apiKey = "minimal-key",
                             .system = orlix::kTestSystem,
                             .controller = window,
                             .delegate = outcome});
  orlix::Host::current().ports().mainQueue->runUntil([&] { return outcome->over; });
  orlix::Host::uninstall();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: orlix-minimal BASE ANCHOR CODE\n";
    return 2;
  }
  try {
    pay(argv[1], argv[2], argv[3]);
  } catch (const std::runtime_error& error) {
    // A store that cannot be used, a file without a certificate: the text says what to do.
    std::cerr << "orlix-minimal: " << error.what() << '\n';
    return 1;
  }
}
