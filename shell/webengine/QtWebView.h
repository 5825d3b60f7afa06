// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QUrl>
#include <QVariant>
#include <QWebEngineCertificateError>
#include <QWebEngineLoadingInfo>
#include <QWebEngineNavigationRequest>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "shell/DrawnWebView.h"
#include "shell/WebEngine.h"

namespace orlix::shell {

class QtWebRequestGuard;

/// A web view drawn by Qt's web engine, with its own profile, released with it.
///
/// Every callback is a task of the main queue, never made from an engine callback: the engine
/// blocks until such a callback returns, so a delegate that ran the main loop in it would deadlock.
class QtWebView : public QObject, public DrawnWebView {
  Q_OBJECT

 public:
  /// The engine loads a page's text as an escaped address, and silently drops longer ones.
  static constexpr qsizetype kLargestAddress = 2 * 1024 * 1024;

  explicit QtWebView(WebEngineServices services);
  ~QtWebView() override;
  QtWebView(const QtWebView&) = delete;
  QtWebView& operator=(const QtWebView&) = delete;

  /// The name or address that a certificate must match, in the form used in certificates: ASCII and
  /// without brackets. Qt shows some internationalised names in Unicode.
  static std::string certificateHostOf(const QUrl& address) {
    return address.host(QUrl::FullyEncoded).toStdString();
  }

  QQuickItem* item() override { return item_.get(); }
  /// Called once, by the creator.
  void adopt(std::unique_ptr<QQuickItem> item);

  void setNavigationDelegate(std::weak_ptr<WebViewDelegate> delegate) override;
  /// A text of more than kLargestAddress bytes when escaped is reported as a failed load.
  void load(const WebContent& content) override;
  void stopLoading() override;
  /// Runs isolated from the page's scripts: it accesses the page's elements, not its variables.
  void evaluateJavaScript(const std::string& script,
                          std::function<void(const ScriptResult&)> completion) override;

  // Called by the QML page.
  Q_INVOKABLE void judgeCertificate(QWebEngineCertificateError error);
  Q_INVOKABLE void judgeNavigation(QWebEngineNavigationRequest* request);
  Q_INVOKABLE void loadingChanged(const QWebEngineLoadingInfo& info);
  Q_INVOKABLE void processTerminated(int exitCode);
  Q_INVOKABLE void scriptAnswered(int ticket, const QVariant& result);

 private:
  struct PendingScript {
    int ticket;
    std::function<void(const ScriptResult&)> completion;
  };
  enum class Progress { none, asked, begun };

  void beginLoad();
  void loadText(const std::string& html);
  void loadAddress(const std::string& address);
  void finished();
  void fail(const std::string& description);
  void tell(std::function<void(WebViewDelegate&)> callback);
  void settle(const PendingScript& pending, ScriptResult result);
  void failPendingScripts(std::string_view reason);

  const WebEngineServices services_;
  std::unique_ptr<QtWebRequestGuard> guard_;
  std::unique_ptr<QQuickItem> item_;  ///< released before the guard, which its profile uses
  std::weak_ptr<WebViewDelegate> delegate_;
  Progress progress_ = Progress::none;
  bool hasPage_ = false;
  bool reported_ = false;  ///< the page in the view has been reported as finished
  bool refused_ = false;   ///< the load in progress has tried to leave for a refused address
  int lastTicket_ = 0;
  std::deque<PendingScript> pendingScripts_;
  /// Shared with pending callbacks; replaced to cancel them.
  std::shared_ptr<const int> load_ = std::make_shared<const int>(0);
};

}  // namespace orlix::shell
