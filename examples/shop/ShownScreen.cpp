// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/ShownScreen.h"

#include "orlixkit/host/Host.h"
#include "orlixkit/ui/Touch.h"

namespace orlix::shop {

namespace {

Application& application() { return Host::current().application(); }

/// Everything that is presented, from the bottom up, the host's own screen left out.
std::vector<std::shared_ptr<ViewController>> presented() {
  std::vector<std::shared_ptr<ViewController>> found;
  const std::shared_ptr<Window> window = application().keyWindow;
  if (window && window->rootViewController()) {
    for (auto next = window->rootViewController()->presentedViewController(); next;
         next = next->presentedViewController()) {
      found.push_back(next);
    }
  }
  return found;
}

std::string onScreen() {
  const std::string identifier = ShownScreen::identifier();
  return identifier.empty() ? "" : " on the screen " + identifier;
}

template <class Kind>
std::shared_ptr<Kind> touchable(const std::string& name, const std::string& kind) {
  auto found = std::dynamic_pointer_cast<Kind>(ShownScreen::touchableOutlet(name));
  if (!found) {
    throw ScriptError(name + onScreen() + " is no " + kind);
  }
  return found;
}

}  // namespace

std::shared_ptr<ViewController> ShownScreen::screen() {
  std::shared_ptr<ViewController> top;
  for (const auto& controller : presented()) {
    if (controller->isBeingDismissed()) {
      break;
    }
    if (!std::dynamic_pointer_cast<AlertController>(controller)) {
      top = controller;
    }
  }
  return top;
}

std::shared_ptr<ViewController> ShownScreen::content() {
  const std::shared_ptr<ViewController> top = screen();
  const std::shared_ptr<ViewController> child = top ? top->visibleChild() : nullptr;
  return child ? child : top;
}

std::string ShownScreen::identifier() {
  const std::shared_ptr<ViewController> top = screen();
  return top ? top->identifier() : "";
}

std::shared_ptr<AlertController> ShownScreen::alert() {
  const auto all = presented();
  if (all.empty() || all.back()->isBeingDismissed()) {
    return nullptr;
  }
  return std::dynamic_pointer_cast<AlertController>(all.back());
}

bool ShownScreen::isMoving() {
  for (const auto& controller : presented()) {
    if (controller->isBeingDismissed() || !controller->hasAppeared()) {
      return true;
    }
  }
  return false;
}

void ShownScreen::requireTouchable(const std::string& name) {
  if (const auto above = alert()) {
    throw ScriptError("the alert \"" + above->title() +
                      "\" covers the screen: " + above->message());
  }
  const std::shared_ptr<ViewController> top = content();
  if (!top) {
    throw ScriptError("no screen of the wallet is shown");
  }
  switch (const TouchRefusal refusal = touchRefusal(application(), *top, name)) {
    case TouchRefusal::none:
      break;
    case TouchRefusal::masked:
      throw ScriptError("the progress indicator \"" + application().progressIndicator().status() +
                        "\" holds touches back");
    case TouchRefusal::hidden:
      throw ScriptError(name + onScreen() + " is hidden");
    case TouchRefusal::disabled:
      throw ScriptError(name + " is disabled");
    case TouchRefusal::covered:
      throw ScriptError(name + " cannot be touched: " + touchRefusalText(refusal));
  }
}

std::shared_ptr<View> ShownScreen::outlet(const std::string& name) {
  const std::shared_ptr<ViewController> top = content();
  if (!top) {
    throw ScriptError("no screen of the wallet is shown");
  }
  std::shared_ptr<View> found = top->outletNamed(name);
  if (!found) {
    throw ScriptError("there is no outlet " + name + onScreen());
  }
  return found;
}

std::shared_ptr<View> ShownScreen::touchableOutlet(const std::string& name) {
  requireTouchable(name);
  return outlet(name);
}

std::shared_ptr<TextField> ShownScreen::touchableField(const std::string& name) {
  return touchable<TextField>(name, "text field");
}

std::shared_ptr<TableView> ShownScreen::touchableTable(const std::string& name) {
  return touchable<TableView>(name, "table");
}

std::size_t ShownScreen::rowOf(const TableView& table, const std::string& name,
                               const RowChoice& row) {
  const std::string count = std::to_string(table.rowCount());
  if (const auto* number = std::get_if<std::size_t>(&row)) {
    if (*number >= table.rowCount()) {
      throw ScriptError(name + " has no row " + std::to_string(*number) + "; it has " + count +
                        " rows");
    }
    return *number;
  }
  const auto& text = std::get<std::string>(row);
  for (std::size_t i = 0; i < table.rowCount(); ++i) {
    if (table.cell(i).text == text) {
      return i;
    }
  }
  throw ScriptError(name + " has no row \"" + text + "\" among its " + count);
}

std::size_t ShownScreen::alertButton(const AlertController& alert, const std::string& title) {
  std::string titles;
  for (std::size_t i = 0; i < alert.actions().size(); ++i) {
    if (alert.actions()[i].title == title) {
      return i;
    }
    titles += (i == 0 ? "\"" : ", \"") + alert.actions()[i].title + "\"";
  }
  throw ScriptError("the alert \"" + alert.title() + "\" has no button \"" + title + "\"; it has " +
                    (titles.empty() ? "none" : titles));
}

}  // namespace orlix::shop
