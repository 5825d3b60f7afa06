// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/TlsPhone.h"

#include <atomic>
#include <condition_variable>
#include <stdexcept>
#include <thread>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/posix/CurlHttpClient.h"

namespace orlix::test {

TlsPhone::TlsPhone(const ServerAddress& server, const std::filesystem::path& folder) {
  PosixOptions options;
  options.applicationName = "orlix-faults";
  options.stateDirectory = folder.empty() ? state.path() : folder;
  options.anchorFile = server.anchor;
  Ports ports = makePosixPorts(options);
  ports.log = log;
  mainQueue_ = ports.mainQueue;
  activity = std::make_shared<Activity>(mainQueue_);
  ports.clock = clock = std::make_shared<SteppedClock>(ports.clock, activity);
  ports.mainQueue =
      std::make_shared<WrappedMainQueue>(mainQueue_, activity->counting(Activity::mainTask));
  ports.backgroundQueues = std::make_shared<WrappedBackgroundQueues>(
      ports.backgroundQueues, activity->counting(Activity::backgroundTask));
  const auto client = std::make_shared<CurlHttpClient>(clock);
  clock->onStep = [weak = std::weak_ptr(client)] {
    if (const auto stepped = weak.lock()) {
      stepped->wake();
    }
  };
  ports.httpClient = std::make_shared<CountedHttpClient>(client, activity);
  ports.webViews = pages = std::make_shared<FakeWebViews>(ports.mainQueue);
  installOrlixKit(std::make_shared<Host>(ports, Deployment{server.base, server.base, ""}));
  Host::current().application().showMainWindow(root);
  user = std::make_unique<TestUser>(Host::current().application());
}

TlsPhone::~TlsPhone() { Host::uninstall(); }

void TlsPhone::checkout(const std::string& code) {
  facade_ = OXOrlix::make();
  facade_->checkout(
      {.code = code, .apiKey = "key", .system = kTestSystem, .controller = root, .delegate = app});
}

void TlsPhone::wallet() {
  facade_ = OXOrlix::make();
  facade_->WalletManagement("key", kTestSystem, root, app);
}

void TlsPhone::showPayment(const std::string& code, const std::string& cardHint) {
  checkout(code);
  runUntilScreen("Product");
  for (const CardOption& card : OXSession::currentSession()->cards) {
    if (card.cardHint == cardHint) {
      OXUtil::setLastUsedCardId(card.cardId);
    }
  }
  OXSession::currentSession()->showPurchaseScreen();
}

void TlsPhone::runUntil(const std::function<bool()>& done) {
  std::atomic<bool> tooLong = false;
  std::mutex mutex;
  std::condition_variable_any never;
  const std::jthread watch([&](const std::stop_token& stop) {
    std::unique_lock lock(mutex);
    if (!never.wait_for(lock, stop, std::chrono::minutes(2),
                        [&] { return stop.stop_requested(); })) {
      tooLong = true;
      look();
    }
  });
  // The queue asks after each of its tasks; the last one of them is the activity's.
  bool held = false;  // kept, for it may hold for a moment only
  mainQueue_->runUntil([&] {
    held = done();
    return held || tooLong;
  });
  if (!held) {
    throw std::runtime_error("never came: on top is " + screen() + alert() + "\n" + log->text());
  }
}

void TlsPhone::look() {
  mainQueue_->async([] {});
}

void TlsPhone::runUntilScreen(const std::string& identifier) {
  runUntil([&] {
    const std::shared_ptr<ViewController> top = user->topController();
    return top->identifier() == identifier && top->hasAppeared() && !top->presentedViewController();
  });
}

void TlsPhone::runUntilOutcomeOrAlert() {
  runUntil([this] { return !app->heard.empty() || user->topAlert(); });
}

std::string TlsPhone::screen() const { return user->topController()->identifier(); }

std::string TlsPhone::alert() const {
  const auto alert = user->topAlert();
  return alert ? alert->title() : "";
}

}  // namespace orlix::test
