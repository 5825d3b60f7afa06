#pragma once

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryLog.h"
#include "shell/QtMainQueue.h"
#include "shell/QtWebView.h"
#include "shell/QtWebViews.h"
#include "tests/platform/TlsServer.h"

namespace orlix::shell {

inline const Identity& testRoot() {
  static const Identity made = makeIdentity({.commonName = "Test root", .authority = true});
  return made;
}

/// What a page told the library.
struct Reader : WebViewDelegate {
  void didFinishNavigation() override { heard.emplace_back("finished"); }
  void didFailNavigation(const std::string& why) override { heard.push_back("failed: " + why); }
  void webContentProcessDidTerminate() override { heard.emplace_back("died"); }
  std::vector<std::string> heard;
};

/// A window with the web engine's views in it.
class WebStage {
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
  void runUntil(const std::function<bool()>& done) {
    bool late = false;
    QTimer guard;
    QObject::connect(&guard, &QTimer::timeout, &guard, [this, &late] {
      late = true;
      queue->async([] {});
    });
    guard.start(std::chrono::seconds(20));
    queue->runUntil([&] { return done() || late; });
  }
  /// What is heard next of a load that ends some way.
  std::string heardNext() {
    runUntil([this] { return !reader->heard.empty(); });
    if (reader->heard.empty()) {
      return "nothing";
    }
    std::string first = reader->heard.front();
    reader->heard.erase(reader->heard.begin());
    return first;
  }
  /// The script's text, or "failed: " and why.
  std::string ask(QtWebView& view, const std::string& script) {
    const auto answer = std::make_shared<std::string>("no answer");
    view.evaluateJavaScript(script, [answer](const ScriptResult& result) {
      *answer = result.value.value_or("failed: " + result.error);
    });
    runUntil([answer] { return *answer != "no answer"; });
    return *answer;
  }
  /// Lets the engine come to rest: a view beside loads two pages meanwhile.
  void settle() {
    if (!beside_) {
      beside_ = views.newWebView();
    }
    const auto ear = std::make_shared<Reader>();
    beside_->setNavigationDelegate(ear);
    for (std::size_t i = 1; i <= 2; ++i) {
      beside_->loadHtmlString("<p>elsewhere</p>");
      runUntil([&] { return ear->heard.size() >= i; });
    }
  }

  QQmlEngine engine;
  std::shared_ptr<QtMainQueue> queue = std::make_shared<QtMainQueue>(std::make_shared<MemoryLog>());
  QtWebViews views{engine, queue, [] { return std::vector<Bytes>{testRoot().der()}; }};
  QQuickWindow window;
  std::shared_ptr<Reader> reader = std::make_shared<Reader>();

 private:
  std::shared_ptr<WebView> beside_;
};

}  // namespace orlix::shell
