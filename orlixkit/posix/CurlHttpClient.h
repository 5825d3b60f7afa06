// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <string>

#include "orlixkit/ports/HttpClient.h"
#include "orlixkit/posix/CurlChannel.h"

namespace orlix {

/// HTTPS by libcurl and OpenSSL: HTTP/1.1 over TLS 1.2 or later, driven by the calling thread. Each
/// exchange has a channel (CurlChannel) to itself. Free channels are kept for later exchanges with
/// the same origin; the most recently used one is taken first.
///
/// A request carries the header fields that it was given, in their order, and Host and
/// Content-Length. The delegate of the exchange that opens a connection verifies it; TLS sessions
/// are not resumed, since a resumed session presents no certificate.
class CurlHttpClient : public HttpClient {
 public:
  /// Deadlines are taken on `clock`. Throws std::runtime_error when libcurl cannot be prepared.
  explicit CurlHttpClient(std::shared_ptr<Clock> clock);

  HttpResult perform(const HttpRequest& request, HttpDelegate& delegate) override;
  void close() override;

  /// Makes every exchange read the clock again, for a clock that can be stepped. Any thread.
  void wake();

 private:
  class Lease;
  using Channels = std::list<CurlChannel>;

  Channels::iterator take(const std::string& origin);
  void giveBack(Channels::iterator channel);

  const std::shared_ptr<Clock> clock_;
  std::atomic<bool> closed_ = false;  // set under lock_
  std::mutex lock_;
  Channels busy_;  // this and the next guarded by lock_
  Channels idle_;  // the one used last is the last
};

}  // namespace orlix
