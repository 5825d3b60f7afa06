#pragma once

#include <memory>

#include "orlixkit/platform/Host.h"
#include "orlixkit/platform/ui/Application.h"

namespace orlix {

/// The host's application, held during a step: the observer, or a completion, may uninstall the
/// host.
inline std::shared_ptr<Application> heldApplication() {
  return Host::current().application().shared_from_this();
}

}  // namespace orlix
