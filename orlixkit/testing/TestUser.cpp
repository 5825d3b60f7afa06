// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/TestUser.h"

#include <stdexcept>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/ui/ActiveWindow.h"
#include "orlixkit/ui/TableView.h"
#include "orlixkit/ui/Touch.h"

namespace orlix {

std::shared_ptr<ViewController> TestUser::topController() const {
  const std::shared_ptr<Window> window = application_.keyWindow;
  return topViewControllerFrom(window ? window->rootViewController() : nullptr);
}

std::shared_ptr<AlertController> TestUser::topAlert() const {
  return std::dynamic_pointer_cast<AlertController>(topController());
}

std::shared_ptr<View> TestUser::find(const std::string& name) const {
  const std::shared_ptr<ViewController> top = topController();
  const std::shared_ptr<View> found = top ? top->outletNamed(name) : nullptr;
  if (!found) {
    throw std::logic_error("the top screen " + (top ? top->identifier() : "") + " has no outlet " +
                           name);
  }
  return found;
}

std::shared_ptr<ViewController> TestUser::reach(const std::string& name) const {
  const std::shared_ptr<ViewController> top = topController();
  const TouchRefusal refusal = top ? touchRefusal(application_, *top, name) : TouchRefusal::covered;
  if (refusal != TouchRefusal::none) {
    throw std::logic_error("a touch on " + name + " has no effect: " + touchRefusalText(refusal));
  }
  return top;
}

void TestUser::edit(const std::string& field, const std::function<void(TextField&)>& keys) const {
  const std::shared_ptr<ViewController> top = reach(field);
  const auto target = outlet<TextField>(field);
  bool begun = false;
  runLogged([&] { begun = touchField(*top, *target); });
  if (!begun) {
    throw std::logic_error("the field " + field + " takes no keys");
  }
  runLogged([&] { keys(*target); });
}

void TestUser::type(const std::string& field, const std::string& text) {
  edit(field, [&](TextField& target) {
    for (const std::string_view key : charactersOf(text)) {
      target.replaceCharacters({target.caret(), 0}, std::string(key));
    }
  });
}

void TestUser::erase(const std::string& field, std::size_t times) {
  edit(field, [&](TextField& target) {
    for (std::size_t i = 0; i < times && target.caret() > 0; ++i) {
      target.replaceCharacters({target.caret() - 1, 1}, "");
    }
  });
}

void TestUser::replaceAll(const std::string& field, const std::string& text) {
  edit(field, [&](TextField& target) { target.replaceCharacters({0, target.textLength()}, text); });
}

void TestUser::tap(const std::string& name) {
  const std::shared_ptr<ViewController> top = reach(name);
  const Task touched = touchTask(top, name);
  if (!touched) {
    throw std::logic_error("the top screen " + top->identifier() + " has nothing to tap named " +
                           name);
  }
  runLogged(touched);
}

void TestUser::chooseRow(const std::string& table, std::size_t row) {
  reach(table);
  const auto target = outlet<TableView>(table);
  runLogged([&] { target->select(row); });
}

void TestUser::tapRowButton(const std::string& table, std::size_t row) {
  reach(table);
  const TableCell cell = outlet<TableView>(table)->cell(row);
  if (!cell.button || !cell.button->onTouchUpInside) {
    throw std::logic_error("row " + std::to_string(row) + " of " + table + " has no button");
  }
  runLogged(cell.button->onTouchUpInside);
}

void TestUser::pressAlert(const std::string& title) {
  const std::shared_ptr<AlertController> alert = topAlert();
  if (!alert) {
    throw std::logic_error("no alert is on top, so there is no button " + title);
  }
  for (std::size_t i = 0; i < alert->actions().size(); ++i) {
    if (alert->actions()[i].title == title) {
      runLogged([&] { alert->press(i); });
      return;
    }
  }
  throw std::logic_error("the alert \"" + alert->title() + "\" has no button " + title);
}

}  // namespace orlix
