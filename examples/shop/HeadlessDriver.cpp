// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/HeadlessDriver.h"

#include <algorithm>
#include <memory>

#include "examples/shop/ShownScreen.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/ui/Touch.h"
#include "orlixkit/widgets/DropDownPicker.h"

namespace orlix::shop {

namespace {

bool touched(TextField& field) {
  bool begun = false;
  runLogged([&] { begun = touchField(*ShownScreen::content(), field); });
  return begun;
}

std::shared_ptr<TextField> editedField(const std::string& outlet) {
  std::shared_ptr<TextField> field = ShownScreen::touchableField(outlet);
  if (DropDownPicker::of(*field)) {
    throw ScriptError(outlet + " takes no keys: it has a drop-down to pick from");
  }
  if (!touched(*field)) {
    throw ScriptError(outlet + " takes no keys: its screen answers the touch otherwise");
  }
  return field;
}

[[noreturn]] void needsShell(const std::string& command) {
  throw ScriptError(command + " needs the drawn shell; this run is headless");
}

}  // namespace

void HeadlessDriver::type(const std::string& outlet, const std::string& text) {
  const std::shared_ptr<TextField> field = editedField(outlet);
  for (const std::string_view key : charactersOf(text)) {
    runLogged([&] { field->replaceCharacters({field->caret(), 0}, std::string(key)); });
  }
}

void HeadlessDriver::erase(const std::string& outlet, std::size_t count) {
  const std::shared_ptr<TextField> field = editedField(outlet);
  for (std::size_t i = 0; i < count && field->caret() > 0; ++i) {
    runLogged([&] { field->replaceCharacters({field->caret() - 1, 1}, ""); });
  }
}

void HeadlessDriver::set(const std::string& outlet, const std::string& text) {
  ShownScreen::touchableField(outlet)->setText(text);
}

void HeadlessDriver::tap(const std::string& name) {
  ShownScreen::requireTouchable(name);
  const std::shared_ptr<ViewController> screen = ShownScreen::content();
  const Task touched = touchTask(screen, name);
  if (!touched) {
    throw ScriptError(screen->outletNamed(name)
                          ? name + " does not listen to taps"
                          : "there is no outlet and no action " + name + " on the screen " +
                                ShownScreen::identifier());
  }
  runLogged(touched);
}

void HeadlessDriver::selectRow(const std::string& table, const RowChoice& row) {
  const std::shared_ptr<TableView> view = ShownScreen::touchableTable(table);
  const std::size_t chosen = ShownScreen::rowOf(*view, table, row);
  const std::shared_ptr<ViewController> whole = ShownScreen::content();
  runLogged([&] { view->select(chosen); });
}

void HeadlessDriver::pressRowButton(const std::string& table, std::size_t row) {
  const std::shared_ptr<TableView> view = ShownScreen::touchableTable(table);
  const std::shared_ptr<Button> button = view->cell(ShownScreen::rowOf(*view, table, row)).button;
  if (!button || !button->onTouchUpInside) {
    throw ScriptError("row " + std::to_string(row) + " of " + table + " has no button");
  }
  const std::shared_ptr<ViewController> whole = ShownScreen::content();
  runLogged(Task(button->onTouchUpInside));
}

void HeadlessDriver::pressAlertButton(const std::string& title) {
  const std::shared_ptr<AlertController> alert = ShownScreen::alert();
  if (!alert) {
    throw ScriptError("no alert is shown whose button \"" + title + "\" could be pressed");
  }
  const std::size_t index = ShownScreen::alertButton(*alert, title);
  runLogged([&] { alert->press(index); });
}

void HeadlessDriver::pick(const std::string& outlet, const std::string& text) {
  const std::shared_ptr<TextField> field = ShownScreen::touchableField(outlet);
  const std::shared_ptr<DropDownPicker> picker = DropDownPicker::of(*field);
  if (!picker) {
    throw ScriptError(outlet + " has no drop-down");
  }
  const std::vector<std::string>& entries = picker->entries();
  if (std::find(entries.begin(), entries.end(), text) == entries.end()) {
    throw ScriptError("the drop-down of " + outlet + " has no entry \"" + text + "\"");
  }
  if (touched(*field)) {
    runLogged([&] { picker->pick(text); });
  }
}

void HeadlessDriver::pageType(const std::string&, const std::string&) { needsShell("page type"); }
void HeadlessDriver::pageClick(const std::string&) { needsShell("page click"); }
void HeadlessDriver::pageWait(const std::string&) { needsShell("page wait"); }
void HeadlessDriver::snapshot(const std::string&) { needsShell("snapshot"); }

}  // namespace orlix::shop
