// SPDX-License-Identifier: Apache-2.0

#include "shell/webengine/QtWebView.h"

#include <QQuickItem>
#include <QQuickWebEngineProfile>
#include <QSslCertificate>
#include <QVariantList>
#include <algorithm>
#include <utility>

#include "shell/QtWebScript.h"
#include "shell/WipedText.h"
#include "shell/webengine/QtWebRequestGuard.h"

namespace orlix::shell {

namespace {

std::string refusalOf(const QUrl& address) {
  return "The address " + address.toEncoded().toStdString() + " is not secure.";
}

std::vector<Bytes> derOf(const QList<QSslCertificate>& chain) {
  std::vector<Bytes> all;
  for (const QSslCertificate& certificate : chain) {
    const QByteArray der = certificate.toDer();
    all.emplace_back(der.begin(), der.end());
  }
  return all;
}

}  // namespace

QtWebView::QtWebView(WebEngineServices services)
    : services_(std::move(services)), guard_(std::make_unique<QtWebRequestGuard>()) {}

QtWebView::~QtWebView() { failPendingScripts("The page view was released."); }

void QtWebView::adopt(std::unique_ptr<QQuickItem> item) {
  item_ = std::move(item);
  auto* const profile = item_->property("profile").value<QQuickWebEngineProfile*>();
  profile->setUrlRequestInterceptor(guard_.get());
}

void QtWebView::setNavigationDelegate(std::weak_ptr<WebViewDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void QtWebView::load(const WebContent& content) {
  beginLoad();
  if (content.address) {
    loadAddress(*content.address);
  } else {
    loadText(content.html);
  }
}

void QtWebView::loadText(const std::string& html) {
  const QString text = QString::fromStdString(html);
  const qsizetype escaped = QUrl::toPercentEncoding(text).size() + 64;  // the scheme before it
  if (escaped > kLargestAddress) {
    fail("A page of " + std::to_string(html.size()) + " bytes is too large to be shown.");
    return;
  }
  QMetaObject::invokeMethod(item_.get(), "loadHtml", Q_ARG(QString, text));
}

void QtWebView::loadAddress(const std::string& address) {
  const QUrl url(QString::fromStdString(address), QUrl::StrictMode);
  if (!url.isValid() || !QtWebRequestGuard::isSecure(url)) {
    fail("The address " + address + " is not secure.");
    return;
  }
  item_->setProperty("url", url);
}

void QtWebView::beginLoad() {
  load_ = std::make_shared<const int>(0);
  progress_ = Progress::asked;
  refused_ = false;
}

void QtWebView::stopLoading() {
  load_ = std::make_shared<const int>(0);
  progress_ = Progress::none;
  QMetaObject::invokeMethod(item_.get(), "stop");
  failPendingScripts("Loading was stopped.");
}

void QtWebView::evaluateJavaScript(const std::string& script,
                                   std::function<void(const ScriptResult&)> completion) {
  PendingScript pending{++lastTicket_, std::move(completion)};
  if (!hasPage_) {
    settle(pending, {std::nullopt, "There is no page."});
    return;
  }
  pendingScripts_.push_back(std::move(pending));
  // The engine reports no exception, so the script catches its own.
  const std::string guarded = "(function(){try{return [true,String((0,eval)(" +
                              quotedForScript(script) +
                              "))]}catch(e){return [false,String(e)]}})()";
  QMetaObject::invokeMethod(item_.get(), "evaluate", Q_ARG(QVariant, lastTicket_),
                            Q_ARG(QVariant, QString::fromStdString(guarded)));
}

void QtWebView::scriptAnswered(int ticket, const QVariant& result) {
  const QVariantList parts = result.toList();
  const QString text = parts.size() == 2 ? parts[1].toString() : QString();
  const auto found =
      std::find_if(pendingScripts_.begin(), pendingScripts_.end(),
                   [ticket](const PendingScript& pending) { return pending.ticket == ticket; });
  if (found != pendingScripts_.end()) {
    const PendingScript pending = std::move(*found);
    pendingScripts_.erase(found);
    if (parts.size() != 2) {
      settle(pending, {std::nullopt, "The page was left before it answered."});
    } else if (parts[0].toBool()) {
      settle(pending, {secretOf(text), {}});
    } else {
      settle(pending, {std::nullopt, text.toStdString()});
    }
  }
  wipeShared(text);
}

void QtWebView::judgeCertificate(QWebEngineCertificateError error) {
  std::string reason = error.description().toStdString();
  // Only an unknown issuer can be remedied by our anchors. All other errors, such as a revoked
  // certificate, remain the engine's decision.
  const bool trusted =
      error.type() == QWebEngineCertificateError::CertificateAuthorityInvalid &&
      services_.trusts(derOf(error.certificateChain()), certificateHostOf(error.url()), reason);
  if (trusted) {
    error.acceptCertificate();
    return;
  }
  services_.log("Certificate validation failed: " + reason);
  error.rejectCertificate();
}

void QtWebView::judgeNavigation(QWebEngineNavigationRequest* request) {
  const QUrl address = request->url();
  if (progress_ != Progress::none && QtWebRequestGuard::isAllowed(address)) {
    reported_ = reported_ && !request->isMainFrame();
    return;
  }
  request->reject();
  if (progress_ != Progress::none) {
    services_.log("OrlixKit: A page was kept from leaving. " + refusalOf(address));
    refused_ = refused_ || request->isMainFrame();
  }
}

void QtWebView::loadingChanged(const QWebEngineLoadingInfo& info) {
  const auto status = info.status();
  if (status == QWebEngineLoadingInfo::LoadStartedStatus) {
    if (progress_ != Progress::none) {
      progress_ = Progress::begun;
      hasPage_ = true;
    }
    return;
  }
  // Ignore the end of a load that preceded the one asked for last.
  if (progress_ != Progress::begun) {
    return;
  }
  if (status == QWebEngineLoadingInfo::LoadStoppedStatus) {
    // Do not report a load that was replaced by another. Report one that was stopped for a refused
    // address: its page stays, and the engine signals this in no other way.
    if (std::exchange(refused_, false) && !reported_) {
      finished();
    }
    return;
  }
  refused_ = false;
  failPendingScripts("The page was left before it answered.");
  // A server's error page is a page like any other.
  if (status == QWebEngineLoadingInfo::LoadSucceededStatus ||
      info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain) {
    finished();
  } else {
    fail(info.errorString().toStdString());
  }
}

void QtWebView::finished() {
  reported_ = true;
  tell([](WebViewDelegate& delegate) { delegate.didFinishNavigation(); });
}

void QtWebView::processTerminated(int exitCode) {
  load_ = std::make_shared<const int>(0);
  progress_ = Progress::none;
  hasPage_ = false;
  services_.log("OrlixKit: A page's process has ended with " + std::to_string(exitCode) + ".");
  failPendingScripts("The page's process has ended.");
  tell([](WebViewDelegate& delegate) { delegate.webContentProcessDidTerminate(); });
}

void QtWebView::fail(const std::string& description) {
  tell([description](WebViewDelegate& delegate) { delegate.didFailNavigation(description); });
}

void QtWebView::tell(std::function<void(WebViewDelegate&)> callback) {
  services_.mainQueue->async([this, alive = std::weak_ptr(load_), callback = std::move(callback)] {
    if (alive.expired()) {
      return;
    }
    if (const std::shared_ptr<WebViewDelegate> delegate = delegate_.lock()) {
      callback(*delegate);
    }
  });
}

void QtWebView::settle(const PendingScript& pending, ScriptResult result) {
  if (pending.completion) {
    services_.mainQueue->async(
        [completion = pending.completion, result = std::move(result)] { completion(result); });
  }
}

void QtWebView::failPendingScripts(std::string_view reason) {
  if (pendingScripts_.empty()) {
    return;  // without allocating: the destructor calls this
  }
  for (const PendingScript& pending : std::exchange(pendingScripts_, {})) {
    settle(pending, {std::nullopt, std::string(reason)});
  }
}

}  // namespace orlix::shell
