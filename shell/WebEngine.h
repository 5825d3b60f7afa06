// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QtPlugin>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "orlixkit/Version.h"
#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/WebView.h"

class QQmlEngine;

namespace orlix::shell {

/// What web views need of the library. They get it passed, because the plug-in links nothing of the
/// library but the ports: in a program that contains the library there is no shared one to link.
struct WebEngineServices {
  std::shared_ptr<MainQueue> mainQueue;
  std::function<void(const std::string& line)> log;
  /// Whether a server's chain is trusted: `chain` in DER, the server's own certificate first. On
  /// false, `reason` holds the reason.
  std::function<bool(const std::vector<Bytes>& chain, const std::string& host, std::string& reason)>
      trusts;
};

/// The web engine, a plug-in: only a device with its package loads Qt's web engine. Main thread.
class WebEngine {
 public:
  virtual ~WebEngine() = default;
  /// Sets what the engine needs in process and environment. Before the application object is made.
  virtual void prepare() = 0;
  /// The makers of views belong to `engine`'s thread; `engine` must outlive the views.
  virtual std::shared_ptr<WebViews> makeWebViews(QQmlEngine& engine,
                                                 WebEngineServices services) = 0;
};

}  // namespace orlix::shell

// Of this version only: library and plug-in exchange C++ objects.
#define ORLIX_WEB_ENGINE "orlixkit.WebEngine/" ORLIXKIT_VERSION
Q_DECLARE_INTERFACE(orlix::shell::WebEngine, ORLIX_WEB_ENGINE)
