#pragma once

#include <memory>

#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/platform/Host.h"

namespace orlix {

/// Puts the library together on a host and installs it: the storyboard's screens, the session
/// driver's way to the screens, the brand's fonts. To be called once, on the main thread, before
/// the first entry call. `Host::uninstall` takes it down again.
void installOrlixKit(std::shared_ptr<Host> host);

}  // namespace orlix
