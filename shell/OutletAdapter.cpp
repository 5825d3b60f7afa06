#include "shell/OutletAdapter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "orlixkit/platform/ui/WebPageView.h"
#include "orlixkit/widgets/CardNumberField.h"
#include "orlixkit/widgets/DropDownPicker.h"
#include "shell/DrawnWebView.h"
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

QColor toQColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

QUrl imageAddress(const std::string& imageName) {
  return imageName.empty() ? QUrl() : QUrl("image://orlix/" + QString::fromStdString(imageName));
}

OutletAdapter::OutletAdapter(std::string name, std::shared_ptr<View> view,
                             std::shared_ptr<const Screen> screen)
    : name_(std::move(name)),
      kind_(QString::fromStdString(view->kind())),
      view_(std::move(view)),
      screen_(std::move(screen)) {
  view_->onChange = [this] { viewChanged(); };
  if (const auto button = std::dynamic_pointer_cast<Button>(view_)) {
    button->titleLabel()->onChange = [this] { viewChanged(); };
  } else if (const auto input = field()) {
    picker_ = std::make_unique<PickerAdapter>(input, [this](const Task& doing) { touch(doing); });
  } else if (const auto table = std::dynamic_pointer_cast<TableView>(view_)) {
    rows_ = std::make_unique<TableRows>(table);
  }
  shown_ = !view_->isOutOfSight();
  refreshText();
}

OutletAdapter::~OutletAdapter() { detach(); }

void OutletAdapter::detach() {
  if (!view_) {
    return;
  }
  view_->onChange = {};
  if (const auto button = std::dynamic_pointer_cast<Button>(view_)) {
    button->titleLabel()->onChange = {};
  }
  if (picker_) {
    picker_->detach();
  }
  if (rows_) {
    rows_->detach();
  }
  if (isForCardNumber()) {
    wipeDrawnText(std::exchange(text_, {}));
  }
  view_.reset();
  screen_.reset();
}

void OutletAdapter::viewChanged() {
  if (rows_) {
    rows_->refresh();
  }
  const QString former = text_;
  const QString drawn = drawn_ ? drawn_->property("displayText").toString() : QString();
  refreshText();
  Q_EMIT changed();
  if (picker_) {
    Q_EMIT picker_->changed();
  }
  if (isForCardNumber() && former != text_) {
    wipeShared(former);
    wipeShared(drawn);
  }
  if (screen_) {
    screen_->changed();
  }
}

void OutletAdapter::refreshShown() {
  const bool now = view_ && !view_->isOutOfSight();
  if (std::exchange(shown_, now) != now) {
    Q_EMIT shownChanged();
  }
}

const Label* OutletAdapter::label() const {
  if (const auto* button = dynamic_cast<const Button*>(view_.get())) {
    return button->titleLabel().get();
  }
  return dynamic_cast<const Label*>(view_.get());
}

bool OutletAdapter::shown() const { return shown_; }

QString OutletAdapter::text() const {
  return !view_ || field() ? text_ : QString::fromStdString(view_->shownText());
}

void OutletAdapter::refreshText() {
  const auto input = field();
  if (!input) {
    return;
  }
  const std::string_view plain = input->secretText().text();
  const QString now = input->secure()
                          ? QString(static_cast<qsizetype>(input->textLength()), QChar(u'\u2022'))
                          : QString::fromUtf8(plain.data(), static_cast<qsizetype>(plain.size()));
  if (now != text_) {
    text_ = now;
  } else if (isForCardNumber()) {
    wipeShared(now);
  }
}

void OutletAdapter::wipeDrawnText(const QString& text) {
  wipeShared(text);
  for (const char* property : {"text", "displayText"}) {
    wipeShared(drawn_ ? drawn_->property(property).toString() : QString());
  }
}

bool OutletAdapter::isForCardNumber() const {
  return dynamic_cast<const CardNumberField*>(view_.get()) != nullptr;
}

bool OutletAdapter::isForSecret() const { return secure() || isForCardNumber(); }

bool OutletAdapter::html() const { return label() != nullptr && label()->isHtml(); }

double OutletAdapter::alpha() const { return view_ ? view_->alpha() : 1; }

QColor OutletAdapter::backgroundColor() const {
  return toQColor(view_ ? view_->backgroundColor() : kClear);
}

QColor OutletAdapter::tintColor() const { return toQColor(view_ ? view_->tintColor() : kWhite); }

double OutletAdapter::cornerRadius() const { return view_ ? view_->cornerRadius() : 0; }

double OutletAdapter::borderWidth() const { return view_ ? view_->borderWidth() : 0; }

QColor OutletAdapter::borderColor() const {
  return toQColor(view_ ? view_->borderColor() : kClear);
}

QString OutletAdapter::fontName() const {
  return label() != nullptr ? QString::fromStdString(label()->font().name) : QString();
}

double OutletAdapter::fontSize() const { return label() != nullptr ? label()->font().size : 0; }

QColor OutletAdapter::textColor() const {
  return toQColor(label() != nullptr ? label()->textColor() : kWhite);
}

QColor OutletAdapter::color() const {
  const auto* activity = dynamic_cast<const ActivityIndicator*>(view_.get());
  return activity != nullptr ? toQColor(activity->color()) : textColor();
}

bool OutletAdapter::centered() const {
  return label() != nullptr && label()->alignment() == TextAlignment::center;
}

