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

/// Functions of the library that web views use. They are passed in because the plug-in links only
/// the ports: a program that contains the library statically has no shared one to link.
struct WebEngineServices {
  std::shared_ptr<MainQueue> mainQueue;
  std::function<void(const std::string& line)> log;
  /// True when a server's chain is trusted. `chain`: DER, leaf certificate first. Sets `reason` on
  /// false.
  std::function<bool(const std::vector<Bytes>& chain, const std::string& host, std::string& reason)>
      trusts;
};

/// Interface of the plug-in that contains Qt's web engine. Main thread.
class WebEngine {
 public:
  virtual ~WebEngine() = default;
  /// Prepares process and environment for the engine. Call before creating the application object.
  virtual void prepare() = 0;
  /// Use the result on `engine`'s thread only; `engine` must outlive the views.
  virtual std::shared_ptr<WebViews> makeWebViews(QQmlEngine& engine,
                                                 WebEngineServices services) = 0;
};

}  // namespace orlix::shell

// The version must match exactly, because library and plug-in exchange C++ objects.
#define ORLIX_WEB_ENGINE "orlixkit.WebEngine/" ORLIXKIT_VERSION
Q_DECLARE_INTERFACE(orlix::shell::WebEngine, ORLIX_WEB_ENGINE)
