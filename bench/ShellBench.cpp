// SPDX-License-Identifier: Apache-2.0

// Prints the latency of the drawn shell, measured in one run: the time from the host's call to the
// drawn waiting screen, against an empty window of the same size, and the longest time for which a
// checkout blocks input on the main thread.

#include <QGuiApplication>
#include <QQmlComponent>
#include <chrono>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <unistd.h>

#include <fmt/format.h>

#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ui/TextField.h"
#include "sandbox/Sandbox.h"
#include "shell/FrameWatch.h"
#include "shell/OrlixShell.h"
#include "shell/ScreenPresenter.h"

namespace {

using namespace orlix;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int kRounds = 5;
constexpr Milliseconds kMostBehindAnEmptyWindow{100};
constexpr Milliseconds kLongestStall{16};

struct Outcome : OXOrlixDelegate {
  void orlixPaymentSucceededWithTransactionReference(const std::string&) override { paid = true; }
  void orlixPaymentFailedWithTransactionReference(const std::string&) override { fail("refused"); }
  void orlixError(int code) override { fail(fmt::format("error {}", code)); }
  void orlixUserDidCancel() override { fail("cancelled"); }
  void orlixUserRegistered() override { fail("registered"); }
  void orlixUserCompletedWallet() override { fail("closed"); }
  void orlixInvalidCode() override { fail("invalid code"); }
  void fail(const std::string& why) const {
    throw std::runtime_error("the checkout ended otherwise: " + why);
  }
  bool paid = false;
};

/// From the description of an empty window to its first frame.
Milliseconds emptyWindow() {
  const auto begun = std::chrono::steady_clock::now();
  QQmlEngine engine;
  QQmlComponent component(&engine);
  component.setData("import QtQuick\nWindow { width: 375; height: 667; visible: true }", QUrl());
  const std::unique_ptr<QObject> made(component.create());
  auto& window = *qobject_cast<QQuickWindow*>(made.get());
  QEventLoop loop;
  QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit,
                   Qt::QueuedConnection);
  loop.exec();
  return std::chrono::steady_clock::now() - begun;
}

struct Felt {
  Milliseconds firstFrame{0};
  Milliseconds stall{0};
};

/// One checkout in an existing window, paid by PIN as soon as the screen asks for it.
Felt checkout(sandbox::Sandbox& server, const std::filesystem::path& state) {
  QQmlEngine engine;
  QQuickWindow window;
  window.resize(375, 667);
  shell::OrlixShell library(engine, window,
                            {.applicationName = "orlix-bench",
                             .stateDirectory = state,
                             .anchorFile = server.anchorPath(),
                             .resourceDirectories = {},
                             .bundles = {},
                             .logTarget = LogTarget::stderrOnly,
                             .location = {}},
                            {server.base(), server.base(), server.terms()});
  window.show();
  shell::FrameWatch watch(window);
  const auto& queue = Host::current().ports().mainQueue;
  // A host has started long before its user pays.
  watch.begin([] { return true; });
  for (int i = 0; i < 300; ++i) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  const auto isOnTop = [&](const char* identifier) {
    const shell::DrawnScreen* const top = library.presenter().top();
    return top != nullptr && top->controller()->identifier() == identifier;
  };
  const auto outcome = std::make_shared<Outcome>();
  const auto facade = OXOrlix::make();
  watch.begin([&] { return isOnTop("Waiting"); });
  facade->checkout({.code = "FIXED-25",
                    .apiKey = "bench-key",
                    .system = kTestSystem,
                    .controller = library.hostScreen(),
                    .delegate = outcome});
  bool typed = false;
  queue->runUntil([&] {
    if (!typed && isOnTop("Product")) {
      typed = true;
      queue->async([screen = library.presenter().top()->controller()] {
        std::dynamic_pointer_cast<TextField>(screen->outletNamed("pinField"))->setText("1234");
        screen->performAction("proceedAction");
      });
    }
    return outcome->paid;
  });
  const auto frame = watch.firstFrame();
  if (!frame) {
    throw std::runtime_error("the waiting screen was never drawn");
  }
  return {*frame, watch.longestStall()};
}

bool row(const char* name, Milliseconds value, Milliseconds target) {
  const bool met = value <= target;
  fmt::print("{:<58} {:>8.1f} ms  (at most {:.0f}) {}\n", name, value.count(), target.count(),
             met ? "" : "MISSED");
  return met;
}

int run() {
  const auto folder = std::filesystem::temp_directory_path() / "orlix-shell-bench";
  sandbox::Options options;
  options.enrolled = true;
  options.onEvent = [](std::string_view) {};
  sandbox::Sandbox server(std::move(options));
  server.start();
  // Each the best of the rounds: what else the machine does only adds.
  Milliseconds empty = emptyWindow();
  Felt felt = checkout(server, folder);
  for (int round = 1; round < kRounds; ++round) {
    empty = std::min(empty, emptyWindow());
    const Felt again = checkout(server, folder);
    felt = {std::min(felt.firstFrame, again.firstFrame), std::min(felt.stall, again.stall)};
  }
  fmt::print("empty window to its first frame: {:.1f} ms\n", empty.count());
  const bool frame = row("first frame of the waiting screen, more than that",
                         felt.firstFrame - empty, kMostBehindAnEmptyWindow);
  const bool stall =
      row("longest time of a checkout without listening to a touch", felt.stall, kLongestStall);
  return frame && stall ? 0 : 1;
}

}  // namespace

int main(int count, char** values) {
  try {
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
      qputenv("QT_QPA_PLATFORM", "offscreen");
      qputenv("QT_QUICK_BACKEND", "software");
    }
    if (geteuid() == 0) {
      qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    }
    shell::OrlixShell::initialize();
    const QGuiApplication application(count, values);
    return run();
  } catch (const std::exception& failure) {
    fmt::print(stderr, "orlix-shell-bench: {}\n", failure.what());
    return 1;
  }
}
