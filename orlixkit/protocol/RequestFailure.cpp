// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/RequestFailure.h"

#include <string>

#include "orlixkit/host/Host.h"

namespace orlix {

void logRequestFailure(std::string_view request, std::string_view cause) {
  log("OrlixKit: request " + std::string(request) + " failed: " + std::string(cause));
}

}  // namespace orlix
