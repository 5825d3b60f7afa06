// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace orlix::shop {

/// Lists every screen of the library in one JSON object: outlets with kind, default text and hiding
/// rule, actions, segues, alerts, and the alerts that belong to no screen. Installs a host in
/// memory for the duration of the call, so no other host may be installed. Stores and sends
/// nothing. Main thread.
std::string screenList();

}  // namespace orlix::shop
