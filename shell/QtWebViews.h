// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <functional>
#include <memory>
#include <vector>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/WebView.h"

namespace orlix::shell {

/// Makes web views based on Qt's web engine. The application must call
/// `QtWebEngineQuick::initialize()` before it makes the application object.
class QtWebViews : public WebViews {
 public:
  /// Returns the certificates (DER) to trust besides the system's roots; called at each decision.
  using Anchors = std::function<std::vector<Bytes>()>;

  /// `engine` must belong to the main thread and outlive the views.
  QtWebViews(QQmlEngine& engine, std::shared_ptr<MainQueue> mainQueue, Anchors anchors);

  /// Null, with a log line, when the web engine's QML module is not installed.
  std::shared_ptr<WebView> newWebView() override;

 private:
  const QPointer<QQmlEngine> engine_;
  const std::shared_ptr<MainQueue> mainQueue_;
  const Anchors anchors_;
  QQmlComponent page_;
};

}  // namespace orlix::shell
