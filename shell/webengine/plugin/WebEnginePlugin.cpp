// SPDX-License-Identifier: Apache-2.0

#include "shell/webengine/plugin/WebEnginePlugin.h"

#include <utility>

#include <QtWebEngineQuick/qtwebenginequickglobal.h>

#include "shell/webengine/QtWebViews.h"
#include "shell/webengine/WebEngineSetUp.h"

namespace orlix::shell {

void WebEnginePlugin::prepare() {
  setUpWebEngine();
  QtWebEngineQuick::initialize();  // sets Qt::AA_ShareOpenGLContexts, and OpenGL for drawing
}

std::shared_ptr<WebViews> WebEnginePlugin::makeWebViews(QQmlEngine& engine,
                                                        WebEngineServices services) {
  return std::make_shared<QtWebViews>(engine, std::move(services));
}

}  // namespace orlix::shell
