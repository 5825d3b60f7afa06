#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "sandbox/Certificates.h"
#include "sandbox/EventLog.h"
#include "sandbox/Http.h"
#include "sandbox/Shutdown.h"

namespace orlix::sandbox {

/// What is done to the next connections before any request can be read.
enum class ConnectionFault { none, reset, refuseHandshake };

struct ConnectionCounts {
  std::int64_t connections = 0;
  std::int64_t handshakes = 0;
  std::int64_t resumed = 0;  ///< Of the handshakes, those that took up an earlier TLS session.
};

/// The HTTPS server on 127.0.0.1: accepts, speaks TLS and HTTP, and asks one handler for answers.
///
/// Thread: the handler is called on one thread per connection, several at once.
/// Lifetime: `log` and `shutdown` outlive it; `stop` is called by the destructor.
class HttpFront {
 public:
  using Handler = std::function<HttpAnswer(const HttpRequest&)>;
  using Gate = std::function<ConnectionFault()>;

  struct Setup {
    int port = 0;             ///< 0 takes a free one.
    bool oldTlsOnly = false;  ///< TLS 1.1 at most, for clients that must refuse it.
    Handler handler;
    Gate gate;  ///< Asked once for each new connection, on its thread; may wait.
  };

  HttpFront(const Certificates& certificates, Setup setup, EventLog& log, Shutdown& shutdown);
  ~HttpFront();
  HttpFront(const HttpFront&) = delete;
  HttpFront& operator=(const HttpFront&) = delete;

  /// Binds and serves; returns the port. Throws std::runtime_error when the port is taken.
  int start();

  /// Closes every connection, waits for their threads, frees the port. May be called again.
  void stop();

  ConnectionCounts counts() const;

  /// Closes every connection but the caller's own, so that clients must reconnect.
  void dropConnections();

 private:
  class Server;
  std::unique_ptr<Server> server_;
};

}  // namespace orlix::sandbox
