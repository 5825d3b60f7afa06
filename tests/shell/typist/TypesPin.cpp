// SPDX-License-Identifier: Apache-2.0

// A Qt plug-in that types a PIN and Enter when a password field gets the focus, to test hosts
// without changing them. Loaded by QT_QPA_GENERIC_PLUGINS=orlix-types-pin.

#include <QCoreApplication>
#include <QGenericPlugin>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>

namespace {

constexpr const char* kPin = "1234";

/// The echo mode `Password` of QQuickTextInput.
constexpr int kHiddenText = 2;

QQuickWindow* windowThatAsksForSecret() {
  for (QWindow* const window : QGuiApplication::topLevelWindows()) {
    auto* const drawn = qobject_cast<QQuickWindow*>(window);
    const QQuickItem* const focused = drawn != nullptr ? drawn->activeFocusItem() : nullptr;
    if (focused != nullptr && focused->property("echoMode").toInt() == kHiddenText) {
      return drawn;
    }
  }
  return nullptr;
}

void press(QQuickWindow& window, int key, const QString& text) {
  for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent event(type, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&window, &event);
  }
}

class Typist : public QObject {
 public:
  Typist() {
    connect(&timer_, &QTimer::timeout, this, [this] {
      if (QQuickWindow* const window = windowThatAsksForSecret()) {
        timer_.stop();
        for (const QChar digit : QString::fromLatin1(kPin)) {
          press(*window, digit.unicode(), digit);
        }
        press(*window, Qt::Key_Return, QStringLiteral("\r"));
      }
    });
    timer_.start(50);
  }

 private:
  QTimer timer_;
};

}  // namespace

class TypesPin : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "types-pin.json")

 public:
  QObject* create(const QString&, const QString&) override { return new Typist; }  // Qt's to delete
};

#include "TypesPin.moc"
