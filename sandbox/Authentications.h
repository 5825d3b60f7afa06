// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace orlix::sandbox {

/// One run of a card's owner through the issuer's page.
struct Authentication {
  std::int64_t id = 0;  ///< "secureCodeId".
  std::string wallet;
  std::int64_t cardId = 0;
  std::string code;  ///< Empty when the card alone is authenticated.
  std::string amount;
  std::string behaviour;
  bool forPurchase = false;

  std::string paReq{};
  std::string paRes{};  ///< Empty until the page has ended.
  bool passed = false;
  bool used = false;
  int wrongCodes = 0;
  int terminationViews = 0;
};

/// Authentications under way and done; a restart forgets them. Thread: the caller locks. A
/// returned pointer is good until the next `begin`.
class Authentications {
 public:
  Authentication& begin(Authentication wanted);

  Authentication* find(std::int64_t id);
  Authentication* findByPaReq(std::string_view paReq);
  Authentication* findByPaRes(std::string_view paRes);

  /// Ends the page: the authentication gets its PaRes.
  void end(Authentication& authentication, bool passed);

 private:
  static constexpr size_t kKept = 1000;  ///< The oldest are dropped.

  std::map<std::int64_t, Authentication> all_;
  std::int64_t nextId_ = 9'007'199'254'740'993;  // 2^53 + 1: lost by a reader that uses doubles.
};

}  // namespace orlix::sandbox
