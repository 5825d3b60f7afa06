// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/host/Host.h"

namespace orlix {

/// Installs the host and registers the library with it: the storyboard's screens, the session
/// driver's environment, the brand's fonts. Call it once, on the main thread, before the first
/// entry call. `Host::uninstall` reverts it.
void installOrlixKit(std::shared_ptr<Host> host);

}  // namespace orlix
