// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPointer>
#include <QQuickItem>

#include "orlixkit/ui/TextField.h"
#include "shell/OutletAdapter.h"
#include "shell/PickerAdapter.h"

namespace orlix::shell {

/// Exposes a text field to QML. Keeps one shared copy of the text, so that a card number can be
/// wiped from every item that displays it.
class FieldAdapter : public AdapterFor<TextField> {
  Q_OBJECT
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(bool enabled READ enabled NOTIFY changed)
  Q_PROPERTY(QString placeholder READ placeholder NOTIFY changed)
  Q_PROPERTY(bool secure READ secure NOTIFY changed)
  Q_PROPERTY(bool numeric READ numeric NOTIFY changed)
  Q_PROPERTY(bool phone READ phone NOTIFY changed)
  Q_PROPERTY(QString toolbarButton READ toolbarButton NOTIFY changed)
  Q_PROPERTY(QString brand READ brand NOTIFY changed)
  Q_PROPERTY(QUrl brandImage READ brandImage NOTIFY changed)
  Q_PROPERTY(int caret READ caret NOTIFY changed)
  Q_PROPERTY(bool focused READ focused NOTIFY changed)
  Q_PROPERTY(orlix::shell::PickerAdapter* picker READ picker NOTIFY changed)

 public:
  FieldAdapter(std::string name, const std::shared_ptr<TextField>& field,
               std::weak_ptr<ViewController> screen);
  ~FieldAdapter() override;
  void detach() override;

  QString text() const { return text_; }
  bool enabled() const { return typedView().enabled(); }
  QString placeholder() const { return QString::fromStdString(typedView().placeholder()); }
  bool secure() const { return typedView().secure(); }
  bool numeric() const { return typedView().keyboard() == Keyboard::numberPad; }
  bool phone() const { return typedView().keyboard() == Keyboard::phonePad; }
  QString toolbarButton() const { return QString::fromStdString(typedView().toolbarButton()); }
  /// Of a card number, by its first digits; empty for none.
  QString brand() const;
  QUrl brandImage() const;
  int caret() const;
  bool focused() const { return typedView().editing(); }
  /// Null for a field without a drop-down.
  PickerAdapter* picker();

  /// A key or a paste: replaces `length` units at `location` (UTF-16) by the text. The field's
  /// delegate decides; read `text` and `caret` afterwards.
  Q_INVOKABLE void replaceCharacters(int location, int length, const QString& text);
  Q_INVOKABLE void moveCaret(int position);
  /// False when the screen handles the touch differently.
  Q_INVOKABLE bool beginEditing();
  Q_INVOKABLE void endEditing() { typedView().endEditing(); }
  /// Filters keys and input-method events of this drawn field. Text typed into a secure field
  /// bypasses the drawn field, which would keep copies.
  Q_INVOKABLE void watch(QQuickItem* drawn);

 private:
  void viewChanged() override;
  bool eventFilter(QObject* drawn, QEvent* event) override;
  bool isForCardNumber() const;
  /// Replaces the selection of the drawn field, else `length` characters at `start`, relative to
  /// the caret.
  void type(int start, int length, const QString& text);
  void refreshText();
  void wipeCardNumber();

  QString text_;
  QPointer<QQuickItem> drawn_;
  PickerAdapter picker_;
};

}  // namespace orlix::shell
