// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/Shop.h"

#include <fmt/format.h>

#include "examples/shop/HeadlessDriver.h"
#include "examples/shop/ScreenList.h"
#include "examples/shop/ScriptRunner.h"
#include "orlixkit/OrlixKit.h"
#include "orlixkit/posix/PosixPorts.h"

namespace orlix::shop {

namespace {

constexpr int kHeld = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

Ports headlessPorts(const ShopOptions& options) {
  try {
    return makePosixPorts({.applicationName = "orlix-shop",
                           .stateDirectory = options.state,
                           .anchorFile = options.anchor,
                           .resourceDirectories = {},
                           .logTarget = LogTarget::syslogAndStderr,
                           .location = options.location});
  } catch (const std::runtime_error& error) {
    throw UsageError(error.what());
  }
}

void runHeadless(const ShopOptions& options, std::ostream& out, std::ostream& err) {
  const std::unique_ptr<ScriptSource> script = openScript(*options.script);
  Shop shop(options, headlessPorts(options), out, err);
  HeadlessDriver driver;
  shop.run(*script, driver);
}

}  // namespace

Shop::Shop(ShopOptions options, const Ports& ports, std::ostream& out, std::ostream& progress)
    : options_(std::move(options)),
      waiter_(ports),
      events_(out),
      progress_(progress),
      reporter_(events_),
      visit_(events_, hostScreen_),
      observers_({&reporter_, &visit_, &declarations_}),
      outcomes_(std::make_shared<Outcomes>(events_)) {
  outcomes_->onOutcome = [this](const Outcome& outcome) { visit_.ended(outcome); };
  installOrlixKit(std::make_shared<Host>(WorkCount::count(ports, work_),
                                         Deployment{.liveBase = options_.server,
                                                    .testBase = options_.server,
                                                    .termsAddress = options_.terms}));
  Application& application = Host::current().application();
  application.setObserver(&observers_);
  application.showMainWindow(hostScreen_);
}

Shop::~Shop() {
  outcomes_->onOutcome = {};  // it may outlive this shop
  Host::uninstall();
}

void Shop::drawnBy(UiObserver* drawing) {
  // Draw before reporting.
  std::vector<UiObserver*> all{&reporter_, &visit_, &declarations_};
  if (drawing != nullptr) {
    all.insert(all.begin(), drawing);
  }
  observers_.set(std::move(all));
}

void Shop::run(ScriptSource& script, ShopDriver& driver) {
  ScriptRunner({.driver = driver,
                .events = events_,
                .outcomes = outcomes_,
                .visit = visit_,
                .declarations = declarations_,
                .waiter = waiter_,
                .work = *work_,
                .progress = progress_,
                .hostScreen = hostScreen_,
                .system = options_.system})
      .run(script);
}

int runShop(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err,
            const DrawnRun& drawn) {
  try {
    const ShopOptions options = parseOptions(arguments);
    if (options.help) {
      out << usage();
      return kHeld;
    }
    if (options.listScreens) {
      out << screenList() << '\n';
      return kHeld;
    }
    if (options.headless) {
      runHeadless(options, out, err);
    } else if (drawn) {
      drawn(options, out, err);
    } else {
      throw UsageError("this build has no drawn shell; add --headless");
    }
    return kHeld;
  } catch (const UsageError& error) {
    err << fmt::format("orlix-shop: {}\nRun orlix-shop --help for more.\n", error.what());
    return kWrongUsage;
  } catch (const std::exception& error) {
    err << fmt::format("orlix-shop: {}\n", error.what());
    return kFailed;
  }
}

}  // namespace orlix::shop
