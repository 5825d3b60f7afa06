#pragma once

#include <QPointer>
#include <QQuickItem>

#include "orlixkit/platform/ui/TextField.h"
#include "shell/OutletAdapter.h"
#include "shell/PickerAdapter.h"

namespace orlix::shell {

/// A text field. Keeps the text, once for all who read it, so that a card's number can be wiped
/// from all that show it.
class FieldAdapter : public AdapterFor<TextField> {
  Q_OBJECT
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(bool enabled READ enabled NOTIFY changed)
  Q_PROPERTY(QString placeholder READ placeholder NOTIFY changed)
  Q_PROPERTY(bool secure READ secure NOTIFY changed)
  Q_PROPERTY(bool numeric READ numeric NOTIFY changed)
  Q_PROPERTY(bool phone READ phone NOTIFY changed)
  Q_PROPERTY(QString toolbarButton READ toolbarButton NOTIFY changed)
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
  int caret() const;
  bool focused() const { return typedView().editing(); }
  /// None for a field without a drop-down.
  PickerAdapter* picker();

  /// Keys, or a paste: the text goes over `length` characters at `location`, both in the units of
  /// the language's texts (UTF-16). The field's delegate decides; read `text` and `caret`
  /// afterwards.
  Q_INVOKABLE void replaceCharacters(int location, int length, const QString& text);
  Q_INVOKABLE void moveCaret(int position);
  /// False when the screen answers the touch otherwise.
  Q_INVOKABLE bool beginEditing();
  Q_INVOKABLE void endEditing() { typedView().endEditing(); }
  /// The drawn field whose keys and input method these are. What is typed into a field for a secret
  /// goes to the outlet past it: the drawn field would keep copies.
  Q_INVOKABLE void watch(QQuickItem* drawn);

 private:
  void viewChanged() override;
  bool eventFilter(QObject* drawn, QEvent* event) override;
  bool isForCardNumber() const;
  /// Over what is selected in the drawn field, else over `length` characters from `start` on,
  /// counted from the caret.
  void type(int start, int length, const QString& text);
  void refreshText();
  void wipeCardNumber();

  QString text_;
  QPointer<QQuickItem> drawn_;
  PickerAdapter picker_;
};

}  // namespace orlix::shell
