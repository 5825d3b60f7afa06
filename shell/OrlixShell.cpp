// SPDX-License-Identifier: Apache-2.0

#include "shell/OrlixShell.h"

#include <utility>

#include <QtWebEngineQuick/qtwebenginequickglobal.h>

#include "shell/QtPorts.h"
#include "shell/ScreenPresenter.h"
#include "shell/WebEngineSetUp.h"

namespace orlix::shell {

void OrlixShell::initialize() {
  // With GLib's event loop the web engine hung in 5 of 12 runs, when the main queue ran a nested
  // loop under load while a large page was read; with Qt's own dispatcher in none of 28.
  if (!qEnvironmentVariableIsSet("QT_NO_GLIB")) {
    qputenv("QT_NO_GLIB", "1");
  }
  setUpWebEngine();
  QtWebEngineQuick::initialize();
}

OrlixShell::OrlixShell(QQmlEngine& engine, QQuickWindow& window, PosixOptions options,
                       Deployment deployment) {
  const Ports ports = makeQtPorts(options, engine);
  installOrlixKit(std::make_shared<Host>(ports, std::move(deployment)));
  prepareEngine(engine, ports.bundle);
  presenter_ = std::make_unique<ScreenPresenter>(engine, window);
  Application& application = Host::current().application();
  application.setObserver(presenter_.get());
  application.showMainWindow(hostScreen_);
}

OrlixShell::~OrlixShell() {
  Host::current().application().setObserver(nullptr);
  presenter_.reset();
  Host::uninstall();
}

}  // namespace orlix::shell
