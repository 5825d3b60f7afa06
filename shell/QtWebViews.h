#pragma once

#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <functional>
#include <memory>
#include <vector>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/WebView.h"

namespace orlix::shell {

/// Makes web views of Qt's web engine. The application calls `QtWebEngineQuick::initialize()`
/// before it makes its application object.
class QtWebViews : public WebViews {
 public:
  /// The certificates (DER) that are trusted beside the system's roots; asked for at each decision.
  using Anchors = std::function<std::vector<Bytes>()>;

  /// `engine` lives on the main thread and outlives the views.
  QtWebViews(QQmlEngine& engine, std::shared_ptr<MainQueue> mainQueue, Anchors anchors);

  /// None, with a line in the log, when the web engine's QML module is not installed.
  std::shared_ptr<WebView> newWebView() override;

 private:
  const QPointer<QQmlEngine> engine_;
  const std::shared_ptr<MainQueue> mainQueue_;
  const Anchors anchors_;
  QQmlComponent page_;
};

}  // namespace orlix::shell
