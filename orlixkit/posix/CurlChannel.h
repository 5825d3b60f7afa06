// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <curl/curl.h>

namespace orlix {

/// A multi handle of libcurl with the connections that it keeps. Serves one exchange at a time. One
/// thread at a time, except for `wake`.
class CurlChannel {
 public:
  /// The channel's owner finds it by `origin`. Throws std::runtime_error when libcurl has
  /// no handle.
  explicit CurlChannel(std::string origin);
  CurlChannel(const CurlChannel&) = delete;
  CurlChannel& operator=(const CurlChannel&) = delete;

  const std::string& origin() const { return origin_; }
  CURLM* multi() const { return multi_.get(); }
  /// Ends the wait for the network that is under way, or else the next one. Any thread.
  void wake() const { curl_multi_wakeup(multi_.get()); }

  /// Whether no kept connection has received anything. Between two exchanges only a closing message
  /// of the server can arrive, and libcurl would still reuse the connection after it.
  bool isQuiet() const;

  curl_socket_t open(const curl_sockaddr& address);
  /// CURLOPT_CLOSESOCKETFUNCTION; `self` is the CurlChannel.
  static int onClose(void* self, curl_socket_t socket);

 private:
  struct CleanUpMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };
  const std::string origin_;
  std::vector<curl_socket_t> sockets_;  // before the handle, whose end closes them
  const std::unique_ptr<CURLM, CleanUpMulti> multi_;
};

}  // namespace orlix
