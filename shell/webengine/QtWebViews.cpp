// SPDX-License-Identifier: Apache-2.0

#include "shell/webengine/QtWebViews.h"

#include <QQuickItem>
#include <QVariantMap>
#include <utility>

#include "shell/MakeItem.h"
#include "shell/webengine/QtWebView.h"
#include "shell/webengine/WebEngineSetUp.h"

namespace orlix::shell {

QtWebViews::QtWebViews(QQmlEngine& engine, WebEngineServices services)
    : engine_(&engine),
      services_(std::move(services)),
      page_(&engine, QUrl(QStringLiteral("qrc:/orlix/webengine/WebPage.qml"))) {
  setUpWebEngine();  // again, for an application that has not prepared it
}

std::shared_ptr<WebView> QtWebViews::newWebView() {
  if (!engine_) {
    return nullptr;
  }
  auto view = std::make_shared<QtWebView>(services_);
  QQmlEngine::setObjectOwnership(view.get(), QQmlEngine::CppOwnership);
  std::unique_ptr<QQuickItem> item =
      makeItem(page_, {{QStringLiteral("view"), QVariant::fromValue<QObject*>(view.get())}});
  if (!item) {
    services_.log("OrlixKit: No web page can be shown: " + reasonOf(page_));
    return nullptr;
  }
  view->adopt(std::move(item));
  return view;
}

}  // namespace orlix::shell
