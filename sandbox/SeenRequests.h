// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "sandbox/Http.h"
#include "sandbox/Json.h"
#include "sandbox/Masking.h"
#include "sandbox/Moment.h"

namespace orlix::sandbox {

/// Where a request came from, in words that are no secret.
struct Origin {
  std::int64_t session = 0;  ///< Number of the session whose tokens it carries; 0: of none.
  std::string device{};      ///< "deviceSerial"; empty when it is not known.
};

/// The latest requests as they were, for those who ask afterwards. No secret is kept. Bounded in
/// number and, for the bodies, in bytes. Thread: the caller locks.
class SeenRequests {
 public:
  /// Returns the request's number: in the order of arrival, from 1, never used twice.
  std::int64_t arrived(const HttpRequest& request, Origin origin, MaskedBody body, Moment at);

  /// What the server made of a request.
  struct Decision {
    int status = 0;
    std::string reason{};  ///< Why it is refused; empty when it is not.
    std::string faults{};  ///< The kinds of the faults that it met.
    MaskedBody body{};
  };

  /// The answer is known; it may still be held back.
  void decided(std::int64_t number, Decision decision);
  /// The answer has been sent, or never will be.
  void ended(std::int64_t number, Moment at);

  void clear();
  size_t count() const { return seen_.size(); }
  /// Each with its bodies.
  json::array list() const;

  /// Counts every change of the account.
  std::int64_t revision() const { return revision_; }
  /// Number of the oldest request that is kept, or of the next one when none is.
  std::int64_t oldest() const { return seen_.empty() ? lastNumber_ + 1 : seen_.front().number; }
  /// The requests that have changed since that revision, without their bodies, in their order.
  json::array changedSince(std::int64_t revision) const;
  /// One request with its bodies; nothing when it has been dropped.
  std::optional<json::object> whole(std::int64_t number) const;

  static constexpr size_t kKept = kMostKept;              ///< The oldest are dropped.
  static constexpr size_t kBytesKept = size_t{64} << 20;  ///< Of bodies; so are the oldest.

 private:
  struct Seen {
    std::int64_t number;
    Origin origin;
    std::string method;
    std::string path;
    std::string token1;  ///< Shortened.
    std::string token2;
    std::string contentType;
    size_t bytes;
    Moment arrived;
    MaskedBody asked;
    Decision answer{};
    std::optional<Moment> ended{};
    std::int64_t changed = 0;
    bool bodiesDropped = false;

    size_t bodyBytes() const { return asked.bytes() + answer.body.bytes(); }
    json::object summary() const;
    json::object whole() const;
  };

  /// None when it has been dropped.
  Seen* find(std::int64_t number);
  void dropOldBodies();

  std::deque<Seen> seen_;  ///< Their numbers have no gaps.
  std::int64_t lastNumber_ = 0;
  std::int64_t revision_ = 0;
  size_t bodyBytes_ = 0;
  std::int64_t firstWithBodies_ = 1;
};

}  // namespace orlix::sandbox
