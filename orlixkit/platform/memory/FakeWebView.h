#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/WebView.h"

namespace orlix {

/// A web view without a web: a test plays the page. Main thread.
class FakeWebView : public WebView {
 public:
  using OnLoad = std::function<void(FakeWebView&)>;

  FakeWebView(std::shared_ptr<MainQueue> mainQueue, OnLoad onLoad);
  ~FakeWebView() override;

  // What the library did.
  /// The last page text or address that was to be loaded; empty when it was the other kind.
  const std::string& html() const { return html_; }
  const std::string& address() const { return address_; }
  int loads() const { return loads_; }
  const std::vector<std::string>& scripts() const { return scripts_; }
  bool isLive() const { return live_; }
  bool hasDelegate() const { return !delegate_.expired(); }

  // What the page does. Each of the first three comes to the delegate through the main queue; what
  // is on its way when loading is stopped, or begins anew, is dropped.
  /// A page has been loaded, `markup` is its outer HTML. Scripts owed by the one before fail.
  /// Nothing happens before a load was asked for, nor once it was stopped or the process has ended:
  /// a page goes nowhere then.
  void finishNavigation(std::string_view markup);
  void failNavigation(std::string description);
  /// Empties the view; the scripts still owed fail.
  void killProcess();
  /// From now on scripts wait for `releaseScripts`, as on a slow page.
  void holdScripts() { holding_ = true; }
  void releaseScripts();
  /// Answers a script other than the one that asks for the markup; the empty text by default.
  std::function<ScriptResult(const std::string& script)> onScript;

  void setNavigationDelegate(std::weak_ptr<WebViewDelegate> delegate) override;
  void load(const WebContent& content) override;
  void stopLoading() override;
  void evaluateJavaScript(const std::string& script,
                          std::function<void(const ScriptResult&)> completion) override;

 private:
  struct Owed {
    std::string script;
    std::function<void(const ScriptResult&)> completion;
  };
  void beginLoad(std::string html, std::string address);
  void tell(std::function<void(WebViewDelegate&)> callback);
  void settle(const Owed& owed, ScriptResult result);
  void failOwed(std::string_view reason);
  ScriptResult run(const std::string& script) const;

  std::shared_ptr<MainQueue> mainQueue_;
  OnLoad onLoad_;
  std::weak_ptr<WebViewDelegate> delegate_;
  std::string html_;
  std::string address_;
  std::optional<SecretString> markup_;  ///< of the page that stands
  bool live_ = false;                   ///< there is a page that may go on
  int loads_ = 0;
  std::vector<std::string> scripts_;
  std::deque<Owed> owed_;
  bool holding_ = false;
  /// Held by this object and what it has set going; replaced when that is to be forgotten.
  std::shared_ptr<const int> loading_ = std::make_shared<const int>(0);
};

/// Makes them and keeps them in sight.
class FakeWebViews : public WebViews {
 public:
  explicit FakeWebViews(std::shared_ptr<MainQueue> mainQueue) : mainQueue_(std::move(mainQueue)) {}

  /// Runs, as a task of the main queue, after a load has begun: plays the site. May be empty.
  FakeWebView::OnLoad onLoad;

  /// The view made last that still lives; none without one.
  std::shared_ptr<FakeWebView> last() const;
  std::size_t living() const;

  std::shared_ptr<WebView> newWebView() override;

 private:
  std::shared_ptr<MainQueue> mainQueue_;
  std::vector<std::weak_ptr<FakeWebView>> views_;
};

}  // namespace orlix
