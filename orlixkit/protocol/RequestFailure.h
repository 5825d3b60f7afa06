// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <exception>
#include <string_view>
#include <utility>

#include "orlixkit/protocol/RequestScope.h"
#include "orlixkit/records/Failures.h"

namespace orlix {

/// Logs the failure of a request: its path and the cause, such as an HTTP status.
void logRequestFailure(std::string_view request, std::string_view cause);

/// Runs the fallible part of a request and converts every exception to a plain NetworkException:
/// callers handle one kind of failure, by offering a retry. This includes std::bad_alloc, since the
/// server's answer determines the memory. Only RequestEnded propagates unchanged. The cause is
/// logged under `request`.
template <class Body>
auto withNetworkException(std::string_view request, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const RequestEnded&) {
    throw;
  } catch (const NetworkException& failure) {
    // An exception without a reason has been logged where it was thrown.
    if (failure.reason) {
      logRequestFailure(request, *failure.reason);
    }
    throw NetworkException();
  } catch (const std::exception& failure) {
    logRequestFailure(request, failure.what());
    throw NetworkException();
  } catch (...) {
    throw NetworkException();
  }
}

}  // namespace orlix
