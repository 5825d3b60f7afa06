// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQmlEngine>
#include <QQuickWindow>
#include <memory>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/posix/PosixPorts.h"

namespace orlix::shell {

class ScreenPresenter;

/// The library in a Qt Quick application: makes the ports, installs the library, and draws
/// presented screens over the application's window. One at a time, on the application's thread; the
/// destructor ends all work and uninstalls the library.
///
///     orlix::shell::OrlixShell::initialize();            // before the application object
///     QGuiApplication application(count, values);
///     ...
///     orlix::shell::OrlixShell shell(engine, window, {.applicationName = "…", …}, {…});
///     OXOrlix::make()->checkout({…, .controller = shell.hostScreen(), .delegate = …});
class OrlixShell {
 public:
  /// Prepares the web engine; call it before the application object is made. The engine then
  /// ignores the environment and the command line (see WebEngineSetUp.h), also for the
  /// application's own views.
  static void initialize();

  /// `engine` and `window` must outlive the shell. Resources of `options` override the library's
  /// own. Throws std::runtime_error when the state directory or the anchor file cannot be used.
  OrlixShell(QQmlEngine& engine, QQuickWindow& window, PosixOptions options, Deployment deployment);
  ~OrlixShell();
  OrlixShell(const OrlixShell&) = delete;
  OrlixShell& operator=(const OrlixShell&) = delete;

  /// The controller to pass to the entry calls; represents the application's window.
  const std::shared_ptr<ViewController>& hostScreen() const { return hostScreen_; }
  ScreenPresenter& presenter() { return *presenter_; }

 private:
  std::shared_ptr<ViewController> hostScreen_ = std::make_shared<ViewController>();
  std::unique_ptr<ScreenPresenter> presenter_;
};

}  // namespace orlix::shell
