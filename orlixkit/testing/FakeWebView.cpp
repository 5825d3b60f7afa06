// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/FakeWebView.h"

#include <algorithm>
#include <memory>
#include <strings.h>

#include <curl/urlapi.h>

namespace orlix {

namespace {

using Url = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

std::string partOf(const Url& url, CURLUPart part) {
  char* text = nullptr;
  const CURLUcode result = curl_url_get(url.get(), part, &text, 0);
  const std::unique_ptr<char, decltype(&curl_free)> owned(text, curl_free);
  return result == CURLUE_OK ? std::string(text) : std::string();
}

/// Whether the address is https or loopback. Browsers treat a backslash as a slash.
bool isSecure(const std::string& address) {
  const Url url(curl_url(), curl_url_cleanup);
  const CURLUcode result =
      curl_url_set(url.get(), CURLUPART_URL, address.c_str(), CURLU_NON_SUPPORT_SCHEME);
  if (result != CURLUE_OK || address.find('\\') != std::string::npos) {
    return false;
  }
  const std::string scheme = partOf(url, CURLUPART_SCHEME);
  const std::string host = partOf(url, CURLUPART_HOST);
  const bool isHere =
      ::strcasecmp(host.c_str(), "localhost") == 0 || host == "127.0.0.1" || host == "[::1]";
  return (scheme == "https" && !host.empty()) || (scheme == "http" && isHere);
}

}  // namespace

FakeWebView::FakeWebView(std::shared_ptr<MainQueue> mainQueue, OnLoad onLoad)
    : mainQueue_(std::move(mainQueue)), onLoad_(std::move(onLoad)) {}

FakeWebView::~FakeWebView() { failPendingScripts("The page view was released."); }

void FakeWebView::finishNavigation(std::string_view markup) {
  if (!live_) {
    return;
  }
  markup_ = SecretString(markup);
  failPendingScripts("The page was left before it answered.");
  tell([](WebViewDelegate& delegate) { delegate.didFinishNavigation(); });
}

void FakeWebView::failNavigation(std::string description) {
  if (!live_) {
    return;
  }
  tell([description = std::move(description)](WebViewDelegate& delegate) {
    delegate.didFailNavigation(description);
  });
}

void FakeWebView::killProcess() {
  markup_.reset();
  live_ = false;
  failPendingScripts("The page's process has ended.");
  tell([](WebViewDelegate& delegate) { delegate.webContentProcessDidTerminate(); });
}

void FakeWebView::releaseScripts() {
  holding_ = false;
  for (const PendingScript& pending : std::exchange(pendingScripts_, {})) {
    settle(pending, run(pending.script));
  }
}

void FakeWebView::setNavigationDelegate(std::weak_ptr<WebViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void FakeWebView::load(const WebContent& content) {
  if (!content.address || isSecure(*content.address)) {
    beginLoad(content.html, content.address.value_or(""));
  } else {
    live_ = true;
    failNavigation("The address " + *content.address + " is not secure.");
  }
}

void FakeWebView::beginLoad(std::string html, std::string address) {
  loading_ = std::make_shared<const int>(0);
  live_ = true;
  html_ = std::move(html);
  address_ = std::move(address);
  ++loads_;
  if (onLoad_) {
    mainQueue_->async([this, alive = std::weak_ptr(loading_)] {
      if (!alive.expired()) {
        onLoad_(*this);
      }
    });
  }
}

void FakeWebView::stopLoading() {
  loading_ = std::make_shared<const int>(0);
  live_ = false;
  failPendingScripts("Loading was stopped.");
}

void FakeWebView::evaluateJavaScript(const std::string& script,
                                     std::function<void(const ScriptResult&)> completion) {
  scripts_.push_back(script);
  PendingScript pending{script, std::move(completion)};
  if (holding_) {
    pendingScripts_.push_back(std::move(pending));
  } else {
    settle(pending, run(script));
  }
}

void FakeWebView::tell(std::function<void(WebViewDelegate&)> callback) {
  mainQueue_->async([this, alive = std::weak_ptr(loading_), callback = std::move(callback)] {
    if (alive.expired()) {
      return;
    }
    if (const std::shared_ptr<WebViewDelegate> delegate = delegate_.lock()) {
      callback(*delegate);
    }
  });
}

void FakeWebView::settle(const PendingScript& pending, ScriptResult result) {
  if (pending.completion) {
    mainQueue_->async(
        [completion = pending.completion, result = std::move(result)] { completion(result); });
  }
}

void FakeWebView::failPendingScripts(std::string_view reason) {
  if (pendingScripts_.empty()) {
    return;  // without allocating: the destructor calls this
  }
  for (const PendingScript& pending : std::exchange(pendingScripts_, {})) {
    settle(pending, {std::nullopt, std::string(reason)});
  }
}

ScriptResult FakeWebView::run(const std::string& script) const {
  if (!markup_) {
    return {std::nullopt, "There is no page."};
  }
  if (script == "document.documentElement.outerHTML") {
    return {markup_, {}};
  }
  return onScript ? onScript(script) : ScriptResult{SecretString(), {}};
}

std::shared_ptr<FakeWebView> FakeWebViews::last() const {
  for (auto view = views_.rbegin(); view != views_.rend(); ++view) {
    if (auto living = view->lock()) {
      return living;
    }
  }
  return nullptr;
}

std::size_t FakeWebViews::living() const {
  return static_cast<std::size_t>(std::count_if(views_.begin(), views_.end(),
                                                [](const auto& view) { return !view.expired(); }));
}

std::shared_ptr<WebView> FakeWebViews::newWebView() {
  auto made = std::make_shared<FakeWebView>(mainQueue_, [this](FakeWebView& view) {
    if (const FakeWebView::OnLoad play = onLoad) {
      play(view);
    }
  });
  views_.push_back(made);
  return made;
}

}  // namespace orlix
