// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <string>
#include <thread>

namespace orlix::bench {

/// A TCP proxy on 127.0.0.1 that takes connections at once and passes every byte on later, in
/// either direction, as a long line does.
class DelayingProxy {
 public:
  /// In front of the server at `base`, "https://127.0.0.1:PORT/...". Throws std::runtime_error when
  /// it cannot listen.
  DelayingProxy(std::string base, std::chrono::milliseconds delay);
  ~DelayingProxy();
  DelayingProxy(const DelayingProxy&) = delete;
  DelayingProxy& operator=(const DelayingProxy&) = delete;

  /// The server's base address by way of this proxy.
  const std::string& base() const { return base_; }

 private:
  void run(int server) const;

  const std::chrono::milliseconds delay_;
  std::string base_;
  int listener_ = -1;
  int stop_ = -1;  ///< an event; set at the end
  std::thread thread_;
};

}  // namespace orlix::bench
