// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include <fmt/format.h>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/TableView.h"
#include "tests/phone/Walk.h"
#include "tests/phone/WalkOffers.h"

// What the user and the issuer's page do in a walk.

namespace orlix::test {

using namespace std::chrono_literals;

void Walk::offerTouches() {
  for (const Controller& root : roots()) {
    const Controller shown = top(root);
    const bool isAnimated = !shown->hasAppeared() || shown->presentedViewController();
    if (isAnimated) {
      continue;  // touches are held back
    }
    if (const auto alert = std::dynamic_pointer_cast<AlertController>(shown)) {
      for (const AlertAction& action : alert->actions()) {
        offer(action.title == "Cancel" ? kNow : kUsual / 2, "alert: " + action.title,
              [this, alert, title = action.title] { press(alert, title); });
      }
    } else if (!shown->identifier().empty()) {
      offerTouchesOf(shown, kNow);
    }
  }
  for (const auto& [name, weak] : lastScreens_) {
    const Controller stray = weak.lock();
    if (stray && !isShown(stray.get())) {
      for (const std::string& action : stray->actionNames()) {
        offer(kRare / 5, "stray " + name + "." + action,
              [this, stray, action] { touch(stray, action, true); });
      }
    }
  }
}

void Walk::offerTouchesOf(const Controller& screen, double weight) {
  for (const std::string& action : screen->actionNames()) {
    if (indicator().blocksInput() && !screen->isReachableUnderMask(action)) {
      continue;
    }
    const bool leaves = has(action, "cancel") || has(action, "decline");
    const bool proceeds = has(action, "proceed");
    offer(weight * (proceeds ? kUsual
                    : leaves ? 0.3
                             : 0.5),
          screen->identifier() + "." + action,
          [this, screen, action] { touch(screen, action, false); });
  }
  const auto table = std::dynamic_pointer_cast<TableView>(screen->outletNamed("tableView"));
  for (std::size_t row = 0; table && !indicator().blocksInput() && row < table->rowCount(); ++row) {
    offer(weight, fmt::format("{}.row {}", screen->identifier(), row),
          [table, row] { table->select(row); });
    if (const auto button = table->cell(row).button) {
      offer(weight / 2, fmt::format("{}.delete {}", screen->identifier(), row),
            button->onTouchUpInside);
    }
  }
}

void Walk::fill(ViewController& screen) const {
  const std::map<std::string, std::string> texts{{"pinField", "1234"},
                                                 {"cvvField", "123"},
                                                 {"msisdnField", hasFlow() ? current().msisdn : ""},
                                                 {"codeField", "1234"},
                                                 {"cardNumberField", "4000123412341234"},
                                                 {"cardHolderField", "A N Other"},
                                                 {"expiryDateField", "12/40"},
                                                 {"dateOfBirthField", "01/02/1980"},
                                                 {"cardAccountField", "Savings"}};
  for (const std::string& name : screen.outletNames()) {
    const auto field = std::dynamic_pointer_cast<TextField>(screen.outletNamed(name));
    const auto text = texts.find(name);
    if (field && text != texts.end() && field->text().empty()) {
      field->setText(text->second);
    } else if (field && name == "inputAmountField" && field->text() == "0.00") {
      field->setText("12,50");
    }
  }
}

void Walk::touch(const Controller& screen, const std::string& action, bool stray) {
  fill(*screen);
  const std::string before = describe();
  const std::size_t sentBefore = server_->sent();
  const bool wasLive = live();
  if (screen->identifier() == "Product" && action == "proceedAction") {
    notePay(*screen, stray);
  }
  const bool leaves = has(action, "cancel") || has(action, "decline") || has(action, "back");
  if (leaves && !stray && wasLive && animations_.empty()) {
    afterwards([=, this] {
      if (live() && describe() == before && server_->sent() == sentBefore) {
        breakRule("(d) " + screen->identifier() + "." + action + " does nothing");
      }
    });
  }
  mainMayWait_ = screen->identifier() == "TermsAndConditionChange" && action == "proceedAction";
  runLogged([&] { screen->performAction(action); });
  mainMayWait_ = false;
}

/// The user presses PAY, or UNLOCK.
void Walk::notePay(ViewController& screen, bool stray) {
  if (!live() || !isShown(&screen) || isPaying() || indicator().status() == "Making Payment...") {
    return;
  }
  Flow& flow = current();
  const bool isFixed = !screen.outletNamed("amountView")->hidden();
  flow.wanted = true;
  flow.accepted = flow.polling = false;
  flow.shownCard = screen.outletNamed("cardHintView")->shownText();
  flow.shownAmount = screen.outletNamed(isFixed ? "amountView" : "inputAmountField")->shownText();
  if (isFixed && flow.shownAmount.size() > 2) {
    flow.shownAmount.erase(0, 2);  // the currency
  }
  std::replace(flow.shownAmount.begin(), flow.shownAmount.end(), ',', '.');
  flow.same.reset();
  if (!stray && flow.shownCard != "Add Card" && queues_->failures == 0) {
    afterwards([this, before = describe(), sentBefore = server_->sent()] {
      if (live() && animations_.empty() && describe() == before && server_->sent() == sentBefore) {
        breakRule("(d) PAY does nothing");
      }
    });
  }
}

void Walk::press(const std::shared_ptr<AlertController>& alert, const std::string& title) {
  const std::string cause = causes_.emplace(alert, cause_).first->second;
  const bool retries = title == "Retry";
  if (live() && alert->title() == "Connection problem") {
    Flow& flow = current();
    const bool isPurchase = cause == "purchase" || cause == "authenticate";
    flow.wanted = retries && (isPurchase || flow.wanted);
    flow.resent = flow.polling = false;  // no alert is shown while a round of polling goes on
    if (retries && isPurchase && !flow.lastPurchase.empty()) {
      flow.same = flow.lastPurchase;
    }
    flow.startsAllowed += retries ? 1 : 0;
    flow.pollsSince = host_->clock().steadyNow();
    flow.accepted = flow.accepted && retries;
    flow.lookupRetried = flow.lookupRetried || (retries && cause == "lookup");
    flow.silent = flow.silent || (!retries && (cause == "lookup" || cause == "list"));
    if (retries && queues_->failures == 0 && armed_.empty()) {
      afterwards([this, sentBefore = server_->sent()] {
        if (live() && server_->sent() == sentBefore && !goesOn() && alerts().empty()) {
          breakRule("(d) Retry does nothing");
        }
      });
    }
  }
  afterwards([this, alert] {
    if (animations_.empty() && isShown(alert.get())) {
      breakRule("(d) an alert stays after its button was pressed: " + alert->title());
    }
  });
  const auto& actions = alert->actions();
  for (std::size_t i = 0; i < actions.size(); ++i) {
    if (actions[i].title == title) {
      runLogged([&] { alert->press(i); });
      return;
    }
  }
}

void Walk::offerPage() {
  const std::shared_ptr<FakeWebView> view = page();
  if (!view || view->loads() == 0 || !view->hasDelegate()) {
    return;
  }
  const bool isIssuers = has(view->html(), "PAGE-");
  offer(isIssuers ? kNow : kUsual, "page: loads",
        [view] { view->finishNavigation("<p>A page</p>"); });
  if (isIssuers) {
    offer(kUsual, "page: returns", [this] { returnPage(); });
  }
  const auto fails = [this, view](const Task& failure) {
    return [this, view, failure] {
      cause_ = "page";
      failure();
    };
  };
  offer(kRare, "page: fails", fails([view] { view->failNavigation("no route"); }));
  offer(kRare, "page: dies", fails([view] { view->killProcess(); }));
  offer(kRare, "page: becomes slow", [this, view] {
    view->holdScripts();
    host_->later(3s, [view] { view->releaseScripts(); });
  });
}

/// The issuer's page comes to the termination page.
void Walk::returnPage() {
  const std::string html = page()->html();
  const std::size_t start = html.find("PAGE-") + 5;
  const std::string number = html.substr(start, html.find('-', start) - start);
  if (live() && current().returnedPages.insert(number).second) {
    current().wanted = true;
    current().same.reset();
  }
  page()->finishNavigation(fmt::format(R"(<script>Vello.handle("PARES-{}")</script>)", number));
}

}  // namespace orlix::test
