// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/WebView.h"

namespace orlix {

/// A web view whose pages are played by a test. Main thread.
class FakeWebView : public WebView {
 public:
  using OnLoad = std::function<void(FakeWebView&)>;

  FakeWebView(std::shared_ptr<MainQueue> mainQueue, OnLoad onLoad);
  ~FakeWebView() override;

  // What the library requested.
  /// The last HTML text or address to be loaded; empty when the other kind was loaded last.
  const std::string& html() const { return html_; }
  const std::string& address() const { return address_; }
  int loads() const { return loads_; }
  const std::vector<std::string>& scripts() const { return scripts_; }
  bool isLive() const { return live_; }
  bool hasDelegate() const { return !delegate_.expired(); }

  // What the page does. The first three reach the delegate through the main queue; those pending
  // when loading is stopped or restarted are dropped.
  /// A page has been loaded; `markup` is its outer HTML. Pending scripts of the previous page fail.
  /// No effect before a load was requested, or after it was stopped or the process has ended.
  void finishNavigation(std::string_view markup);
  void failNavigation(std::string description);
  /// Empties the view; pending scripts fail.
  void killProcess();
  /// From now on script results wait for `releaseScripts`, as on a slow page.
  void holdScripts() { holding_ = true; }
  void releaseScripts();
  /// Result of any script but the one that reads the markup; the empty text by default.
  std::function<ScriptResult(const std::string& script)> onScript;

  void setNavigationDelegate(std::weak_ptr<WebViewDelegate> delegate) override;
  void load(const WebContent& content) override;
  void stopLoading() override;
  void evaluateJavaScript(const std::string& script,
                          std::function<void(const ScriptResult&)> completion) override;

 private:
  struct PendingScript {
    std::string script;
    std::function<void(const ScriptResult&)> completion;
  };
  void beginLoad(std::string html, std::string address);
  void tell(std::function<void(WebViewDelegate&)> callback);
  void settle(const PendingScript& pending, ScriptResult result);
  void failPendingScripts(std::string_view reason);
  ScriptResult run(const std::string& script) const;

  std::shared_ptr<MainQueue> mainQueue_;
  OnLoad onLoad_;
  std::weak_ptr<WebViewDelegate> delegate_;
  std::string html_;
  std::string address_;
  std::optional<SecretString> markup_;  ///< of the loaded page
  bool live_ = false;                   ///< a page that may navigate is loaded
  int loads_ = 0;
  std::vector<std::string> scripts_;
  std::deque<PendingScript> pendingScripts_;
  bool holding_ = false;
  /// Shared with pending callbacks; replaced to cancel them.
  std::shared_ptr<const int> loading_ = std::make_shared<const int>(0);
};

/// Makes fake web views and keeps references to them for the test.
class FakeWebViews : public WebViews {
 public:
  explicit FakeWebViews(std::shared_ptr<MainQueue> mainQueue) : mainQueue_(std::move(mainQueue)) {}

  /// Runs on the main queue after a load has begun, to play the site. May be empty.
  FakeWebView::OnLoad onLoad;

  /// The most recently made view that still exists; null when there is none.
  std::shared_ptr<FakeWebView> last() const;
  std::size_t living() const;

  std::shared_ptr<WebView> newWebView() override;

 private:
  std::shared_ptr<MainQueue> mainQueue_;
  std::vector<std::weak_ptr<FakeWebView>> views_;
};

}  // namespace orlix
