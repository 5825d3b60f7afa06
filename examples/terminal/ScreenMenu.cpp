// SPDX-License-Identifier: Apache-2.0

#include "ScreenMenu.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <set>
#include <utility>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/ui/ActiveWindow.h"
#include "orlixkit/ui/Touch.h"
#include "orlixkit/ui/WebPageView.h"
#include "orlixkit/widgets/DropDownPicker.h"

using namespace orlix;

namespace {

/// "cardNumberField" as "card number", "proceedAction" as "proceed".
std::string wordsOf(std::string name) {
  for (const std::string ending : {"Field", "Action", "Button", "View", "Label", "Tapped"}) {
    if (name.size() > ending.size() && name.ends_with(ending)) {
      name.resize(name.size() - ending.size());
      break;
    }
  }
  std::string words;
  for (const char letter : name) {
    const bool isCapital = letter >= 'A' && letter <= 'Z';
    words += isCapital && !words.empty() ? " " : "";
    words += isCapital ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  return words;
}

/// The text of a label without the tags of its markup.
std::string plainText(const Label& label) {
  if (!label.isHtml()) {
    return label.text();
  }
  std::string text;
  bool inTag = false;
  for (const char letter : label.text()) {
    inTag = letter == '<' || (inTag && letter != '>');
    text += inTag || letter == '>' ? "" : std::string(1, letter);
  }
  return text;
}

/// The text of a view, or of what is inside it: a tappable area shows its labels.
std::string textOf(const View& view) {
  const auto* own = dynamic_cast<const Label*>(&view);
  std::string text = own != nullptr ? plainText(*own) : view.shownText();
  for (const auto& part : view.subviews()) {
    const auto label = std::dynamic_pointer_cast<Label>(part);
    if (text.empty() && label && !label->isOutOfSight()) {
      text = plainText(*label);
    }
  }
  return text;
}

std::size_t numberIn(const std::string& line) {
  std::size_t number = 0;
  std::from_chars(line.data(), line.data() + line.size(), number);
  return number;
}

/// Replaces what is in the field, key by key as a user does: the screen judges every key.
void typeInto(TextField& field, std::string_view text) {
  while (field.textLength() > 0) {
    const std::size_t before = field.textLength();
    runLogged([&] { field.replaceCharacters({before - 1, 1}, ""); });
    if (field.textLength() == before) {
      break;
    }
  }
  field.setCaret(field.textLength());
  for (const std::string_view key : charactersOf(text)) {
    std::string typed(key);
    runLogged([&] { field.replaceCharacters({field.caret(), 0}, typed); });
    wipe(typed.data(), typed.size());
  }
}

}  // namespace

bool ScreenMenu::isReady() {
  read();
  return !choices_.empty();
}

void ScreenMenu::read() {
  texts_.clear();
  choices_.clear();
  const auto window = activeWindow(application_);
  screen_ = topViewControllerFrom(window ? window->rootViewController() : nullptr);
  if (!screen_ || !screen_->hasAppeared() || screen_->isBeingDismissed() ||
      screen_->presentedViewController()) {
    return;
  }
  if (const auto alert = std::dynamic_pointer_cast<AlertController>(screen_)) {
    readAlert(alert);
    return;
  }
  if (application_.progressIndicator().visible()) {
    return;
  }
  heading_ = screen_->identifier();
  for (const std::string& name : screen_->outletNames()) {
    readOutlet(name, screen_->outletNamed(name));
  }
  for (const std::string& name : screen_->actionNames()) {
    offerTap(name, "");
  }
}

void ScreenMenu::readAlert(const std::shared_ptr<AlertController>& alert) {
  heading_ = alert->title();
  texts_.push_back(alert->message());
  for (std::size_t i = 0; i < alert->actions().size(); ++i) {
    choices_.push_back({alert->actions()[i].title, [alert, i] {
                          runLogged([&] { alert->press(i); });
                          return true;
                        }});
  }
}

void ScreenMenu::readOutlet(const std::string& name, const std::shared_ptr<View>& view) {
  if (touchRefusal(application_, *screen_, name) != TouchRefusal::none) {
    return;
  }
  if (const auto field = std::dynamic_pointer_cast<TextField>(view)) {
    readField(field->placeholder().empty() ? wordsOf(name) : field->placeholder(), field);
  } else if (const auto table = std::dynamic_pointer_cast<TableView>(view)) {
    readTable(table);
  } else if (std::dynamic_pointer_cast<Button>(view) || view->onTap) {
    offerTap(name, textOf(*view));
  } else if (const auto label = std::dynamic_pointer_cast<Label>(view)) {
    texts_.push_back(plainText(*label));
  } else if (std::dynamic_pointer_cast<WebPageView>(view)) {
    texts_.push_back("A terminal has no web view and cannot show this page.");
  }
}

void ScreenMenu::readField(const std::string& label, const std::shared_ptr<TextField>& field) {
  choices_.push_back(
      {label + ": " + field->shownText(), [this, label, field] { return fill(label, *field); }});
}

bool ScreenMenu::fill(const std::string& label, TextField& field) const {
  bool takesKeys = false;
  runLogged([&] { takesKeys = touchField(*screen_, field); });
  if (!takesKeys) {
    return true;  // the touch has opened a screen to choose from
  }
  if (const auto picker = DropDownPicker::of(field)) {
    for (std::size_t i = 0; i < picker->entries().size(); ++i) {
      std::printf("     %2zu  %s\n", i + 1, picker->entries()[i].c_str());
    }
    const auto line = LineInput::line(label + "? ");
    const std::size_t number = numberIn(line.value_or(""));
    if (number >= 1 && number <= picker->entries().size()) {
      runLogged([&] { picker->pick(number - 1); });
    }
    return line.has_value();
  }
  if (field.secure()) {
    const auto secret = LineInput::secretLine(label + "? ");
    typeInto(field, secret ? secret->text() : "");
    return secret.has_value();
  }
  const auto line = LineInput::line(label + "? ");
  typeInto(field, line.value_or(""));
  return line.has_value();
}

void ScreenMenu::readTable(const std::shared_ptr<TableView>& table) {
  for (std::size_t row = 0; row < table->rowCount(); ++row) {
    const TableCell cell = table->cell(row);
    choices_.push_back({cell.text + (cell.checkmark ? " (chosen)" : ""), [table, row] {
                          runLogged([&] { table->select(row); });
                          return true;
                        }});
    if (cell.button && cell.button->onTouchUpInside) {
      choices_.push_back({"remove " + cell.text, [press = cell.button->onTouchUpInside] {
                            runLogged(press);
                            return true;
                          }});
    }
  }
}

void ScreenMenu::offerTap(const std::string& name, const std::string& text) {
  if (touchRefusal(application_, *screen_, name) != TouchRefusal::none) {
    return;
  }
  // A button and the action that it performs are one choice.
  const std::string words = wordsOf(name);
  const std::string shown = text.empty() ? words : words + ": " + text;
  const bool isThere = std::any_of(choices_.begin(), choices_.end(), [&](const Choice& choice) {
    return choice.text == words || choice.text.starts_with(words + ": ");
  });
  if (!isThere) {
    choices_.push_back({shown, [this, name] {
                          if (const Task tap = touchTask(screen_, name)) {
                            runLogged(tap);
                          }
                          return true;
                        }});
  }
}

std::string ScreenMenu::shown() const {
  std::string all = "\n--- " + heading_ + "\n";
  for (const std::string& text : texts_) {
    all += text.empty() ? "" : "    " + text + "\n";
  }
  for (std::size_t i = 0; i < choices_.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    all += std::string(number.size() < 4 ? 4 - number.size() : 0, ' ') + number + "  " +
           choices_[i].text + "\n";
  }
  return all;
}

bool ScreenMenu::ask() {
  const std::string before = shown();
  std::printf("%sNumber? ", before.c_str());
  std::fflush(stdout);
  const bool typed = input_.wait([&] {
    read();
    return shown() != before;
  });
  if (!typed) {
    std::puts("");
    return true;
  }
  read();
  const auto line = LineInput::line("");
  if (!line) {
    return false;
  }
  const std::size_t number = numberIn(*line);
  if (number < 1 || number > choices_.size()) {
    std::printf("Please type a number from 1 to %zu.\n", choices_.size());
    return true;
  }
  const Choice chosen = choices_[number - 1];
  std::printf("> %s\n", chosen.text.c_str());
  return chosen.take();
}
