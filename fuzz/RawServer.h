#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <openssl/ssl.h>

#include "tests/posix/TestCertificates.h"

namespace orlix::fuzz {

/// A request as it came in.
struct RawRequest {
  std::string header;
  std::string body;
};

/// A TLS server on 127.0.0.1 that answers with bytes as they are given, whatever they are. Each
/// connection takes one request and the next answer and is closed then; without one it is closed at
/// once. One connection at a time, on one thread.
class RawServer {
 public:
  explicit RawServer(const Identity& identity);
  ~RawServer();
  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;

  std::uint16_t port() const { return port_; }
  /// Takes the answers to come, and forgets the requests that have been seen.
  void prepare(std::vector<std::string> answers);
  /// The requests since then, once the connections that brought them are closed.
  std::vector<RawRequest> requests();

 private:
  void run();
  void handle(int socket);
  void serve(SSL* tls);
  void setBusy(bool busy);

  std::shared_ptr<SSL_CTX> context_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  std::mutex lock_;
  std::condition_variable changed_;
  bool busy_ = false;                 // guarded by lock_
  std::vector<std::string> answers_;  // guarded by lock_
  std::vector<RawRequest> requests_;  // guarded by lock_
  std::atomic<bool> closed_ = false;
  std::thread thread_;
};

}  // namespace orlix::fuzz
