#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/Secret.h"

namespace orlix {

/// One HTTP request. Header fields are sent in the order given, to the request's own host only:
/// after a redirect to another host all but Content-Type are left out.
struct HttpRequest {
  std::string url;  ///< absolute, https
  std::string method = "GET";
  std::vector<std::pair<std::string, std::string>> headers;
  std::optional<SecretBytes> body;          ///< none: a POST is sent with a length of 0
  SteadyTime deadline = SteadyTime::max();  ///< of the whole exchange, on the client's clock
};

/// How an exchange ended.
struct HttpResult {
  enum class End {
    complete,  ///< the whole answer has arrived
    failed,    ///< `error` says why
    timedOut,  ///< the deadline passed first
    stopped,   ///< the delegate answered no
    closed,    ///< the client was closed first
  };
  End end = End::failed;
  std::string error = {};  ///< of a failure
};

/// The chain of certificates that a server presented.
class ServerTrust {
 public:
  virtual ~ServerTrust() = default;

  /// Judges chain, validity, purpose and host name. `anchors` are certificates in DER form (X.509,
  /// RFC 5280) to trust besides the system's roots, or instead of them if `anchorsOnly`; what is no
  /// certificate is left out without a message. An anchor may be a root or the server's own. On
  /// false `error` says why.
  virtual bool evaluate(const std::vector<Bytes>& anchors, bool anchorsOnly,
                        std::string& error) = 0;
};

/// Follows one exchange and decides whether it goes on. Called on the thread that performs the
/// exchange, in the order: trusts (on a new connection to the server only), mayBeSent,
/// didReceiveResponse, didReceiveData...; once more from the start for each redirect that is
/// followed. An exception counts as false.
///
/// It may block, which holds up its own exchange only, and may perform an exchange of its own. What
/// it answers after the deadline or the client's `close` changes nothing: nothing is sent then.
class HttpDelegate {
 public:
  virtual ~HttpDelegate() = default;

  /// Whether the server may be spoken to; false fails the exchange. `trust` lives until this
  /// returns; none when the platform has no chain to show.
  virtual bool trusts(ServerTrust* trust) = 0;

  /// Asked immediately before the request is written, once the connection to the server exists and
  /// is trusted: a payment that waits for a slow connection can still be withdrawn. False stops the
  /// exchange, and no byte of that request is sent.
  virtual bool mayBeSent() = 0;

  /// The header of an answer has arrived, whose body follows. False stops the exchange.
  virtual bool didReceiveResponse(std::int64_t statusCode) = 0;

  /// The next piece of the body, valid until this returns. False stops the exchange.
  virtual bool didReceiveData(std::span<const std::uint8_t> data) = 0;
};

/// The way to HTTPS servers. Connections to one server are kept alive and used again.
///
/// Thread: any, also the main thread, and several at once.
class HttpClient {
 public:
  virtual ~HttpClient() = default;

  /// One exchange, from the connection to the end of the answer; blocks the calling thread. Nothing
  /// is cached. A request is sent once: only a redirect makes a further one (301, 302 and 303 turn
  /// a POST into a GET, 307 and 308 keep method and body). A redirect that would carry a body to
  /// another origin (host or port) is not followed and fails the exchange: the body of a payment is
  /// for the server it was addressed to.
  virtual HttpResult perform(const HttpRequest& request, HttpDelegate& delegate) = 0;

  /// Wakes every exchange, which then ends as closed, without waiting for its end; what is
  /// performed later ends so at once. Whoever closes the queues that run the callers waits for
  /// them.
  virtual void close() = 0;
};

}  // namespace orlix
