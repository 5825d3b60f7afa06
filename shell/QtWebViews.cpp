// SPDX-License-Identifier: Apache-2.0

#include "shell/QtWebViews.h"

#include <QQuickItem>
#include <QVariantMap>
#include <utility>

#include "orlixkit/host/Host.h"
#include "shell/QtWebPage.h"
#include "shell/QtWebView.h"
#include "shell/WebEngineSetUp.h"

namespace orlix::shell {

QtWebViews::QtWebViews(QQmlEngine& engine, std::shared_ptr<MainQueue> mainQueue, Anchors anchors)
    : engine_(&engine),
      mainQueue_(std::move(mainQueue)),
      anchors_(std::move(anchors)),
      page_(&engine) {
  setUpWebEngine();  // again, for an application that makes the ports itself
  page_.setData(kWebPage, QUrl());
}

std::shared_ptr<WebView> QtWebViews::newWebView() {
  if (!engine_) {
    return nullptr;
  }
  auto view = std::make_shared<QtWebView>(mainQueue_, anchors_);
  QQmlEngine::setObjectOwnership(view.get(), QQmlEngine::CppOwnership);
  std::unique_ptr<QObject> made(page_.createWithInitialProperties(
      {{QStringLiteral("view"), QVariant::fromValue<QObject*>(view.get())}}));
  auto* const item = qobject_cast<QQuickItem*>(made.get());
  if (item == nullptr) {
    log("OrlixKit: No web page can be shown: " + page_.errorString().toStdString());
    return nullptr;
  }
  QQmlEngine::setObjectOwnership(item, QQmlEngine::CppOwnership);
  made.release();
  view->adopt(std::unique_ptr<QQuickItem>(item));
  return view;
}

}  // namespace orlix::shell
