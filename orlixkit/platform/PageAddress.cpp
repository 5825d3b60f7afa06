#include "orlixkit/platform/PageAddress.h"

#include <algorithm>
#include <string>

namespace orlix {

namespace {

std::string inLowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return lower;
}

/// Without user, password and port. A backslash ends it, since browsers take it for a slash.
std::string_view hostOf(std::string_view afterSlashes) {
  std::string_view host = afterSlashes.substr(0, afterSlashes.find_first_of("/\\?#"));
  if (const std::size_t user = host.rfind('@'); user != std::string_view::npos) {
    host.remove_prefix(user + 1);
  }
  const std::size_t port = host.starts_with('[') ? host.find(':', host.find(']')) : host.find(':');
  return host.substr(0, port);
}

}  // namespace

bool isPageAddressAllowed(std::string_view address) {
  const std::size_t colon = address.find("://");
  if (colon == std::string_view::npos) {
    return false;
  }
  const std::string scheme = inLowerCase(address.substr(0, colon));
  const std::string host = inLowerCase(hostOf(address.substr(colon + 3)));
  if (scheme == "https" || scheme == "wss") {
    return !host.empty();
  }
  return (scheme == "http" || scheme == "ws") &&
         (host == "localhost" || host == "127.0.0.1" || host == "[::1]");
}

}  // namespace orlix
