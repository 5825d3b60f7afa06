#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>

#include <openssl/ssl.h>

#include "tests/ports/HttpClientContract.h"
#include "tests/posix/TestCertificates.h"

namespace orlix {

/// A connection at the server's end, after the handshake. It knows bytes and requests, no rules:
/// the test decides what goes out.
class TlsConnection {
 public:
  explicit TlsConnection(SSL* tls) : tls_(tls) {}
  /// The next request, whole; none when the client has closed.
  std::optional<SeenRequest> read();
  /// False when the client has closed.
  bool write(std::string_view bytes);
  /// Returns when the client has closed, or the server is taken down.
  void awaitClose();

 private:
  bool readMore();

  SSL* tls_;
  std::string received_;
};

/// A TLS server on 127.0.0.1 whose every byte the test writes. Runs `serve` for each connection, on
/// a thread of its own, and hangs up when that returns.
class TlsServer {
 public:
  using Serve = std::function<void(TlsConnection&)>;

  /// `highestVersion`: TLS1_1_VERSION and so on; 0 for any.
  TlsServer(const Identity& identity, Serve serve, int highestVersion = 0);
  ~TlsServer();
  TlsServer(const TlsServer&) = delete;
  TlsServer& operator=(const TlsServer&) = delete;

  std::string address(const std::string& path, const std::string& host = "127.0.0.1") const;
  /// Connections taken, whether or not their handshake succeeded.
  int connections() const { return connections_; }
  int handshakes() const { return handshakes_; }

 private:
  void accept();
  void handle(int socket);

  std::shared_ptr<SSL_CTX> context_;
  Serve serve_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<int> connections_ = 0;
  std::atomic<int> handshakes_ = 0;
  std::mutex lock_;
  std::set<int> sockets_;
  std::list<std::thread> threads_;
  bool closed_ = false;
  std::thread acceptor_;
};

/// Status, the given fields, Content-Length and the body. `missing`: how much longer than that the
/// body is said to be.
std::string httpAnswer(int status, const std::string& fields, const std::string& body,
                       std::size_t missing = 0);

}  // namespace orlix
