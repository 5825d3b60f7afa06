// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace orlix::shop {

/// Every screen of the library as it describes itself, in one JSON object: outlets with kind,
/// default text and when they are hidden, actions, segues, alerts; and the alerts that belong to no
/// screen. Installs the library on a phone in memory meanwhile: no other host may be installed.
/// Nothing is stored or sent. Main thread.
std::string screenList();

}  // namespace orlix::shop
