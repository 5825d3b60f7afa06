// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/ScreenList.h"

#include <memory>
#include <span>

#include <boost/json.hpp>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix::shop {

namespace json = boost::json;

namespace {

const char* nameOf(Keyboard keyboard) {
  switch (keyboard) {
    case Keyboard::numberPad:
      return "number";
    case Keyboard::phonePad:
      return "phone";
    case Keyboard::standard:
      break;
  }
  return "text";
}

/// The outlet that contains this one; null for one directly on the screen.
json::value groupOf(const ViewController& screen, const View& outlet) {
  for (const std::string& name : screen.outletNames()) {
    if (screen.outletNamed(name) == outlet.superview()) {
      return json::value(name);
    }
  }
  return nullptr;
}

json::value hidingOf(const ViewController& screen, const std::string& outlet) {
  for (const HidingRule& rule : screen.declaration().hiding) {
    if (outlet == rule.outlet) {
      return json::value(rule.when);
    }
  }
  return nullptr;
}

json::object describeOutlet(const ViewController& screen, const std::string& name) {
  const std::shared_ptr<View> outlet = screen.outletNamed(name);
  json::object described{{"name", name},
                         {"kind", outlet->kind()},
                         {"text", outlet->shownText()},
                         {"inside", groupOf(screen, *outlet)},
                         {"hiddenWhen", hidingOf(screen, name)}};
  if (const auto field = std::dynamic_pointer_cast<TextField>(outlet)) {
    described["placeholder"] = field->placeholder();
    described["keyboard"] = nameOf(field->keyboard());
    described["secure"] = field->secure();
  } else if (const auto label = std::dynamic_pointer_cast<Label>(outlet)) {
    described["html"] = label->isHtml();
  }
  return described;
}

json::array describeAlerts(std::span<const AlertText> alerts) {
  json::array all;
  for (const AlertText& alert : alerts) {
    all.push_back({{"title", alert.title}, {"message", alert.message}, {"buttons", alert.buttons}});
  }
  return all;
}

json::object describeScreen(const ViewController& screen, bool inContainer) {
  json::array outlets;
  for (const std::string& name : screen.outletNames()) {
    outlets.push_back(describeOutlet(screen, name));
  }
  const auto& actions = screen.actionNames();
  const auto& segues = screen.declaration().segues;
  return {{"identifier", screen.identifier()},
          {"inContainer", inContainer},
          {"outlets", std::move(outlets)},
          {"actions", json::array(actions.begin(), actions.end())},
          {"segues", json::array(segues.begin(), segues.end())},
          {"alerts", describeAlerts(screen.declaration().alerts)}};
}

}  // namespace

std::string screenList() {
  MemoryHost phone({.install = installOrlixKit});
  const Storyboard& storyboard = phone.application().storyboard();
  json::array screens;
  for (const auto& [identifier, maker] : storyboard.makers()) {
    const std::shared_ptr<ViewController> made = storyboard.make(identifier);
    const std::shared_ptr<ViewController> child = made->visibleChild();
    screens.push_back(describeScreen(child ? *child : *made, child != nullptr));
  }
  return json::serialize(
      json::object{{"screens", std::move(screens)},
                   {"alertsOfAnyScreen", describeAlerts(storyboard.alertsOfAnyScreen)},
                   {"alertsBeforeScreens", describeAlerts(storyboard.alertsBeforeScreens)}});
}

}  // namespace orlix::shop
