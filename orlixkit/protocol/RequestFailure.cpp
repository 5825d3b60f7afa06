#include "orlixkit/protocol/RequestFailure.h"

#include <new>
#include <string>

#include "orlixkit/host/Host.h"

namespace orlix {

void logRequestFailure(std::string_view request, std::string_view cause) {
  try {
    log("OrlixKit: request " + std::string(request) + " failed: " + std::string(cause));
  } catch (const std::bad_alloc&) {
    return;  // memory may be exhausted
  }
}

}  // namespace orlix
