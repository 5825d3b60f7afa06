// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQmlEngine>

#include "orlixkit/host/Host.h"
#include "orlixkit/posix/PosixPorts.h"

namespace orlix::shell {

/// The ports for a Qt Quick host: the Linux ports, with the main queue on Qt's event loop,
/// QtPositioning (unless the options set a fixed position) and web views by the web engine, if
/// `OrlixShell::initialize` has loaded it. On the application's thread; `engine` must outlive the
/// ports.
/// Throws std::runtime_error when the state directory or the anchor file cannot be used.
Ports makeQtPorts(const PosixOptions& options, QQmlEngine& engine);

}  // namespace orlix::shell
