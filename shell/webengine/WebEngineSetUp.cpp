// SPDX-License-Identifier: Apache-2.0

#include "shell/webengine/WebEngineSetUp.h"

#include <QByteArray>

namespace orlix::shell {

namespace {

/// No UDP for peer connections, and no WebTransport: both bypass the request guard. Each page
/// removes the rest of peer connections (see QtWebPage.h).
constexpr const char* kSwitches =
    "--force-webrtc-ip-handling-policy=disable_non_proxied_udp "
    "--disable-blink-features=WebTransport";

}  // namespace

void setUpWebEngine() {
  if (qgetenv("QTWEBENGINE_CHROMIUM_FLAGS") == kSwitches) {
    return;  // done; other threads may read the environment by now
  }
  // With GLib's event loop the web engine hung in 5 of 12 runs, when the main queue ran a nested
  // loop under load while a large page was read; with Qt's own dispatcher in none of 28.
  if (!qEnvironmentVariableIsSet("QT_NO_GLIB")) {
    qputenv("QT_NO_GLIB", "1");
  }
  qunsetenv("QTWEBENGINE_REMOTE_DEBUGGING");
  qunsetenv("SSLKEYLOGFILE");
  // While this is set the engine also ignores what follows "--webEngineArgs" on the command line.
  qputenv("QTWEBENGINE_CHROMIUM_FLAGS", QByteArray(kSwitches));
}

}  // namespace orlix::shell
