#pragma once

#include <QQmlEngine>
#include <QQuickWindow>
#include <memory>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/platform/posix/PosixPorts.h"

namespace orlix::shell {

class ScreenPresenter;

/// The library in a Qt Quick application: puts it on its ports, installs it, and draws over the
/// application's window what an entry call presents. One at a time, on the application's thread;
/// its release takes the library down again, work under way included.
///
///     orlix::shell::OrlixShell::initialize();            // before the application object
///     QGuiApplication application(count, values);
///     ...
///     orlix::shell::OrlixShell shell(engine, window, {.applicationName = "…", …}, {…});
///     OXOrlix::make()->checkout({…, .controller = shell.hostScreen(), .delegate = …});
class OrlixShell {
 public:
  /// What the web engine needs before the application object is made. The engine then ignores the
  /// environment and the command line (see WebEngineSetUp.h), also for views of the application's
  /// own.
  static void initialize();

  /// `engine` and `window` must outlive the shell. The library's own resources are looked up after
  /// those of `options`. Throws std::runtime_error when the state directory or the anchor file
  /// cannot be used.
  OrlixShell(QQmlEngine& engine, QQuickWindow& window, PosixOptions options, Deployment deployment);
  ~OrlixShell();
  OrlixShell(const OrlixShell&) = delete;
  OrlixShell& operator=(const OrlixShell&) = delete;

  /// Stands for the application's window: the controller to hand to the entry calls.
  const std::shared_ptr<ViewController>& hostScreen() const { return hostScreen_; }
  ScreenPresenter& presenter() { return *presenter_; }

 private:
  std::shared_ptr<ViewController> hostScreen_ = std::make_shared<ViewController>();
  std::unique_ptr<ScreenPresenter> presenter_;
};

}  // namespace orlix::shell
