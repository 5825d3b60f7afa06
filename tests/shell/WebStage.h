// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/testing/MemoryLog.h"
#include "shell/QtMainQueue.h"
#include "shell/WebEngineLoader.h"
#include "shell/webengine/QtWebView.h"
#include "shell/webengine/QtWebViews.h"
#include "tests/ports/WebViewContract.h"
#include "tests/posix/TlsServer.h"

namespace orlix::shell {

inline const Identity& testRoot() {
  static const Identity made = makeIdentity({.commonName = "Test root", .authority = true});
  return made;
}

/// A window with the web engine's views in it.
class WebStage : public WebViewUser {
 public:
  WebStage() {
    window.resize(400, 500);
    window.show();
  }
  void place(QtWebView& view) {
    view.item()->setParentItem(window.contentItem());
    view.item()->setSize(window.size());
  }
  std::shared_ptr<QtWebView> newView() {
    auto view = std::static_pointer_cast<QtWebView>(views.newWebView());
    view->setNavigationDelegate(reader);
    place(*view);
    return view;
  }
  /// Runs until `done` holds, for 20 seconds at most.
  void runUntil(const std::function<bool()>& done) override {
    bool late = false;
    QTimer guard;
    QObject::connect(&guard, &QTimer::timeout, &guard, [this, &late] {
      late = true;
      queue->async([] {});
    });
    guard.start(std::chrono::seconds(20));
    queue->runUntil([&] { return done() || late; });
  }
  /// Lets the engine come to rest: a view beside loads two pages meanwhile.
  void settle() {
    if (!beside_) {
      beside_ = views.newWebView();
    }
    const auto ear = std::make_shared<PageReader>();
    beside_->setNavigationDelegate(ear);
    for (std::size_t i = 1; i <= 2; ++i) {
      beside_->loadHtmlString("<p>elsewhere</p>");
      runUntil([&] { return ear->heard.size() >= i; });
    }
  }

  QQmlEngine engine;
  std::shared_ptr<QtMainQueue> queue = std::make_shared<QtMainQueue>(std::make_shared<MemoryLog>());
  QtWebViews views{engine,
                   webEngineServices(queue, [] { return std::vector<Bytes>{testRoot().der()}; })};
  QQuickWindow window;

 private:
  std::shared_ptr<WebView> beside_;
};

}  // namespace orlix::shell
