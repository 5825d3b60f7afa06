#pragma once

#include <chrono>
#include <httplib.h>
#include <memory>
#include <string>

#include "sandbox/Http.h"
#include "sandbox/Shutdown.h"

namespace orlix::sandbox {

/// The server's end of one TLS connection, as cpp-httplib reads and writes it.
///
/// What is written is kept until `deliver`, so that an answer leaves in one TLS record, or as
/// badly as a test wishes. Lifetime: `socket` and `context` outlive the stream; the caller closes
/// the socket. Thread: one.
class TlsStream : public httplib::Stream {
 public:
  TlsStream(int socket, SSL_CTX* context);
  ~TlsStream() override;
  TlsStream(const TlsStream&) = delete;
  TlsStream& operator=(const TlsStream&) = delete;

  /// False when the client gives up or speaks no TLS that we accept.
  bool handshake();
  bool resumed() const;

  /// Waits until a request begins; false when the client has gone or `idle` has passed.
  bool awaitRequest(std::chrono::milliseconds idle);

  /// Sends what was written; false when the connection must end.
  bool deliver(HttpAnswer answer, Shutdown& shutdown);

  /// Says good-bye by the rules of TLS; without it the end of the stream is an abrupt hang-up.
  void closeCleanly();

  bool is_readable() const override;
  bool is_writable() const override;
  ssize_t read(char* bytes, size_t size) override;
  ssize_t write(const char* bytes, size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  socket_t socket() const override { return socket_; }

 private:
  bool send(const char* bytes, size_t size);
  bool waitUntilClientLeaves(Shutdown& shutdown);

  int socket_;
  std::unique_ptr<SSL, void (*)(SSL*)> ssl_;
  std::string incoming_;
  size_t consumed_ = 0;
  std::string outgoing_;
};

}  // namespace orlix::sandbox
