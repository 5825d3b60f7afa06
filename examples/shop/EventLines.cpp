// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/EventLines.h"

#include <boost/json.hpp>

namespace orlix::shop {

namespace json = boost::json;

namespace {

void write(std::ostream& out, const json::object& event) {
  out << json::serialize(event) << std::endl;
}

const char* nameOf(PurchaseState state) {
  switch (state) {
    case PurchaseState::none:
      return "none";
    case PurchaseState::unknown:
      return "unknown";
    case PurchaseState::refused:
      return "refused";
    case PurchaseState::paid:
      break;
  }
  return "paid";
}

}  // namespace

void EventLines::screen(const std::string& identifier) {
  write(out_, {{"event", "screen"}, {"id", identifier}});
}

void EventLines::alert(const std::string& title, const std::string& message,
                       const std::vector<std::string>& buttons) {
  write(out_, {{"event", "alert"},
               {"title", title},
               {"message", message},
               {"buttons", json::array(buttons.begin(), buttons.end())}});
}

void EventLines::progress(const std::optional<std::string>& status) {
  write(out_, {{"event", "progress"}, {"status", status ? json::value(*status) : nullptr}});
}

void EventLines::outcome(const std::string& callback, const OutcomeArgument& argument) {
  json::value shown = nullptr;
  if (const auto* reference = std::get_if<std::string>(&argument)) {
    shown = *reference;
  } else if (const auto* code = std::get_if<int>(&argument)) {
    shown = *code;
  }
  write(out_, {{"event", "outcome"}, {"callback", callback}, {"argument", shown}});
}

void EventLines::notice(const std::string& title, const std::string& detail,
                        const PurchaseStatus& purchase) {
  write(out_, {{"event", "notice"},
               {"title", title},
               {"detail", detail},
               {"purchase", nameOf(purchase.state)},
               {"reference", purchase.reference ? json::value(*purchase.reference) : nullptr}});
}

void EventLines::state(const ViewController* screen, const std::string& identifier) {
  json::object outlets;
  if (screen != nullptr) {
    for (const std::string& name : screen->outletNames()) {
      const std::shared_ptr<View> view = screen->outletNamed(name);
      outlets[name] = {
          {"kind", view->kind()}, {"text", view->shownText()}, {"hidden", view->isOutOfSight()}};
    }
  }
  write(out_, {{"event", "state"},
               {"screen", screen != nullptr ? json::value(identifier) : nullptr},
               {"outlets", std::move(outlets)}});
}

}  // namespace orlix::shop
