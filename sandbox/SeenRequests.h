#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "sandbox/Http.h"
#include "sandbox/Json.h"

namespace orlix::sandbox {

/// Where a request came from, in words that are no secret.
struct Origin {
  std::int64_t session = 0;  ///< Number of the session whose tokens it carries; 0: of none.
  std::string device{};      ///< "deviceSerial"; empty when it is not known.
};

/// The latest requests as they were, for those who ask afterwards. Thread: the caller locks.
class SeenRequests {
 public:
  /// Returns the request's number: in the order of arrival, from 1, never used twice.
  std::int64_t arrived(const HttpRequest& request, Origin origin);
  /// The status of the answer is known; it may still be held back.
  void decided(std::int64_t number, int status);
  /// The answer has been sent, or never will be.
  void ended(std::int64_t number);

  void clear() { seen_.clear(); }
  size_t count() const { return seen_.size(); }
  json::array list() const;

 private:
  static constexpr size_t kept = 10'000;  ///< The oldest are dropped.

  struct Seen {
    std::int64_t number;
    Origin origin;
    std::string method;
    std::string path;
    bool token1;
    bool token2;
    std::string contentType;
    size_t bytes;
    int status = 0;
    bool underWay = true;
  };

  /// None when it has been dropped.
  Seen* find(std::int64_t number);

  std::deque<Seen> seen_;  ///< Their numbers have no gaps.
  std::int64_t lastNumber_ = 0;
};

}  // namespace orlix::sandbox
