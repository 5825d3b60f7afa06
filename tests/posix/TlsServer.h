// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "sandbox/HttpServer.h"
#include "tests/ports/HttpClientContract.h"
#include "tests/posix/TestCertificates.h"

namespace orlix {

/// A connection at the server's end, after the handshake. It knows bytes and requests, no rules:
/// the test decides what goes out.
class TlsConnection {
 public:
  explicit TlsConnection(sandbox::Connection& connection) : connection_(connection) {}
  /// The next request, whole; none when the client has closed.
  std::optional<SeenRequest> read();
  /// False when the client has closed.
  bool write(std::string_view bytes) { return connection_.write(bytes); }
  /// Returns when the client has closed, or the server is taken down.
  void awaitClose() { connection_.awaitClose(); }

 private:
  sandbox::Connection& connection_;
};

/// A TLS server on 127.0.0.1 whose every byte the test writes. Runs `serve` for each connection, on
/// a thread of its own, and hangs up when that returns.
class TlsServer {
 public:
  using Serve = std::function<void(TlsConnection&)>;

  /// `highestVersion`: TLS1_1_VERSION and so on; 0 for any.
  TlsServer(const Identity& identity, Serve serve, int highestVersion = 0);

  std::string address(const std::string& path, const std::string& host = "127.0.0.1") const;
  /// Connections taken, whether or not their handshake succeeded.
  std::int64_t connections() const { return server_.counts().connections; }
  std::int64_t handshakes() const { return server_.counts().handshakes; }

 private:
  sandbox::Shutdown shutdown_;
  sandbox::HttpServer server_;
  const int port_;
};

/// Status, the given fields, Content-Length and the body. `missing`: how much longer than that the
/// body is said to be.
std::string httpAnswer(int status, const std::string& fields, const std::string& body,
                       std::size_t missing = 0);

}  // namespace orlix
