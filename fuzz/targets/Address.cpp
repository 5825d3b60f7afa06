// Addresses that a web page asks for. An input is an address.

#include <algorithm>
#include <memory>
#include <string>

#include <curl/curl.h>

#include "fuzz/Target.h"
#include "orlixkit/platform/PageAddress.h"

namespace orlix::fuzz {

namespace {

std::string withLetters(std::string_view text, bool upper) {
  std::string result(text);
  for (char& c : result) {
    if (upper && c >= 'a' && c <= 'z') {
      c = static_cast<char>(c - 'a' + 'A');
    } else if (!upper && c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return result;
}

/// A part of the address as another library takes it apart; empty when it takes it for none.
std::string partOf(const std::string& address, CURLUPart part) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
  if (curl_url_set(url.get(), CURLUPART_URL, address.c_str(), CURLU_NON_SUPPORT_SCHEME) !=
      CURLUE_OK) {
    return {};
  }
  char* text = nullptr;
  if (curl_url_get(url.get(), part, &text, 0) != CURLUE_OK) {
    return {};
  }
  const std::string result = withLetters(text, false);
  curl_free(text);
  return result;
}

/// Browsers read a backslash as a slash and leave control characters out, which the other library
/// does not.
bool isPlain(std::string_view address) {
  return std::none_of(address.begin(), address.end(),
                      [](char c) { return c == '\\' || static_cast<unsigned char>(c) <= ' '; });
}

void leadsWhereItMay(const std::string& address) {
  const std::string scheme = partOf(address, CURLUPART_SCHEME);
  const std::string host = partOf(address, CURLUPART_HOST);
  if (scheme.empty() || host.empty()) {
    return;
  }
  const bool encrypted = scheme == "https" || scheme == "wss";
  const bool plain = scheme == "http" || scheme == "ws";
  const bool here = host == "localhost" || host == "127.0.0.1" || host == "[::1]";
  check(encrypted || (plain && here), "an address that is allowed is encrypted or of this machine");
}

}  // namespace

void address(ByteView input) {
  const std::string text(textOf(input));
  const bool allowed = isPageAddressAllowed(text);
  for (const bool upper : {false, true}) {
    check(isPageAddressAllowed(withLetters(text, upper)) == allowed, "case does not matter");
  }
  const bool hasHost = text.find("://") != std::string::npos;
  for (const char* rest : {"/", "/@localhost", "?@127.0.0.1", "#@[::1]", "\\@localhost", "/:80"}) {
    check(!hasHost || isPageAddressAllowed(text + rest) == allowed,
          "what follows the host does not matter");
  }
  if (allowed && isPlain(text)) {
    leadsWhereItMay(text);
  }
}

}  // namespace orlix::fuzz
