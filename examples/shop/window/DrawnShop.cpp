#include "examples/shop/window/DrawnShop.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <stdexcept>
#include <unistd.h>

#include "examples/shop/Shop.h"
#include "examples/shop/window/QtDriver.h"
#include "examples/shop/window/ShopCounter.h"
#include "examples/shop/window/Warnings.h"
#include "orlixkit/resources/CompiledBundle.h"
#include "shell/OrlixShell.h"
#include "shell/QtPorts.h"

namespace orlix::shop {

namespace {

constexpr QSize kPortrait(375, 667);

/// The toolkit's arguments: none but a program's name.
struct Arguments {
  int count = 1;
  char name[11] = "orlix-shop";
  char* values[2] = {name, nullptr};
};

/// What the toolkit looks for in the environment, where nobody has said otherwise.
void prepareEnvironment() {
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

Ports drawnPorts(const ShopOptions& options, QQmlEngine& engine) {
  try {
    return shell::makeQtPorts({.applicationName = "orlix-shop",
                               .stateDirectory = options.state,
                               .anchorFile = options.anchor,
                               .resourceDirectories = {},
                               .bundles = {std::make_shared<CompiledBundle>()},
                               .logTarget = LogTarget::syslogAndStderr,
                               .location = options.location},
                              engine);
  } catch (const std::runtime_error& error) {
    throw UsageError(error.what());
  }
}

/// The shop's own drawing, filling the window.
std::unique_ptr<QQuickItem> drawCounter(QQmlEngine& engine, QQuickWindow& window,
                                        ShopCounter& counter) {
  QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/orlix/shop/Main.qml")));
  std::unique_ptr<QQuickItem> made(qobject_cast<QQuickItem*>(component.createWithInitialProperties(
      {{QStringLiteral("shop"), QVariant::fromValue<QObject*>(&counter)}})));
  if (!made) {
    throw std::runtime_error("the shop cannot be drawn: " + component.errorString().toStdString());
  }
  made->setParentItem(window.contentItem());
  const auto fill = [&window, item = made.get()] { item->setSize(window.size()); };
  QObject::connect(&window, &QWindow::widthChanged, made.get(), fill);
  QObject::connect(&window, &QWindow::heightChanged, made.get(), fill);
  fill();
  return made;
}

}  // namespace

void runDrawn(const ShopOptions& options, std::ostream& out, std::ostream& err) {
  const std::unique_ptr<ScriptSource> script =
      options.script ? openScript(*options.script) : nullptr;
  prepareEnvironment();
  shell::OrlixShell::initialize();
  Arguments arguments;
  const QGuiApplication application(arguments.count, arguments.values);
  const Warnings warnings;
  QQmlEngine engine;
  const Ports ports = drawnPorts(options, engine);
  QQuickWindow window;
  window.setTitle(QStringLiteral("Corner Shop"));
  window.resize(kPortrait);
  Shop shop(options, ports, out, err);
  shell::prepareEngine(engine, ports.bundle);
  ShopCounter counter(shop.hostScreen(), shop.outcomes(), options.system);
  const std::unique_ptr<QQuickItem> drawn = drawCounter(engine, window, counter);
  shell::ScreenPresenter presenter(engine, window);
  QObject::connect(&presenter, &shell::ScreenPresenter::emptied, &counter,
                   [&] { ports.mainQueue->async([&] { counter.leftAlone(); }); });
  shop.drawnBy(&presenter);
  window.show();
  window.requestActivate();
  drawn->forceActiveFocus();
  struct AtEnd {
    Shop& shop;
    ~AtEnd() { shop.drawnBy(nullptr); }
  } const atEnd{shop};
  if (!script) {
    QGuiApplication::exec();
    return;
  }
  QtDriver driver(presenter, ports.mainQueue, options.snapshots);
  shop.run(*script, driver);
  if (!warnings.texts().isEmpty()) {
    throw ScriptError("the drawing warned: " + warnings.texts().join("; ").toStdString());
  }
}

}  // namespace orlix::shop
