// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/Secret.h"

namespace orlix {

/// One HTTP request. Header fields are sent in the order given, to the request's own host only:
/// after a redirect to another host all but Content-Type are left out.
struct HttpRequest {
  std::string url;  ///< absolute, https
  std::string method = "GET";
  std::vector<std::pair<std::string, std::string>> headers;
  std::optional<SecretBytes> body;          ///< absent: a POST is sent with a length of 0
  SteadyTime deadline = SteadyTime::max();  ///< of the whole exchange, on the client's clock
};

/// How an exchange ended.
struct HttpResult {
  enum class End {
    complete,  ///< the whole answer has arrived
    failed,    ///< `error` says why
    timedOut,  ///< the deadline passed first
    stopped,   ///< the delegate returned false
    closed,    ///< the client was closed first
  };
  End end = End::failed;
  std::string error = {};  ///< of a failure
};

/// The certificate chain that a server presented.
class ServerTrust {
 public:
  virtual ~ServerTrust() = default;

  /// Verifies chain, validity, purpose and host name. `anchors` are certificates in DER form
  /// (X.509, RFC 5280) to trust in addition to the system's roots, or instead of them if
  /// `anchorsOnly`; bytes that are not a certificate are ignored silently. An anchor may be a root
  /// or the server's own certificate. On false, `error` holds the reason.
  virtual bool evaluate(const std::vector<Bytes>& anchors, bool anchorsOnly,
                        std::string& error) = 0;
};

/// Observes one exchange and decides whether it continues. Called on the thread that performs the
/// exchange, in the order: trusts (on a new connection only), mayBeSent, didReceiveResponse,
/// didReceiveData...; again from the start for each redirect that is followed. An exception counts
/// as false.
///
/// A callback may block, which delays only this exchange, and may perform another exchange. Its
/// return value is ignored after the deadline or the client's `close`: nothing is sent then.
class HttpDelegate {
 public:
  virtual ~HttpDelegate() = default;

  /// Whether to trust the server; false fails the exchange. `trust` is valid until this returns;
  /// null when the platform provides no chain.
  virtual bool trusts(ServerTrust* trust) = 0;

  /// Called immediately before the request is written, when the connection exists and is trusted,
  /// so that a payment that waits for a slow connection can still be withdrawn. False stops the
  /// exchange before any byte of the request is sent.
  virtual bool mayBeSent() = 0;

  /// The header of an answer has arrived; its body follows. False stops the exchange.
  virtual bool didReceiveResponse(std::int64_t statusCode) = 0;

  /// The next piece of the body, valid until this returns. False stops the exchange.
  virtual bool didReceiveData(std::span<const std::uint8_t> data) = 0;
};

/// Performs HTTPS exchanges. Connections are kept alive and reused.
///
/// Thread: any, the main thread included; concurrent calls are allowed.
class HttpClient {
 public:
  virtual ~HttpClient() = default;

  /// Performs one exchange, from connecting to the end of the answer; blocks the calling thread.
  /// Nothing is cached. A request is sent once; only a redirect causes another (301, 302 and 303
  /// turn a POST into a GET, 307 and 308 keep method and body). A redirect that would carry a body
  /// to another origin (host or port) fails the exchange: the body of a payment must reach only the
  /// server it was addressed to.
  virtual HttpResult perform(const HttpRequest& request, HttpDelegate& delegate) = 0;

  /// Makes every exchange in progress end as `closed`, without waiting for it; later exchanges end
  /// so at once. Closing the queues that run the callers waits for them.
  virtual void close() = 0;
};

}  // namespace orlix
