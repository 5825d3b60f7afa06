#pragma once

namespace orlix::shell {

/// Keeps the environment and the command line out of the web engine: no debugging port, no switches
/// but the library's own, no file with the keys of its TLS sessions. Only
/// QTWEBENGINE_DISABLE_SANDBOX stays, which a process of the superuser needs.
///
/// Changes the environment of the process. Has an effect until the engine has started, which it
/// does with the first web view of the process. Main thread, before other threads read the
/// environment.
void setUpWebEngine();

}  // namespace orlix::shell
