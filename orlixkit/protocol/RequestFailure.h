#pragma once

#include <utility>

#include "orlixkit/records/Failures.h"

namespace orlix {

/// Runs the fallible part of a request and turns whatever leaves it into a plain NetworkException:
/// the callers of requests know one failure, and its remedy is always the user's retry. Really
/// everything, running out of memory included, since what takes the memory is the server's answer.
template <class Body>
auto withNetworkException(Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    throw NetworkException();
  }
}

}  // namespace orlix
