#pragma once

#include <exception>
#include <string_view>
#include <utility>

#include "orlixkit/protocol/RequestScope.h"
#include "orlixkit/records/Failures.h"

namespace orlix {

/// Writes why the request failed: its path, the HTTP status where one has come, and the cause.
void logRequestFailure(std::string_view request, std::string_view cause);

/// Runs the fallible part of a request and turns whatever leaves it into a plain NetworkException:
/// the callers of requests know one failure, and its remedy is always the user's retry. Really
/// everything, running out of memory included, since what takes the memory is the server's answer.
/// Only RequestEnded passes: nobody asked for the request any more. The cause, which the exception
/// no longer tells, is logged under `request`.
template <class Body>
auto withNetworkException(std::string_view request, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const RequestEnded&) {
    throw;
  } catch (const NetworkException& failure) {
    // One without a reason has been logged where it was thrown.
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
