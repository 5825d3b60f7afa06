// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/CurlRequest.h"

#include <algorithm>
#include <clocale>
#include <locale.h>
#include <new>
#include <stdexcept>

#include <fmt/format.h>

namespace orlix {

namespace {

std::string partOf(CURLU* url, CURLUPart part, unsigned flags = 0) {
  char* text = nullptr;
  std::string found;
  if (curl_url_get(url, part, &text, flags) == CURLUE_OK && text != nullptr) {
    found = text;
  }
  curl_free(text);
  return found;
}

/// libcurl takes a host's name in the encoding of the thread's locale. Ours are in UTF-8, whatever
/// the application has chosen.
class NamesInUtf8 {
 public:
  NamesInUtf8() : before_(::uselocale(utf8())) {}
  ~NamesInUtf8() { ::uselocale(before_); }
  NamesInUtf8(const NamesInUtf8&) = delete;
  NamesInUtf8& operator=(const NamesInUtf8&) = delete;

 private:
  static locale_t utf8() {
    static const locale_t made = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return made;  // none where the system lacks it: uselocale then changes nothing
  }
  const locale_t before_;
};

bool holdsControlCharacter(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char unit) {
    const auto code = static_cast<unsigned char>(unit);
    return (code < 0x20 && unit != '\t') || code == 0x7F;
  });
}

/// A field's name as RFC 9110 has it.
bool isToken(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char unit) {
    return (unit >= '0' && unit <= '9') || (unit >= 'a' && unit <= 'z') ||
           (unit >= 'A' && unit <= 'Z') ||
           std::string_view("!#$%&'*+-.^_`|~").find(unit) != std::string_view::npos;
  });
}

bool isSameName(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](char a, char b) {
    return (a >= 'A' && a <= 'Z' ? a + 32 : a) == (b >= 'A' && b <= 'Z' ? b + 32 : b);
  });
}

bool isAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char unit) { return static_cast<unsigned char>(unit) >= 0x80; });
}

void append(HeaderList& list, const std::string& line) {
  curl_slist* const longer = curl_slist_append(list.get(), line.c_str());
  if (longer == nullptr) {
    throw std::bad_alloc();
  }
  // The first line makes the list, which every further one leaves where it is.
  if (!list) {
    list.reset(longer);
  }
}

}  // namespace

bool RequestTarget::hasOriginOf(const RequestTarget& other) const {
  return isSameName(origin, other.origin);
}

RequestTarget targetOf(const std::string& address) {
  if (!isSameName(std::string_view(address).substr(0, 8), "https://")) {
    throw std::invalid_argument("only https is spoken, not " + address);
  }
  RequestTarget target{decltype(RequestTarget::address)(curl_url()), {}, {}};
  CURLU* const url = target.address.get();
  if (url == nullptr ||
      curl_url_set(url, CURLUPART_URL, address.c_str(), CURLU_DISALLOW_USER) != CURLUE_OK) {
    throw std::invalid_argument("not an address: " + address);
  }
  const std::string given = partOf(url, CURLUPART_HOST);
  target.host = given;
  if (!isAscii(given)) {
    const NamesInUtf8 names;
    target.host = partOf(url, CURLUPART_HOST, CURLU_PUNYCODE);
  }
  if (target.host.ends_with('.')) {
    target.host
        .pop_back();  // it marks the name as complete, which neither hosts nor servers expect
  }
  if (target.host.empty()) {
    throw std::invalid_argument("not a host's name: " + given);
  }
  if (target.host != given) {
    curl_url_set(url, CURLUPART_HOST, target.host.c_str(), 0);
  }
  target.origin = target.host + ":" + partOf(url, CURLUPART_PORT, CURLU_DEFAULT_PORT);
  if (target.host.size() > 2 && target.host.front() == '[') {
    target.host = target.host.substr(1, target.host.size() - 2);
  }
  return target;
}

void checkRequest(const HttpRequest& request) {
  if (request.method != "GET" && request.method != "POST") {
    throw std::invalid_argument("only GET and POST are sent, not " + request.method);
  }
  for (const auto& [name, value] : request.headers) {
    if (!isToken(name)) {
      throw std::invalid_argument("a header field with a forbidden name");
    }
    if (holdsControlCharacter(value)) {
      throw std::invalid_argument(
          fmt::format("the header field {} holds a control character", name));
    }
  }
}

HeaderList headerListOf(const HttpRequest& request, bool ownHost) {
  HeaderList list;
  bool hasContentType = false;
  for (const auto& [name, value] : request.headers) {
    const bool isContentType = isSameName(name, "Content-Type");
    if (ownHost || isContentType) {
      const bool blank = value.find_first_not_of(" \t") == std::string::npos;
      append(list, blank ? name + ";" : name + ": " + value);
      hasContentType = hasContentType || isContentType;
    }
  }
  // The phone's own client would add Accept, Accept-Language, Accept-Encoding and User-Agent. None
  // of them is part of the protocol, no server depends on them, and each would tell something about
  // the device; so only what HTTP needs goes out beside the given fields.
  append(list, "Accept:");
  append(list, "Expect:");
  if (!hasContentType) {
    append(list, "Content-Type:");
  }
  return list;
}

}  // namespace orlix
