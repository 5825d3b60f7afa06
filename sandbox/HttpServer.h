// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <openssl/tls1.h>
#include <openssl/types.h>

#include "sandbox/Http.h"
#include "sandbox/Shutdown.h"

namespace orlix::sandbox {

/// The server's end of one connection, after its TLS handshake. It knows bytes and requests, no
/// rules: what goes out is the caller's. Thread: one.
class Connection {
 public:
  virtual ~Connection() = default;

  /// The next request, whole. None when the client has closed, lets the server wait for too long
  /// (5 minutes between requests, 30 seconds within one), or sends what is no request.
  virtual std::optional<HttpRequest> read() = 0;

  /// Why `read` gave none: the status that refuses what came, or 0 when there is nothing to refuse.
  virtual int refusal() const = 0;

  /// Sends these bytes, whether or not they are HTTP. False when the client has gone.
  virtual bool write(std::string_view bytes) = 0;

  /// Returns when the client has closed, or the server stops.
  virtual void awaitClose() = 0;
};

/// Who a TLS server is, and what it speaks.
struct TlsSetup {
  X509* certificate = nullptr;
  EVP_PKEY* key = nullptr;
  std::vector<X509*> intermediates{};  ///< Sent along, in their order.
  int lowestVersion = TLS1_2_VERSION;
  int highestVersion = 0;  ///< 0: the highest there is.
  bool resumes = true;     ///< Gives tickets by which a later handshake is a short one.
};

/// What is done to a new connection before any request can be read.
enum class ConnectionFault { none, reset, refuseHandshake };

struct ConnectionCounts {
  std::int64_t connections = 0;
  std::int64_t handshakes = 0;
  std::int64_t resumed = 0;  ///< Of the handshakes, those that took up an earlier TLS session.
};

/// A server of HTTP, over TLS or plain, at one address: the only one here, for the wallet protocol,
/// the console, and tests that write each byte of an answer themselves.
///
/// Thread: one for each connection, which may wait as long as it likes; `counts` and
/// `dropConnections` from any thread. Lifetime: `shutdown` outlives it; the destructor stops it.
class HttpServer {
 public:
  /// Serves a connection; then it is closed: by the rules of TLS when this returns true, abruptly
  /// when it returns false.
  using Serve = std::function<bool(Connection&)>;

  struct Setup {
    std::string address = "127.0.0.1";  ///< One of this machine's, IPv4.
    std::optional<TlsSetup> tls{};      ///< None: plain HTTP.
    Serve serve;
    /// Asked once for each new connection, on its thread; may wait.
    std::function<ConnectionFault()> gate{};
    size_t longestBody = size_t{4} << 20;  ///< Of a request; more is refused with 413.
  };

  /// Throws std::runtime_error when OpenSSL refuses the certificate.
  HttpServer(Setup setup, Shutdown& shutdown);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// Binds and serves; 0 takes a free port. Returns the port. Throws std::runtime_error when the
  /// address or the port cannot be had.
  int start(int port = 0);

  /// Begins the shutdown, closes every connection, waits for their threads and frees the port. May
  /// be called again.
  void stop();

  ConnectionCounts counts() const;

  /// Closes every connection but the caller's own, so that clients must reconnect.
  void dropConnections();

  /// Waits until no connection is open. Not for the threads of connections.
  void awaitIdle();

 private:
  class Listener;
  std::unique_ptr<Listener> listener_;
};

/// "Not Found" for 404.
std::string reasonPhrase(int status);

}  // namespace orlix::sandbox
