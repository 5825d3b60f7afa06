// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "sandbox/HttpServer.h"
#include "tests/posix/TestCertificates.h"

namespace orlix::fuzz {

/// A TLS server on 127.0.0.1 that answers with bytes as they are given, whatever they are. Each
/// connection takes one request and the next answer and is closed then; without one it is closed at
/// once.
class RawServer {
 public:
  explicit RawServer(const Identity& identity);

  int port() const { return port_; }
  /// Takes the answers to come, and forgets the requests that have been seen.
  void prepare(std::vector<std::string> answers);
  /// The requests since then, once the connections that brought them are closed: the client must
  /// not send the next one over a connection that is about to be.
  std::vector<sandbox::HttpRequest> requests();

 private:
  bool serve(sandbox::Connection& connection);

  std::mutex lock_;
  std::vector<std::string> answers_;            // guarded by lock_
  std::vector<sandbox::HttpRequest> requests_;  // guarded by lock_
  sandbox::Shutdown shutdown_;
  sandbox::HttpServer server_;
  const int port_;
};

}  // namespace orlix::fuzz
