// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

namespace orlix::bench {

/// The minimal cost of a wallet request: one reused curl handle, without further work.
class BareClient {
 public:
  enum class Roots { anchorOnly, systemToo };

  /// `anchor`: file of a root certificate in DER form. The system's roots are looked up by name.
  BareClient(std::string base, const std::string& anchor, Roots roots = Roots::anchorOnly);
  ~BareClient();
  BareClient(const BareClient&) = delete;
  BareClient& operator=(const BareClient&) = delete;

  /// Posts and returns the body of the answer. Throws std::runtime_error unless it is a 200.
  std::string post(const std::string& path, const std::string& body);
  /// Sent with every request from now on.
  void setTokens(const std::string& first, const std::string& second);

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
  std::string base_;
};

}  // namespace orlix::bench
