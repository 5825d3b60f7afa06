// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <cctype>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlix::sandbox {

using HttpFields = std::vector<std::pair<std::string, std::string>>;

/// One request as the rest of the sandbox sees it; no HTTP library shows through.
struct HttpRequest {
  std::string method{};
  std::string target{};  ///< As it was sent: path and query.
  std::string path{};    ///< Decoded, without the query.
  HttpFields headers{};  ///< In the order and the writing of the client.
  std::string body{};
  HttpFields form{};  ///< Decoded fields of the query, then those of a posted form.
  std::string remoteAddress{};
  bool keepAlive = true;  ///< The client may send another request on the same connection.

  /// The header of that name in whatever capitals; nothing when there is none.
  std::optional<std::string> header(std::string_view name) const {
    const auto alike = [](unsigned char a, unsigned char b) {
      return std::tolower(a) == std::tolower(b);
    };
    for (const auto& [key, value] : headers) {
      if (std::equal(key.begin(), key.end(), name.begin(), name.end(), alike)) return value;
    }
    return std::nullopt;
  }
  std::string contentType() const { return header("Content-Type").value_or(""); }
  std::string sessionToken1() const { return header("x-session-token1").value_or(""); }
  std::string sessionToken2() const { return header("x-session-token2").value_or(""); }

  /// The form's first field of that name; the empty text when there is none.
  std::string field(std::string_view name) const {
    for (const auto& [key, value] : form) {
      if (key == name) return value;
    }
    return {};
  }
};

/// How an answer leaves the connection. All but `whole` are faults that a client must survive.
enum class Delivery {
  whole,
  hangUp,             ///< Nothing is sent; the connection closes.
  silence,            ///< Nothing is sent; the connection stays open.
  headerThenSilence,  ///< The header, then nothing more.
  cutInBody,          ///< The header and half the body, then the connection closes.
  trickle,            ///< The header, then the body one byte at a time.
};

struct HttpAnswer {
  int status = 200;
  std::string body{};
  std::string contentType = "application/json";
  HttpFields headers{};
  Delivery delivery = Delivery::whole;
  std::chrono::milliseconds delay{0};        ///< Waited before anything is sent.
  std::function<bool()> hold{};              ///< Then waits; false: nothing is to be sent any more.
  std::chrono::milliseconds interval{1000};  ///< Between two bytes of a trickled body.
  bool last = false;                         ///< The server closes the connection after it.
  /// Gives a body without an end piece by piece, in place of `body`; may wait. An empty piece ends
  /// it.
  std::function<std::string()> stream{};
  std::string reason{};  ///< Why the request is refused, for the server's own account.
  /// Released before the last byte is sent, or when it is certain that it never will be.
  std::shared_ptr<void> underWay{};
};

}  // namespace orlix::sandbox
