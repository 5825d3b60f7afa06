// SPDX-License-Identifier: Apache-2.0

#include "shell/FieldAdapter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/ui/Touch.h"
#include "orlixkit/widgets/CardNumberField.h"
#include "orlixkit/widgets/DropDownPicker.h"
#include "shell/WipedText.h"

namespace orlix::shell {

namespace {

/// Code points in the first `units` UTF-16 units of a text.
std::size_t pointsBefore(const QString& text, int units) {
  return static_cast<std::size_t>(text.left(std::max(units, 0)).toUcs4().size());
}

/// UTF-16 units of the first `points` code points of a text.
int unitsBefore(const QString& text, std::size_t points) {
  const auto all = text.toUcs4();
  const auto count = std::min(static_cast<qsizetype>(points), static_cast<qsizetype>(all.size()));
  return static_cast<int>(
      QString::fromUcs4(reinterpret_cast<const char32_t*>(all.data()), count).size());
}

}  // namespace

FieldAdapter::FieldAdapter(std::string name, const std::shared_ptr<TextField>& field,
                           std::weak_ptr<ViewController> screen)
    : AdapterFor(std::move(name), field, std::move(screen)),
      picker_(field, [this](const Task& doing) { touch(doing); }) {
  refreshText();
}

FieldAdapter::~FieldAdapter() { wipeCardNumber(); }

void FieldAdapter::detach() {
  picker_.detach();
  wipeCardNumber();
  AdapterFor::detach();
}

void FieldAdapter::viewChanged() {
  const QString former = text_;
  const QString drawn = drawn_ ? drawn_->property("displayText").toString() : QString();
  refreshText();
  Q_EMIT changed();
  Q_EMIT picker_.changed();
  if (isForCardNumber() && former != text_) {
    wipeShared(former);
    wipeShared(drawn);
  }
}

void FieldAdapter::refreshText() {
  const std::string_view plain = typedView().secretText().text();
  const QString now =
      secure() ? QString(static_cast<qsizetype>(typedView().textLength()), QChar(u'\u2022'))
               : QString::fromUtf8(plain.data(), static_cast<qsizetype>(plain.size()));
  if (now != text_) {
    text_ = now;
  } else if (isForCardNumber()) {
    wipeShared(now);
  }
}

void FieldAdapter::wipeCardNumber() {
  if (!isForCardNumber()) {
    return;
  }
  wipeShared(std::exchange(text_, {}));
  for (const char* property : {"text", "displayText"}) {
    wipeShared(drawn_ ? drawn_->property(property).toString() : QString());
  }
}

bool FieldAdapter::isForCardNumber() const {
  return dynamic_cast<const CardNumberField*>(view().get()) != nullptr;
}

QString FieldAdapter::brand() const {
  const auto* number = dynamic_cast<const CardNumberField*>(view().get());
  return number != nullptr ? QString::fromStdString(number->brand()) : QString();
}

QUrl FieldAdapter::brandImage() const {
  const std::string type = brand().toStdString();
  return type.empty() ? QUrl() : imageAddress(OXUtil::imageForCardType(type));
}

PickerAdapter* FieldAdapter::picker() {
  // A screen may attach its drop-down long after it was drawn.
  return DropDownPicker::of(*view()) ? &picker_ : nullptr;
}

int FieldAdapter::caret() const { return unitsBefore(text_, typedView().caret()); }

void FieldAdapter::replaceCharacters(int location, int length, const QString& text) {
  const std::size_t from = pointsBefore(text_, location);
  const std::size_t to = pointsBefore(text_, location + std::max(length, 0));
  std::string replacement(secretOf(text).text());
  touch([&] {
    if (focused() || typedView().beginEditing()) {
      typedView().replaceCharacters({from, to - from}, replacement);
    }
  });
  wipe(replacement.data(), replacement.size());
}

void FieldAdapter::watch(QQuickItem* drawn) {
  drawn_ = drawn;
  drawn->installEventFilter(this);
}

bool FieldAdapter::eventFilter(QObject*, QEvent* event) {
  if (!secure() && !isForCardNumber()) {
    return false;
  }
  if (event->type() == QEvent::InputMethod) {
    const auto& method = static_cast<const QInputMethodEvent&>(*event);
    if (!method.commitString().isEmpty() || method.replacementLength() > 0) {
      type(method.replacementStart(), method.replacementLength(), method.commitString());
      wipeShared(method.commitString());
    }
    event->accept();
    return true;
  }
  if (event->type() != QEvent::KeyPress) {
    return false;
  }
  const auto& key = static_cast<const QKeyEvent&>(*event);
  constexpr auto kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  if (key.matches(QKeySequence::Paste)) {
    type(0, 0, QGuiApplication::clipboard()->text());
  } else if (!key.text().isEmpty() && key.text().front().isPrint() &&
             !(key.modifiers() & kCommands)) {
    type(0, 0, key.text());
  } else {
    return false;
  }
  event->accept();
  return true;
}

void FieldAdapter::type(int start, int length, const QString& text) {
  const int from = drawn_->property("selectionStart").toInt();
  const int to = drawn_->property("selectionEnd").toInt();
  if (from < to) {
    replaceCharacters(from, to - from, text);
  } else {
    replaceCharacters(from + start, length, text);
  }
}

void FieldAdapter::moveCaret(int position) { typedView().setCaret(pointsBefore(text_, position)); }

bool FieldAdapter::beginEditing() {
  bool begun = focused();
  if (!begun) {
    touch([&] { begun = touchField(*screen(), typedView()); });
  }
  return begun;
}

}  // namespace orlix::shell
