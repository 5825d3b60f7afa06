// SPDX-License-Identifier: Apache-2.0

#include "sandbox/console/RequestRules.h"

#include <fmt/format.h>

namespace orlix::sandbox {

std::optional<std::string_view> refusalOf(const RequestSource& source, int port) {
  if (source.host != fmt::format("127.0.0.1:{}", port) &&
      source.host != fmt::format("localhost:{}", port)) {
    return "the Host is not this console's";
  }
  if (source.origin && *source.origin != "http://" + source.host) {
    return "the Origin is not this console's";
  }
  if (source.fetchSite && *source.fetchSite != "same-origin" && *source.fetchSite != "none") {
    return "another site asks";
  }
  return std::nullopt;
}

}  // namespace orlix::sandbox
