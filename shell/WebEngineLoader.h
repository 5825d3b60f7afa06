// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "orlixkit/host/Host.h"
#include "shell/WebEngine.h"

namespace orlix::shell {

/// Loads the web engine plug-in and prepares the process for it. Call before creating the
/// application object. An empty `folder` means the installed one, relative to this library or the
/// program that contains it; no environment variable changes it. Does nothing without a plug-in; a
/// plug-in that cannot be loaded is reported by a Qt warning. The plug-in is never unloaded. Main
/// thread.
void loadWebEngine(const std::filesystem::path& folder);

/// Web views of the loaded engine, with the trusted certificates of the transport; null, with a log
/// line, when no engine is loaded. `engine` must outlive the views.
std::shared_ptr<WebViews> makeWebViews(QQmlEngine& engine, const Ports& ports);

/// `anchors` returns the certificates (DER) to trust besides the system's roots; called at each
/// decision.
WebEngineServices webEngineServices(std::shared_ptr<MainQueue> mainQueue,
                                    std::function<std::vector<Bytes>()> anchors);

}  // namespace orlix::shell
