// SPDX-License-Identifier: Apache-2.0

// The whole wallet in a terminal: enrolment, cards and payments, over the installed package alone.

#include <cstdlib>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ScreenMenu.h"
#include "orlixkit/OrlixKit.h"
#include "orlixkit/posix/PosixPorts.h"

namespace {

constexpr const char* kUsage = R"(usage: orlix-terminal BASE ANCHOR STATE pay CODE [AMOUNT]
       orlix-terminal BASE ANCHOR STATE register [NUMBER]
       orlix-terminal BASE ANCHOR STATE wallet

  BASE     address of the wallet server, https://…/vello
  ANCHOR   its root certificate
  STATE    folder that keeps the device's enrolment
  AMOUNT   for a code without an amount of its own
  NUMBER   mobile number to enrol
)";

struct Outcome : orlix::OXOrlixDelegate {
  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    end("Paid. Reference " + reference, true);
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    end("Not paid. Reference " + reference);
  }
  void orlixError(int code) override { end("Not paid: error " + std::to_string(code)); }
  void orlixUserDidCancel() override { end("Cancelled."); }
  void orlixUserRegistered() override { end("Registered.", true); }
  void orlixUserCompletedWallet() override { end("Wallet closed.", true); }
  void orlixInvalidCode() override { end("Invalid code."); }

  void end(const std::string& text, bool well = false) {
    std::cout << '\n' << text << std::endl;
    over = true;
    good = well;
  }
  bool over = false;
  bool good = false;
};

struct Wish {
  std::string what{};
  std::string code{};
  double amount = 0;
  std::optional<orlix::PreMSISDN> number{};
};

std::optional<Wish> wishOf(const std::vector<std::string>& words) {
  Wish wish{.what = words.empty() ? "" : words[0]};
  if (wish.what == "pay" && (words.size() == 2 || words.size() == 3)) {
    wish.code = words[1];
    wish.amount = words.size() == 3 ? std::strtod(words[2].c_str(), nullptr) : 0;
    return wish;
  }
  if (wish.what == "register" && words.size() <= 2) {
    if (words.size() == 2) {
      wish.number = orlix::PreMSISDN{words[1]};
    }
    return wish;
  }
  return wish.what == "wallet" && words.size() == 1 ? std::optional(wish) : std::nullopt;
}

void begin(orlix::OXOrlix& facade, const Wish& wish,
           const std::shared_ptr<orlix::ViewController>& window,
           const std::shared_ptr<Outcome>& outcome) {
  if (wish.what == "pay") {
    facade.checkout({.code = wish.code,
                     .amount = wish.amount,
                     .apiKey = "terminal-key",
                     .system = orlix::kTestSystem,
                     .controller = window,
                     .delegate = outcome});
    return;
  }
  const orlix::EntryRequest request{.apiKey = "terminal-key",
                                    .system = orlix::kTestSystem,
                                    .controller = window,
                                    .delegate = outcome,
                                    .preMSISDN = wish.number};
  wish.what == "register" ? facade.preRegister(request) : facade.walletManagement(request);
}

/// Whether the flow ended well.
bool run(const std::string& base, const std::string& anchor, const std::string& state,
         const Wish& wish) {
  orlix::PosixOptions options;
  options.applicationName = "orlix-terminal";
  options.stateDirectory = state;
  options.anchorFile = anchor;
  options.logTarget = orlix::LogTarget::syslogOnly;
  orlix::installOrlixKit(std::make_shared<orlix::Host>(orlix::makePosixPorts(options),
                                                       orlix::Deployment{base, base, ""}));
  orlix::Application& application = orlix::Host::current().application();
  const auto window = std::make_shared<orlix::ViewController>();
  application.showMainWindow(window);

  const std::shared_ptr<orlix::MainQueue> mainQueue = orlix::Host::current().ports().mainQueue;
  LineInput input(*mainQueue);
  ScreenMenu menu(application, input);
  const auto outcome = std::make_shared<Outcome>();
  const auto facade = orlix::OXOrlix::make();
  begin(*facade, wish, window, outcome);
  bool more = true;
  while (more && !outcome->over) {
    mainQueue->runUntil([&] { return outcome->over || menu.isReady(); });
    more = outcome->over || menu.ask();
  }
  orlix::Host::uninstall();
  return outcome->good;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  const auto wish = words.size() > 3 ? wishOf({words.begin() + 3, words.end()}) : std::nullopt;
  if (!wish) {
    std::cerr << kUsage;
    return 2;
  }
  try {
    return run(words[0], words[1], words[2], *wish) ? 0 : 1;
  } catch (const std::runtime_error& error) {
    std::cerr << "orlix-terminal: " << error.what() << '\n';
    return 1;
  }
}
