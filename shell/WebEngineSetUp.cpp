// SPDX-License-Identifier: Apache-2.0

#include "shell/WebEngineSetUp.h"

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
  qunsetenv("QTWEBENGINE_REMOTE_DEBUGGING");
  qunsetenv("SSLKEYLOGFILE");
  // While this is set the engine also ignores what follows "--webEngineArgs" on the command line.
  qputenv("QTWEBENGINE_CHROMIUM_FLAGS", QByteArray(kSwitches));
}

}  // namespace orlix::shell
