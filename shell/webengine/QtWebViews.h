// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <memory>

#include "orlixkit/ports/WebView.h"
#include "shell/WebEngine.h"

namespace orlix::shell {

/// Makes web views based on Qt's web engine. The application must call
/// `QtWebEngineQuick::initialize()` before it makes the application object.
class QtWebViews : public WebViews {
 public:
  /// `engine` must belong to the main thread and outlive the views.
  QtWebViews(QQmlEngine& engine, WebEngineServices services);

  /// Null, with a log line, when the web engine's QML module is not installed.
  std::shared_ptr<WebView> newWebView() override;

 private:
  const QPointer<QQmlEngine> engine_;
  const WebEngineServices services_;
  QQmlComponent page_;
};

}  // namespace orlix::shell
