#pragma once

#include <memory>

#include "orlixkit/platform/UrlConnection.h"

namespace orlix {

class CurlLoop;

/// HTTPS by libcurl and OpenSSL: HTTP/1.1 over TLS 1.2 or later, all exchanges on one I/O thread
/// ("orlix-https"), which is started by the first of them.
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

 private:
  const std::shared_ptr<CurlLoop> loop_;
};

}  // namespace orlix
