// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/window/DrawnShop.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <stdexcept>
#include <unistd.h>

#include "examples/shop/window/QtDriver.h"
#include "examples/shop/window/Warnings.h"
#include "shell/MakeItem.h"
#include "shell/OrlixShell.h"
#include "shell/QtPorts.h"

namespace orlix::shop {

namespace {

/// The toolkit's arguments: none but a program's name.
struct Arguments {
  int count = 1;
  char name[11] = "orlix-shop";
  char* values[2] = {name, nullptr};
};

Ports drawnPorts(const ShopOptions& options, QQmlEngine& engine) {
  try {
    return shell::makeQtPorts({.applicationName = "orlix-shop",
                               .stateDirectory = options.state,
                               .anchorFile = options.anchor,
                               .resourceDirectories = {},
                               .logTarget = LogTarget::syslogAndStderr,
                               .location = options.location},
                              engine);
  } catch (const std::runtime_error& error) {
    throw UsageError(error.what());
  }
}

}  // namespace

void DrawnShop::prepareEnvironment() {
  const bool display =
      qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
  if (!display && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
  }
  if (geteuid() == 0) {
    // The web engine does not start as root otherwise.
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
  }
}

DrawnShop::DrawnShop(const ShopOptions& options, std::ostream& out, std::ostream& progress)
    : options_(options),
      ports_(drawnPorts(options, engine_)),
      shop_(options, ports_, out, progress) {
  window_.setTitle(QStringLiteral("Corner Shop"));
  window_.resize(options.window.first, options.window.second);
  shell::prepareEngine(engine_, ports_.bundle);
  counter_ = std::make_unique<ShopCounter>(shop_.hostScreen(), shop_.outcomes(), shop_.visit(),
                                           options.system);
  drawCounter();
  if (options.messages) {
    messages_ = std::make_unique<MessageLines>(
        *options.messages, [this](const QString& line) { counter_->addMessage(line); });
  }
  presenter_ = std::make_unique<shell::ScreenPresenter>(engine_, window_);
  QObject::connect(presenter_.get(), &shell::ScreenPresenter::emptied, counter_.get(), [this] {
    // The outcome comes by the main queue once the screens are gone, so only what
    // runs after that can tell that none has come.
    const auto queue = ports_.mainQueue;
    queue->async([this, queue] { queue->async([this] { counter_->leftAlone(); }); });
  });
  shop_.drawnBy(presenter_.get());
  window_.show();
  window_.requestActivate();
  drawn_->forceActiveFocus();
}

DrawnShop::~DrawnShop() { shop_.drawnBy(nullptr); }

void DrawnShop::drawCounter() {
  QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/orlix/shop/Main.qml")));
  drawn_ = shell::makeItem(
      component, {{QStringLiteral("shop"), QVariant::fromValue<QObject*>(counter_.get())}});
  if (!drawn_) {
    throw std::runtime_error("the shop cannot be drawn: " + shell::reasonOf(component));
  }
  drawn_->setParentItem(window_.contentItem());
  const auto fill = [this] { drawn_->setSize(window_.size()); };
  QObject::connect(&window_, &QWindow::widthChanged, drawn_.get(), fill);
  QObject::connect(&window_, &QWindow::heightChanged, drawn_.get(), fill);
  fill();
}

void DrawnShop::run(ScriptSource& script) {
  const Warnings warnings;
  QtDriver driver(*presenter_, ports_.mainQueue, options_.snapshots);
  shop_.run(script, driver);
  if (!warnings.texts().isEmpty()) {
    throw ScriptError("the drawing warned: " + warnings.texts().join("; ").toStdString());
  }
}

void runDrawn(const ShopOptions& options, std::ostream& out, std::ostream& err) {
  const std::unique_ptr<ScriptSource> script =
      options.script ? openScript(*options.script) : nullptr;
  DrawnShop::prepareEnvironment();
  shell::OrlixShell::initialize();
  Arguments arguments;
  const QGuiApplication application(arguments.count, arguments.values);
  DrawnShop shop(options, out, err);
  if (script) {
    shop.run(*script);
  } else {
    QGuiApplication::exec();
  }
}

}  // namespace orlix::shop
