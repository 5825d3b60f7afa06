// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace orlix::shell {

/// Prevents the environment and the command line from configuring the web engine: no debugging
/// port, no switches but the library's own, no key log of its TLS sessions. Only
/// QTWEBENGINE_DISABLE_SANDBOX is kept, which a root process needs. Qt's own event loop is used
/// instead of GLib's, unless QT_NO_GLIB is set already.
///
/// Changes the environment of the process. Effective only before the engine starts, with the first
/// web view of the process. Main thread, before other threads read the environment.
void setUpWebEngine();

}  // namespace orlix::shell
