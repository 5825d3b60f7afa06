// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "orlixkit/host/Host.h"
#include "shell/WebEngine.h"

namespace orlix::shell {

/// Loads the plug-in with the web engine and prepares the process for it, before the application
/// object is made. An empty `folder` is the installed one, found from where this library, or the
/// program that contains it, is: no environment variable redirects it. Where the folder has no
/// plug-in nothing happens; a plug-in that cannot be loaded is reported by a Qt warning. Once
/// loaded it stays loaded. Main thread.
void loadWebEngine(const std::filesystem::path& folder);

/// Web views by the loaded engine, which trust what the transport trusts; null, with a log line,
/// when none is loaded. `engine` must outlive the views.
std::shared_ptr<WebViews> makeWebViews(QQmlEngine& engine, const Ports& ports);

/// `anchors` returns the certificates (DER) to trust besides the system's roots; called at each
/// decision.
WebEngineServices webEngineServices(std::shared_ptr<MainQueue> mainQueue,
                                    std::function<std::vector<Bytes>()> anchors);

}  // namespace orlix::shell
