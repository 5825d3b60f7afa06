// A Qt Quick application that pays with OrlixKit: a window, one call, one outcome.
//
// usage: orlix-qt-host BASE ANCHOR CODE      pays CODE at the test system with this base address

#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QStandardPaths>
#include <iostream>

#include "shell/OrlixShell.h"

namespace {

struct Outcome : orlix::OXOrlixDelegate {
  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    end("Paid. Reference " + reference);
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    end("Not paid. Reference " + reference);
  }
  void orlixError(int code) override { end("Not paid: error " + std::to_string(code)); }
  void orlixUserDidCancel() override { end("Cancelled"); }
  void orlixUserRegistered() override { end("Registered"); }
  void orlixUserCompletedWallet() override { end("Wallet closed"); }
  void orlixInvalidCode() override { end("Invalid code"); }

  static void end(const std::string& text) {
    std::cout << text << std::endl;
    QCoreApplication::quit();
  }
};

}  // namespace

int main(int argc, char** argv) {
  orlix::shell::OrlixShell::initialize();
  QGuiApplication application(argc, argv);
  if (argc != 4) {
    std::cerr << "usage: orlix-qt-host BASE ANCHOR CODE\n";
    return 2;
  }
  QQmlEngine engine;
  QQuickWindow window;
  window.resize(375, 667);
  window.show();

  orlix::PosixOptions options;
  options.applicationName = "orlix-qt-host";
  options.stateDirectory =
      QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString();
  options.anchorFile = argv[2];
  const orlix::shell::OrlixShell shell(engine, window, options, {argv[1], argv[1], ""});

  const auto outcome = std::make_shared<Outcome>();
  const auto facade = orlix::OXOrlix::make();
  facade->checkout({.code = argv[3],
                    .apiKey = "qt-host-key",
                    .system = orlix::kTestSystem,
                    .controller = shell.hostScreen(),
                    .delegate = outcome});
  return QGuiApplication::exec();
}
