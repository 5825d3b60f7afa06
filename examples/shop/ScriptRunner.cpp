// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/ScriptRunner.h"

#include <utility>

#include <fmt/format.h>

#include "examples/shop/ShownScreen.h"

namespace orlix::shop {

namespace {

constexpr std::chrono::seconds kBetweenNotes{5};

/// The visible screen or alert, for the message of a failed wait.
std::string shownNow() {
  if (const auto alert = ShownScreen::alert()) {
    return fmt::format("the alert \"{}\" is shown: {}", alert->title(), alert->message());
  }
  const std::string identifier = ShownScreen::identifier();
  std::string shown =
      identifier.empty() ? "no screen is shown" : fmt::format("the screen {} is shown", identifier);
  const ProgressIndicator& indicator = Host::current().application().progressIndicator();
  return indicator.visible() ? fmt::format("{}, with \"{}\"", shown, indicator.status()) : shown;
}

}  // namespace

void ScriptRunner::run(ScriptSource& source) {
  while (const std::optional<ScriptLine> line = next(source)) {
    stage_.progress << fmt::format("shop: line {}: {}\n", line->number, line->words) << std::flush;
    try {
      std::visit([this](const auto& command) { run(command); }, line->action);
      stage_.declarations.require();
    } catch (const std::exception& error) {
      throw LineError(line->number, error.what());
    }
  }
}

std::optional<ScriptLine> ScriptRunner::next(ScriptSource& source) {
  if (!source.mayBlock()) {
    return source.next();
  }
  std::optional<ScriptLine> line;
  stage_.waiter.runBlocking([&] { line = source.next(); });
  return line;
}

void ScriptRunner::run(const HostCall& call) {
  const std::shared_ptr<OXOrlix> facade = stage_.visit.begin(call.code);
  const auto customer = call.customer ? std::optional(CustomerId{*call.customer}) : std::nullopt;
  const auto msisdn = call.msisdn ? std::optional(PreMSISDN{*call.msisdn}) : std::nullopt;
  if (call.entry == HostEntry::checkout) {
    facade->checkout({.code = call.code,
                      .amount = call.amount,
                      .apiKey = "shop-key",
                      .system = stage_.system,
                      .controller = stage_.hostScreen,
                      .delegate = stage_.outcomes,
                      .preMSISDN = msisdn,
                      .customerId = customer});
    return;
  }
  const EntryRequest request{.apiKey = "shop-key",
                             .system = stage_.system,
                             .controller = stage_.hostScreen,
                             .delegate = stage_.outcomes,
                             .preMSISDN = msisdn,
                             .customerId = customer};
  if (call.entry == HostEntry::preregister) {
    facade->preRegister(request);
  } else {
    facade->walletManagement(request);
  }
}

void ScriptRunner::run(const TypeText& command) {
  settle();
  stage_.driver.type(command.outlet, command.text);
}

void ScriptRunner::run(const EraseText& command) {
  settle();
  stage_.driver.erase(command.outlet, command.count);
}

void ScriptRunner::run(const SetText& command) {
  settle();
  stage_.driver.set(command.outlet, command.text);
}

void ScriptRunner::run(const Tap& command) {
  settle();
  stage_.driver.tap(command.name);
}

void ScriptRunner::run(const SelectRow& command) {
  settle();
  stage_.driver.selectRow(command.table, command.row);
}

void ScriptRunner::run(const PressRowButton& command) {
  settle();
  stage_.driver.pressRowButton(command.table, command.row);
}

void ScriptRunner::run(const PressAlertButton& command) {
  settle();
  stage_.driver.pressAlertButton(command.title);
}

void ScriptRunner::run(const PickEntry& command) {
  settle();
  stage_.driver.pick(command.outlet, command.text);
}

void ScriptRunner::run(const PageType& command) {
  settle();
  stage_.driver.pageType(command.selector, command.text);
}

void ScriptRunner::run(const PageClick& command) {
  settle();
  stage_.driver.pageClick(command.selector);
}

void ScriptRunner::run(const PageWait& command) {
  settle();
  stage_.driver.pageWait(command.selector);
}

void ScriptRunner::run(const WaitScreen& command) {
  waitUntil(fmt::format("the screen {}", command.identifier), [&] {
    const std::shared_ptr<ViewController> top = ShownScreen::screen();
    return top && top->identifier() == command.identifier && top->hasAppeared();
  });
}

void ScriptRunner::run(const WaitAlert& command) {
  waitUntil(fmt::format("the alert \"{}\"", command.title), [&] {
    const std::shared_ptr<AlertController> top = ShownScreen::alert();
    return top && top->hasAppeared() && top->title() == command.title &&
           (!command.message || top->message() == *command.message);
  });
}

void ScriptRunner::run(const WaitOutcome& command) {
  waitUntil("an outcome", [&] { return !stage_.outcomes->notTaken().empty(); });
  const std::optional<Outcome> came = stage_.outcomes->take();
  const bool asNamed = (!command.callback || came->callback == *command.callback) &&
                       (!command.argument || came->argumentText() == command.argument);
  if (!asNamed) {
    throw ScriptError(fmt::format("the outcome is {}, not {}{}", came->shown(), *command.callback,
                                  command.argument ? " " + *command.argument : ""));
  }
}

void ScriptRunner::run(const WaitIdle&) {
  waitUntil("all work to end", [&] {
    return stage_.work.isIdle() && !stage_.driver.isBusy() && !ShownScreen::isMoving();
  });
}

void ScriptRunner::run(const ExpectText& command) {
  settle();
  const std::shared_ptr<View> view = ShownScreen::outlet(command.outlet);
  const auto field = std::dynamic_pointer_cast<TextField>(view);
  if (field && field->secure()) {
    if (field->secretText().text() != command.text) {
      throw ScriptError(command.outlet + " does not hold the expected text");
    }
  } else if (view->shownText() != command.text) {
    throw ScriptError(fmt::format("{} shows \"{}\", not \"{}\"", command.outlet, view->shownText(),
                                  command.text));
  }
}

void ScriptRunner::run(const ExpectVisible& command) {
  settle();
  if (ShownScreen::outlet(command.outlet)->isOutOfSight() == command.visible) {
    throw ScriptError(command.outlet + (command.visible ? " is hidden" : " is shown"));
  }
}

void ScriptRunner::run(const ExpectNoOutcome& command) {
  const auto silence =
      std::chrono::duration_cast<Duration>(std::chrono::duration<double>(command.seconds));
  if (stage_.waiter.waitFor(silence, [&] { return !stage_.outcomes->notTaken().empty(); })) {
    throw ScriptError("an outcome came: " + stage_.outcomes->notTaken().front().shown());
  }
}

void ScriptRunner::run(const Dump&) {
  settle();
  stage_.events.state(ShownScreen::content().get(), ShownScreen::identifier());
}

void ScriptRunner::run(const Snapshot& command) {
  settle();
  stage_.driver.snapshot(command.name);
}

void ScriptRunner::settle() {
  stage_.waiter.drain();
  waitUntil("the screen to come to rest", [&] {
    return stage_.work.isMainQueueIdle() && !ShownScreen::isMoving() && !stage_.driver.isBusy();
  });
}

void ScriptRunner::waitUntil(const std::string& what, const std::function<bool()>& holds) {
  const auto note = [&](std::chrono::seconds elapsed) {
    if (elapsed.count() == 1 || elapsed % kBetweenNotes == std::chrono::seconds(0)) {
      stage_.progress << fmt::format("shop: waiting for {}, {} s of {} s\n", what, elapsed.count(),
                                     kPatience.count())
                      << std::flush;
    }
  };
  if (!stage_.waiter.waitFor(kPatience, holds, note)) {
    throw ScriptError(
        fmt::format("waited {} s for {} in vain; {}", kPatience.count(), what, shownNow()));
  }
}

}  // namespace orlix::shop
