// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>

#include "shell/WebEngine.h"

namespace orlix::shell {

/// The plug-in class that the shell loads.
class WebEnginePlugin : public QObject, public WebEngine {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID ORLIX_WEB_ENGINE)
  Q_INTERFACES(orlix::shell::WebEngine)

 public:
  /// Changes the environment of the process (see WebEngineSetUp.h), and shares OpenGL contexts.
  void prepare() override;
  std::shared_ptr<WebViews> makeWebViews(QQmlEngine& engine, WebEngineServices services) override;
};

}  // namespace orlix::shell
