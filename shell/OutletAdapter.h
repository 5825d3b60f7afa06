#pragma once

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

#include "orlixkit/platform/ui/TextField.h"
#include "orlixkit/platform/ui/View.h"
#include "shell/PickerAdapter.h"
#include "shell/TableRows.h"

namespace orlix::shell {

/// One outlet of a screen as the drawing language sees it: what it shows, and what a user can do to
/// it. It decides nothing, and keeps nothing but a field's text, so that a card's number can be
/// wiped from all that show it: each value is read from the view when it is asked for. Once its
/// screen has gone it shows nothing and does nothing. Main thread.
class OutletAdapter : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString name READ name CONSTANT)
  Q_PROPERTY(QString kind READ kind CONSTANT)
  Q_PROPERTY(bool shown READ shown NOTIFY shownChanged)
  Q_PROPERTY(QString text READ text NOTIFY changed)
  Q_PROPERTY(bool html READ html NOTIFY changed)
  Q_PROPERTY(double alpha READ alpha NOTIFY changed)
  Q_PROPERTY(QColor backgroundColor READ backgroundColor NOTIFY changed)
  Q_PROPERTY(QColor tintColor READ tintColor NOTIFY changed)
  Q_PROPERTY(double cornerRadius READ cornerRadius NOTIFY changed)
  Q_PROPERTY(double borderWidth READ borderWidth NOTIFY changed)
  Q_PROPERTY(QColor borderColor READ borderColor NOTIFY changed)
  Q_PROPERTY(QString fontName READ fontName NOTIFY changed)
  Q_PROPERTY(double fontSize READ fontSize NOTIFY changed)
  Q_PROPERTY(QColor textColor READ textColor NOTIFY changed)
  Q_PROPERTY(QColor color READ color NOTIFY changed)
  Q_PROPERTY(bool centered READ centered NOTIFY changed)
  Q_PROPERTY(QUrl imageSource READ imageSource NOTIFY changed)
  Q_PROPERTY(bool enabled READ enabled NOTIFY changed)
  Q_PROPERTY(bool reachable READ reachable NOTIFY reachableChanged)
  Q_PROPERTY(bool tappable READ tappable NOTIFY changed)
  Q_PROPERTY(QString placeholder READ placeholder NOTIFY changed)
  Q_PROPERTY(bool secure READ secure NOTIFY changed)
  Q_PROPERTY(bool numeric READ numeric NOTIFY changed)
  Q_PROPERTY(bool phone READ phone NOTIFY changed)
  Q_PROPERTY(QString toolbarButton READ toolbarButton NOTIFY changed)
  Q_PROPERTY(int caret READ caret NOTIFY changed)
  Q_PROPERTY(bool focused READ focused NOTIFY changed)
  Q_PROPERTY(orlix::shell::PickerAdapter* picker READ picker NOTIFY changed)
  Q_PROPERTY(orlix::shell::TableRows* rows READ rows CONSTANT)
  Q_PROPERTY(bool separators READ separators NOTIFY changed)
  Q_PROPERTY(int rowCount READ rowCount NOTIFY changed)
  Q_PROPERTY(int checkedRow READ checkedRow NOTIFY changed)
  Q_PROPERTY(QQuickItem* page READ page NOTIFY changed)

 public:
  /// What an adapter needs of its screen. `touch` runs a user's doing, or leaves it out when no
  /// finger could do it now; `changed` hears that some view has changed.
  struct Screen {
    std::function<void(const std::string& name, const Task& doing)> touch;
    std::function<void()> changed;
    std::function<void(const std::string& name)> perform;
    std::function<bool(const std::string& name)> hasAction;
    std::function<bool(TextField& field)> touchField;
    /// False while the progress indicator holds touches back from that name.
    std::function<bool(const std::string& name)> reachable;
  };

  OutletAdapter(std::string name, std::shared_ptr<View> view, std::shared_ptr<const Screen> screen);
  ~OutletAdapter() override;
  /// Lets go of the view and the screen.
  void detach();
  /// Tells when `shown` is no longer what it was told last.
  void refreshShown();
  /// Tells that the mask has come or gone.
  void refreshReachable() { Q_EMIT reachableChanged(); }

  QString name() const { return QString::fromStdString(name_); }
  QString kind() const { return kind_; }
  bool shown() const;
  QString text() const;
  bool html() const;
  double alpha() const;
  QColor backgroundColor() const;
  QColor tintColor() const;
  double cornerRadius() const;
  double borderWidth() const;
  QColor borderColor() const;
  QString fontName() const;
  double fontSize() const;
  QColor textColor() const;
  QColor color() const;
  bool centered() const;
  QUrl imageSource() const;
  bool enabled() const;
  bool reachable() const;
  bool tappable() const;
  QString placeholder() const;
  bool secure() const;
  bool numeric() const;
  bool phone() const;
  QString toolbarButton() const;
  int caret() const;
  bool focused() const;
  /// None for a field without a drop-down.
  PickerAdapter* picker() const;
  TableRows* rows() const { return rows_.get(); }
  bool separators() const;
  int rowCount() const { return rows_ ? rows_->rowCount() : 0; }
  int checkedRow() const { return rows_ ? rows_->checkedRow() : -1; }
  QQuickItem* page() const;

  /// A touch that ends inside: what the button, the tap listener, or the action of the outlet's
  /// name does; a field begins its editing.
  Q_INVOKABLE void tap();
  /// Keys, or a paste: the text goes over `length` characters at `location`, both in the units of
  /// the language's texts (UTF-16). The field's delegate decides; read `text` and `caret`
  /// afterwards.
  Q_INVOKABLE void replaceCharacters(int location, int length, const QString& text);
  Q_INVOKABLE void moveCaret(int position);
  /// False when the screen answers the touch otherwise.
  Q_INVOKABLE bool beginEditing();
  Q_INVOKABLE void endEditing();
  /// The drawn field whose keys and input method these are. What is typed into a field for a secret
  /// goes to the outlet past it: the drawn field would keep copies.
  Q_INVOKABLE void watch(QQuickItem* drawn);
  Q_INVOKABLE void returnPressed() { endEditing(); }
  Q_INVOKABLE void selectRow(int row);
  Q_INVOKABLE void pressRowButton(int row);

 Q_SIGNALS:
  void changed();
  void shownChanged();
  void reachableChanged();

 private:
  const Label* label() const;
  std::shared_ptr<TextField> field() const { return std::dynamic_pointer_cast<TextField>(view_); }
  bool eventFilter(QObject* drawn, QEvent* event) override;
  bool isForSecret() const;
  bool isForCardNumber() const;
  /// Over what is selected in the drawn field, else over `length` characters from `start` on,
  /// counted from the caret.
  void type(int start, int length, const QString& text);
  void touch(const Task& doing);
  void viewChanged();
  void refreshText();
  void wipeDrawnText(const QString& text);

  const std::string name_;
  QString kind_;
  std::shared_ptr<View> view_;  ///< none when detached
  std::shared_ptr<const Screen> screen_;
  bool shown_ = false;
  QString text_;                           ///< what a field shows: one copy for all who read it
  QPointer<QQuickItem> drawn_;             ///< fields only
  std::unique_ptr<PickerAdapter> picker_;  ///< fields only
  std::unique_ptr<TableRows> rows_;        ///< tables only
};

/// The colour as the drawing language takes it.
QColor toQColor(const Color& color);
/// Address of a picture of this name; empty for no name.
QUrl imageAddress(const std::string& imageName);

}  // namespace orlix::shell
