#pragma once

#include <memory>

#include "orlixkit/platform/UrlConnection.h"

namespace orlix {

class CurlLoop;
class WaitingWork;

/// HTTPS by libcurl and OpenSSL: HTTP/1.1 over TLS 1.2 or later. One thread at a time does the
/// input and output of all exchanges: the I/O thread ("orlix-https"), which the first of them
/// starts, or a thread that waits for its own exchange on a condition of a clock made with
/// `waitingWork`. The latter also runs its delegate queue's callbacks itself, but for the trust
/// question.
///
/// A request carries the header fields that it was given, in their order, and beside them only Host
/// and Content-Length. A connection is judged by its delegate in each handshake; TLS sessions are
/// not resumed, since a resumed one shows no certificate to judge.
class CurlConnections : public UrlConnections {
 public:
  CurlConnections();
  ~CurlConnections() override;

  std::shared_ptr<UrlConnection> newConnection(
      UrlRequest request, std::shared_ptr<UrlConnectionDelegate> delegate) override;
  void close() override;

  std::shared_ptr<WaitingWork> waitingWork() const;

 private:
  const std::shared_ptr<CurlLoop> loop_;
};

}  // namespace orlix
