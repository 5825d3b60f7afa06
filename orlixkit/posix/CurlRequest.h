// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <curl/curl.h>

#include "orlixkit/ports/HttpClient.h"

namespace orlix {

struct CleanUpAddress {
  void operator()(CURLU* address) const { curl_url_cleanup(address); }
};

/// The target of one hop of an exchange.
struct RequestTarget {
  /// With the host's name in ASCII and without a final dot.
  std::unique_ptr<CURLU, CleanUpAddress> address;
  std::string host;    ///< the same name, or the host's address without brackets
  std::string origin;  ///< host and port
  bool hasOriginOf(const RequestTarget& other) const;
};

/// `address` is in UTF-8; an internationalised host's name is converted (IDNA). Throws
/// std::invalid_argument when it is no address, not an https one or one with a user's name, which
/// would be sent as a header field of its own, or when it has no such host's name.
RequestTarget targetOf(const std::string& address);

/// Throws std::invalid_argument when the request cannot be sent: another method than GET and POST,
/// or a header field that would break the request's lines and so add fields of its own.
void checkRequest(const HttpRequest& request);

struct FreeHeaderList {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, FreeHeaderList>;

/// The request's header fields in libcurl's notation; only its Content-Type for a host that is not
/// its own. Throws std::bad_alloc.
HeaderList headerListOf(const HttpRequest& request, bool ownHost);

}  // namespace orlix
