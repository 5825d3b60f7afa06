// SPDX-License-Identifier: Apache-2.0

#include "bench/CheckoutRun.h"

#include <stdexcept>

#include "orlixkit/posix/PosixPorts.h"
#include "orlixkit/ui/TextField.h"

namespace orlix::bench {

namespace {

/// A benchmark has no use for the log, and its cost is the terminal's.
class NoLog : public SystemLog {
 public:
  void write(std::string_view) override {}
};

}  // namespace

class CheckoutRun::Outcome : public OXOrlixDelegate {
 public:
  void orlixPaymentSucceededWithTransactionReference(const std::string&) override { end("paid"); }
  void orlixPaymentFailedWithTransactionReference(const std::string&) override { end("failed"); }
  void orlixError(int code) override { end("error " + std::to_string(code)); }
  void orlixUserDidCancel() override { end("cancelled"); }
  void orlixUserRegistered() override { end("registered"); }
  void orlixUserCompletedWallet() override { end("wallet closed"); }
  void orlixInvalidCode() override { end("invalid code"); }

  std::string what;

 private:
  void end(const std::string& outcome) { what = outcome; }
};

CheckoutRun::CheckoutRun(const std::string& base, const std::string& anchor,
                         const std::string& state) {
  PosixOptions options;
  options.applicationName = "orlix-bench";
  options.stateDirectory = state;
  options.anchorFile = anchor;
  Ports ports = makePosixPorts(options);
  ports.log = std::make_shared<NoLog>();
  installOrlixKit(std::make_shared<Host>(std::move(ports), Deployment{base, base, ""}));
  Host::current().application().showMainWindow(window_);
  Host::current().application().setObserver(this);
}

CheckoutRun::~CheckoutRun() { Host::uninstall(); }

void CheckoutRun::didPresent(const std::shared_ptr<ViewController>& screen) {
  if (screen->identifier() != "Product") {
    return;
  }
  std::dynamic_pointer_cast<TextField>(screen->outletNamed("pinField"))->setText("1234");
  Host::current().ports().mainQueue->async([screen] { screen->performAction("proceedAction"); });
}

void CheckoutRun::pay() {
  const auto outcome = std::make_shared<Outcome>();
  const auto facade = OXOrlix::make();
  facade->checkout({.code = "FIXED-25",
                    .apiKey = "bench-key",
                    .system = kTestSystem,
                    .controller = window_,
                    .delegate = outcome});
  Host::current().ports().mainQueue->runUntil([&] { return !outcome->what.empty(); });
  if (outcome->what != "paid") {
    throw std::runtime_error("the checkout ended as: " + outcome->what);
  }
}

}  // namespace orlix::bench
