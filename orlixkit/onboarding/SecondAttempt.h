#pragma once

#include <exception>

#include "orlixkit/platform/Host.h"
#include "orlixkit/protocol/RequestScope.h"

namespace orlix {

/// Asks, and asks at once again when that fails: a failure in passing is no reason to bother a user
/// who waits for an SMS. So the server may see the same request twice. The second failure is the
/// caller's.
template <class Ask>
auto askTwice(const Ask& ask) {
  try {
    return ask();
  } catch (const RequestEnded&) {
    throw;  // the flow is over
  } catch (const std::exception&) {
    log("--- ERROR, TRY AGAIN ---");
  }
  return ask();
}

}  // namespace orlix
