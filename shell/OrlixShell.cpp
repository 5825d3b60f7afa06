// SPDX-License-Identifier: Apache-2.0

#include "shell/OrlixShell.h"

#include <utility>

#include "shell/QtPorts.h"
#include "shell/ScreenPresenter.h"
#include "shell/WebEngineLoader.h"

namespace orlix::shell {

void OrlixShell::initialize(const std::filesystem::path& webEngine) { loadWebEngine(webEngine); }

OrlixShell::OrlixShell(QQmlEngine& engine, QQuickWindow& window, PosixOptions options,
                       Deployment deployment) {
  const Ports ports = makeQtPorts(options, engine);
  prepareEngine(engine, ports.bundle);
  installOrlixKit(std::make_shared<Host>(ports, std::move(deployment)));
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
