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
  static const Identity made =
      makeIdentity({.commonName = "OrlixKit test root", .authority = true});
  return made;
}

/// What a page told the library.
struct Reader : WebViewDelegate {
  void didFinishNavigation() override { heard.emplace_back("finished"); }
  void didFailNavigation(const std::string& description) override {
    heard.push_back("failed: " + description);
  }
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
  std::shared_ptr<QtWebView> newView() {
    auto view = std::static_pointer_cast<QtWebView>(views.newWebView());
    view->setNavigationDelegate(reader);
    view->item()->setParentItem(window.contentItem());
    view->item()->setSize(window.size());
    return view;
  }
  /// Runs until `done` holds; false when it did not within 20 seconds.
  bool runUntil(const std::function<bool()>& done) {
    bool late = false;
    QTimer::singleShot(std::chrono::seconds(20), &window, [this, &late] {
      late = true;
      queue->async([] {});
    });
    queue->runUntil([&] { return done() || late; });
    return !late;
  }
  /// What is heard next, for a load that ends some way.
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
  std::shared_ptr<MemoryLog> log = std::make_shared<MemoryLog>();
  std::shared_ptr<QtMainQueue> queue = std::make_shared<QtMainQueue>(log);
  std::vector<Bytes> anchors{testRoot().der()};
  QtWebViews views{engine, queue, [this] { return anchors; }};
  QQuickWindow window;
  std::shared_ptr<Reader> reader = std::make_shared<Reader>();

 private:
  std::shared_ptr<WebView> beside_;
};

/// A site that answers each request by `answer`, and remembers them.
class Site {
 public:
  using Answer = std::function<std::string(const SeenRequest&)>;

  explicit Site(Answer answer, const Identity& identity = makeIdentity({}, &testRoot()))
      : answer_(std::move(answer)), server_(identity, [this](TlsConnection& connection) {
          while (const std::optional<SeenRequest> request = connection.read()) {
            std::string bytes;
            {
              const std::lock_guard guard(lock_);
              requests_.push_back(*request);
              bytes = answer_(*request);
            }
            connection.write(bytes);
          }
        }) {}
  std::string address(const std::string& path, const std::string& host = "127.0.0.1") const {
    return server_.address(path, host);
  }
  std::vector<SeenRequest> requests() {
    const std::lock_guard guard(lock_);
    return requests_;
  }

 private:
  std::mutex lock_;
  Answer answer_;
  std::vector<SeenRequest> requests_;
  TlsServer server_;
};

inline std::string htmlAnswer(const std::string& body, const std::string& fields = "",
                              int status = 200) {
  return httpAnswer(status, "Content-Type: text/html\r\n" + fields, body);
}

}  // namespace orlix::shell
