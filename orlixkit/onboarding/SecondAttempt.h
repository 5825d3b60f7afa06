// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <exception>

#include "orlixkit/host/Host.h"
#include "orlixkit/protocol/RequestScope.h"

namespace orlix {

/// Sends a request and repeats it at once when it fails, so that a transient failure does not
/// disturb a user who waits for an SMS. The server may therefore receive it twice. The second
/// failure propagates.
template <class Ask>
auto askTwice(const Ask& ask) {
  try {
    return ask();
  } catch (const RequestEnded&) {
    throw;  // the flow has ended
  } catch (const std::exception&) {
    log("--- ERROR, TRY AGAIN ---");
  }
  return ask();
}

}  // namespace orlix
