// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/window/QtDriver.h"

#include <algorithm>
#include <filesystem>

#include "examples/shop/ShownScreen.h"
#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/ui/WebPageView.h"
#include "orlixkit/widgets/DropDownPicker.h"
#include "shell/FindItem.h"

namespace orlix::shop {

namespace {

std::shared_ptr<WebView> shownPage() {
  const std::shared_ptr<ViewController> screen = ShownScreen::content();
  for (const std::string& name : screen ? screen->outletNames() : std::vector<std::string>{}) {
    if (const auto web = std::dynamic_pointer_cast<WebPageView>(screen->outletNamed(name))) {
      return web->page();
    }
  }
  return nullptr;
}

int keyOf(const QString& text) {
  const char16_t unit = text.size() == 1 ? text.front().toUpper().unicode() : u'\0';
  // Printable ASCII characters are their own key codes.
  return unit >= u' ' && unit <= u'~' ? static_cast<int>(unit) : static_cast<int>(Qt::Key_unknown);
}

}  // namespace

QtDriver::QtDriver(shell::ScreenPresenter& presenter, std::shared_ptr<MainQueue> mainQueue,
                   std::optional<std::string> snapshots)
    : presenter_(presenter),
      finger_(presenter.window()),
      page_(std::move(mainQueue), shownPage),
      snapshots_(std::move(snapshots)) {}

QQuickItem* QtDriver::find(const std::string& name) const {
  const shell::DrawnScreen* const top = presenter_.top();
  QQuickItem* const content = top != nullptr ? top->content() : nullptr;
  return content != nullptr ? shell::findItem(*content, QString::fromStdString(name)) : nullptr;
}

QQuickItem& QtDriver::item(const std::string& name) const {
  if (QQuickItem* found = find(name)) {
    return *found;
  }
  throw ScriptError("nothing of the name " + name + " is drawn on the screen " +
                    ShownScreen::identifier());
}

void QtDriver::touch(QQuickItem& item, const std::string& name) {
  QQuickItem* const content = presenter_.top()->content();
  finger_.bringUpToDate();
  if (content->metaObject()->indexOfMethod("reveal(QQuickItem*)") >= 0) {
    QMetaObject::invokeMethod(content, "reveal", Q_ARG(QQuickItem*, &item));
    finger_.bringUpToDate();
  }
  finger_.touch(item, QString::fromStdString(name));
}

void QtDriver::beginTyping(const std::string& outlet) {
  const std::shared_ptr<TextField> field = ShownScreen::touchableField(outlet);
  if (DropDownPicker::of(*field)) {
    throw ScriptError(outlet + " takes no keys: it has a drop-down to pick from");
  }
  touch(item(outlet), outlet);
  if (!field->editing()) {
    throw ScriptError(outlet + " takes no keys: its screen answers the touch otherwise");
  }
  finger_.press(Qt::Key_End);
}

void QtDriver::type(const std::string& outlet, const std::string& text) {
  beginTyping(outlet);
  for (const std::string_view character : charactersOf(text)) {
    const QString key =
        QString::fromUtf8(character.data(), static_cast<qsizetype>(character.size()));
    finger_.press(keyOf(key), key);
  }
}

void QtDriver::erase(const std::string& outlet, std::size_t count) {
  beginTyping(outlet);
  for (std::size_t i = 0; i < count; ++i) {
    finger_.press(Qt::Key_Backspace);
  }
}

void QtDriver::set(const std::string& outlet, const std::string& text) {
  ShownScreen::touchableField(outlet)->setText(text);
}

void QtDriver::tap(const std::string& name) {
  ShownScreen::requireTouchable(name);
  const std::shared_ptr<ViewController> screen = ShownScreen::content();
  if (screen->outletNamed(name)) {
    touch(item(name), name);
    return;
  }
  if (!screen->hasAction(name)) {
    throw ScriptError("there is no outlet and no action " + name + " on the screen " +
                      ShownScreen::identifier());
  }
  QQuickItem* drawn = find(name);
  if (drawn == nullptr) {
    drawn = shell::findItem(*presenter_.top()->content(), [&](const QQuickItem& one) {
      return one.property("actionName").toString().toStdString() == name;
    });
  }
  if (drawn != nullptr && drawn->isVisible()) {
    touch(*drawn, name);
  } else {
    // Such as the button over a keyboard that is not there now.
    runLogged([&] { screen->performAction(name); });
  }
}

QQuickItem& QtDriver::row(const std::string& table, std::size_t row) const {
  // A long list draws only the rows that are in sight.
  QMetaObject::invokeMethod(&item(table), "rowItem", Q_ARG(int, static_cast<int>(row)));
  return item(table + ".row" + std::to_string(row));
}

void QtDriver::selectRow(const std::string& table, const RowChoice& row) {
  const std::size_t chosen = ShownScreen::rowOf(*ShownScreen::touchableTable(table), table, row);
  touch(this->row(table, chosen), table);
}

void QtDriver::pressRowButton(const std::string& table, std::size_t row) {
  const std::shared_ptr<TableView> view = ShownScreen::touchableTable(table);
  if (!view->cell(ShownScreen::rowOf(*view, table, row)).button) {
    throw ScriptError("row " + std::to_string(row) + " of " + table + " has no button");
  }
  this->row(table, row);
  touch(item(table + ".row" + std::to_string(row) + ".button"), table);
}

void QtDriver::pressAlertButton(const std::string& title) {
  const std::shared_ptr<AlertController> alert = ShownScreen::alert();
  if (!alert) {
    throw ScriptError("no alert is shown whose button \"" + title + "\" could be pressed");
  }
  const std::string name = "alert.button" + std::to_string(ShownScreen::alertButton(*alert, title));
  touch(item(name), title);
}

void QtDriver::pick(const std::string& outlet, const std::string& text) {
  const std::shared_ptr<TextField> field = ShownScreen::touchableField(outlet);
  const std::shared_ptr<DropDownPicker> picker = DropDownPicker::of(*field);
  if (!picker) {
    throw ScriptError(outlet + " has no drop-down");
  }
  const std::vector<std::string>& entries = picker->entries();
  const auto found = std::find(entries.begin(), entries.end(), text);
  if (found == entries.end()) {
    throw ScriptError("the drop-down of " + outlet + " has no entry \"" + text + "\"");
  }
  if (!field->editing()) {
    touch(item(outlet), outlet);
  }
  touch(item(outlet + ".entry" + std::to_string(found - entries.begin())), text);
}

void QtDriver::pageType(const std::string& selector, const std::string& text) {
  page_.type(selector, text);
}

void QtDriver::pageClick(const std::string& selector) { page_.click(selector); }

void QtDriver::pageWait(const std::string& selector) { page_.wait(selector); }

void QtDriver::snapshot(const std::string& name) {
  if (!snapshots_) {
    throw ScriptError("snapshot needs a folder: --snapshots DIR");
  }
  if (name.empty() || name.front() == '.' || name.find('/') != std::string::npos) {
    throw ScriptError("\"" + name + "\" is no name for a picture");
  }
  presenter_.endDelays();
  std::filesystem::create_directories(*snapshots_);
  const std::filesystem::path file = std::filesystem::path(*snapshots_) / (name + ".png");
  if (!presenter_.window().grabWindow().save(QString::fromStdString(file.string()))) {
    throw ScriptError("the picture " + file.string() + " cannot be written");
  }
}

}  // namespace orlix::shop
