// SPDX-License-Identifier: Apache-2.0

#include "shell/OrlixShell.h"

#include <utility>

#include "shell/QtPorts.h"
#include "shell/ScreenPresenter.h"
#include "shell/WebEngineLoader.h"

/// Made by Qt's build tools: registers the types of the QML module.
void qml_register_types_OrlixKit();

namespace orlix::shell {

void OrlixShell::initialize(const std::filesystem::path& webEngine) {
  // From a static library the linker takes the types' registration only when something refers to
  // it.
  [[maybe_unused]] static void (*volatile const kept)() = &qml_register_types_OrlixKit;
  loadWebEngine(webEngine);
}

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

void OrlixShell::setLook(const LookOptions& options) { presenter_->setLook(options); }

OrlixShell::~OrlixShell() {
  Host::current().application().setObserver(nullptr);
  presenter_.reset();
  Host::uninstall();
}

}  // namespace orlix::shell
