// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Secret.h"

namespace orlix {

class WebViewDelegate {
 public:
  virtual ~WebViewDelegate() = default;
  /// A page has been loaded and is shown. Also called for every further page. A page whose script
  /// navigates away before it has been loaded is not reported, only the page that follows.
  virtual void didFinishNavigation() = 0;
  /// A page could not be loaded: the requested one or one that the shown page navigates to; the
  /// view shows what it showed before.
  virtual void didFailNavigation(const std::string& description) = 0;
  /// The process behind the page has died; the view is empty.
  virtual void webContentProcessDidTerminate() = 0;
};

/// What a view is to show: the page at `address`, or `html` as a page without base address.
struct WebContent {
  std::string html;
  std::optional<std::string> address;
};

/// Result of a script: a text (numbers and other values in their text form), or why it failed. The
/// text is a secret, since a page may hold the result of an authentication.
struct ScriptResult {
  std::optional<SecretString> value;
  std::string error;
};

/// A view that shows web pages. It persists nothing: no disk cache, no cookies. It reads no local
/// file, allows no script to open a window, and loads only https and loopback addresses: navigation
/// to another address is refused with a log line and no callback, and the page stays. It trusts the
/// same certificates as the transport.
///
/// Main thread only, callbacks included. No callback after release or `stopLoading`, except that
/// pending script results are delivered with an error.
class WebView {
 public:
  virtual ~WebView() = default;
  virtual void setNavigationDelegate(std::weak_ptr<WebViewDelegate> delegate) = 0;
  virtual void load(const WebContent& content) = 0;
  virtual void stopLoading() = 0;
  virtual void evaluateJavaScript(const std::string& script,
                                  std::function<void(const ScriptResult&)> completion) = 0;

  void loadHtmlString(const std::string& html) { load({.html = html, .address = {}}); }
  void loadRequest(const std::string& address) { load({.html = {}, .address = address}); }
};

class WebViews {
 public:
  virtual ~WebViews() = default;
  /// Null where the host's interface cannot show web pages (a run without a display toolkit).
  virtual std::shared_ptr<WebView> newWebView() = 0;
};

}  // namespace orlix
