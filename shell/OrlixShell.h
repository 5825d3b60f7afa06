// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQmlEngine>
#include <QQuickWindow>
#include <filesystem>
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
  /// Loads the web engine, if its package is installed, and prepares the process for it; call it
  /// before the application object is made. The engine then ignores the environment and the
  /// command line, also for the application's own views; OpenGL contexts are shared, Qt Quick draws
  /// by OpenGL, and Qt runs its own event loop, not GLib's. Without the engine, or without this
  /// call, a card whose issuer wants to show a page cannot be used: the user reads so, and the
  /// checkout ends as after Cancel.
  ///
  /// `webEngine` is the folder of the plug-in, when it is not the installed one.
  static void initialize(const std::filesystem::path& webEngine = {});

  /// `engine` and `window` must outlive the shell. Resources of `options` override the library's
  /// own. Throws std::runtime_error when the state directory or the anchor file cannot be used, or
  /// a QML module that the screens import is not installed; its text says which.
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
