// SPDX-License-Identifier: Apache-2.0

// A Qt Quick application that pays with OrlixKit: a window, one call, one outcome.
//
// usage: orlix-qt-host BASE ANCHOR CODE      pays CODE at the test system with this base address

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QStandardPaths>
#include <iostream>
#include <stdexcept>
#include <string>

#include "shell/OrlixShell.h"

namespace {

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
  static void end(const std::string& text) {
    std::cout << text << std::endl;
    QCoreApplication::quit();
  }
  std::shared_ptr<orlix::OXOrlix> facade = orlix::OXOrlix::make();
};

int pay(const std::string& base, const std::string& anchor, const std::string& code) {
  QQmlEngine engine;
  QQuickWindow window;
  window.resize(375, 667);
  window.show();

  orlix::PosixOptions options;
  options.applicationName = "orlix-qt-host";
  options.stateDirectory =
      QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString();
  options.anchorFile = anchor;
  const orlix::shell::OrlixShell shell(engine, window, options, {base, base, ""});

  const auto outcome = std::make_shared<Outcome>();
  outcome->facade->checkout({.code = code,
                             .apiKey = "qt-host-key",
                             .system = orlix::kTestSystem,
                             .controller = shell.hostScreen(),
                             .delegate = outcome});
  return QGuiApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  orlix::shell::OrlixShell::initialize();
  const QGuiApplication application(argc, argv);
  if (argc != 4) {
    std::cerr << "usage: orlix-qt-host BASE ANCHOR CODE\n";
    return 2;
  }
  try {
    return pay(argv[1], argv[2], argv[3]);
  } catch (const std::runtime_error& error) {
    // A store that cannot be used, a file without a certificate: the text says what to do.
    std::cerr << "orlix-qt-host: " << error.what() << '\n';
    return 1;
  }
}