QUrl OutletAdapter::imageSource() const {
  if (const auto* image = dynamic_cast<const ImageView*>(view_.get())) {
    return imageAddress(image->imageName());
  }
  const auto* button = dynamic_cast<const Button*>(view_.get());
  return button != nullptr ? imageAddress(button->imageName()) : QUrl();
}

bool OutletAdapter::enabled() const {
  if (const auto* button = dynamic_cast<const Button*>(view_.get())) {
    return button->enabled();
  }
  const auto input = field();
  return input ? input->enabled() : view_ != nullptr;
}

bool OutletAdapter::reachable() const { return screen_ && screen_->reachable(name_); }

bool OutletAdapter::tappable() const { return view_ && view_->onTap; }

QString OutletAdapter::placeholder() const {
  const auto input = field();
  return input ? QString::fromStdString(input->placeholder()) : QString();
}

bool OutletAdapter::secure() const {
  const auto input = field();
  return input && input->secure();
}

bool OutletAdapter::numeric() const {
  const auto input = field();
  return input && input->keyboard() == Keyboard::numberPad;
}

bool OutletAdapter::phone() const {
  const auto input = field();
  return input && input->keyboard() == Keyboard::phonePad;
}

QString OutletAdapter::toolbarButton() const {
  const auto input = field();
  return input ? QString::fromStdString(input->toolbarButton()) : QString();
}

PickerAdapter* OutletAdapter::picker() const {
  // A screen may attach its drop-down long after it was drawn.
  return view_ && picker_ && DropDownPicker::of(*view_) ? picker_.get() : nullptr;
}

int OutletAdapter::caret() const {
  const auto input = field();
  return input ? unitsBefore(text(), input->caret()) : 0;
}

bool OutletAdapter::focused() const {
  const auto input = field();
  return input && input->editing();
}

bool OutletAdapter::separators() const {
  const auto* table = dynamic_cast<const TableView*>(view_.get());
  return table != nullptr && table->separators();
}

QQuickItem* OutletAdapter::page() const {
  const auto* web = dynamic_cast<const WebPageView*>(view_.get());
  const auto* drawn = web != nullptr ? dynamic_cast<DrawnWebView*>(web->page().get()) : nullptr;
  return drawn != nullptr ? const_cast<DrawnWebView*>(drawn)->item() : nullptr;
}

void OutletAdapter::touch(const Task& doing) {
  // Held meanwhile: the doing may take the screen away.
  if (const auto screen = screen_; screen && !view_->isOutOfSight()) {
    screen->touch(name_, doing);
  }
}

void OutletAdapter::tap() {
  touch([view = view_, screen = screen_, name = name_, this] {
    if (const auto button = std::dynamic_pointer_cast<Button>(view)) {
      if (!button->enabled()) {
        return;
      }
      if (button->onTouchUpInside) {
        const Task pressed = button->onTouchUpInside;
        pressed();
        return;
      }
    } else if (std::dynamic_pointer_cast<TextField>(view)) {
      beginEditing();
      return;
    }
    if (view->onTap) {
      const Task tapped = view->onTap;
      tapped();
    } else if (screen->hasAction(name)) {
      screen->perform(name);
    }
  });
}

void OutletAdapter::replaceCharacters(int location, int length, const QString& text) {
  const auto input = field();
  if (!input) {
    return;
  }
  const QString present = this->text();
  const std::size_t from = pointsBefore(present, location);
  const std::size_t to = pointsBefore(present, location + std::max(length, 0));
  std::string replacement(secretOf(text).text());
  touch([&] {
    if (input->editing() || input->beginEditing()) {
      input->replaceCharacters({from, to - from}, replacement);
    }
  });
  wipe(replacement.data(), replacement.size());
}

void OutletAdapter::watch(QQuickItem* drawn) {
  drawn_ = drawn;
  drawn->installEventFilter(this);
}

bool OutletAdapter::eventFilter(QObject*, QEvent* event) {
  if (!isForSecret()) {
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

void OutletAdapter::type(int start, int length, const QString& text) {
  const int from = drawn_->property("selectionStart").toInt();
  const int to = drawn_->property("selectionEnd").toInt();
  if (from < to) {
    replaceCharacters(from, to - from, text);
  } else {
    replaceCharacters(from + start, length, text);
  }
}

void OutletAdapter::moveCaret(int position) {
  if (const auto input = field()) {
    input->setCaret(pointsBefore(text(), position));
  }
}

bool OutletAdapter::beginEditing() {
  const auto input = field();
  if (!input || input->editing()) {
    return input != nullptr;
  }
  bool begun = false;
  touch([&, screen = screen_] { begun = screen->touchField(*input); });
  return begun;
}

void OutletAdapter::endEditing() {
  if (const auto input = field()) {
    input->endEditing();
  }
}

void OutletAdapter::selectRow(int row) {
  touch([view = view_, row] {
    const auto table = std::dynamic_pointer_cast<TableView>(view);
    if (table && row >= 0 && static_cast<std::size_t>(row) < table->rowCount()) {
      table->select(static_cast<std::size_t>(row));
    }
  });
}

void OutletAdapter::pressRowButton(int row) {
  touch([view = view_, row] {
    const auto table = std::dynamic_pointer_cast<TableView>(view);
    if (!table || row < 0 || static_cast<std::size_t>(row) >= table->rowCount()) {
      return;
    }
    const auto button = table->cell(static_cast<std::size_t>(row)).button;
    if (button && button->onTouchUpInside) {
      button->onTouchUpInside();
    }
  });
}

}  // namespace orlix::shell
