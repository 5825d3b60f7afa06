// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sandbox/Bounds.h"
#include "sandbox/SeenRequests.h"

namespace orlix::sandbox {

struct Session {
  std::string token1;
  std::string token2;
  std::int64_t number = 0;  ///< From 1, in the order of opening.
  std::string deviceSerial;
  std::string wallet;  ///< Empty until the device is enrolled.
  std::vector<unsigned char> pinKey;
  bool forgetAtNextRequest = false;
};

/// The sessions that the server knows; a restart forgets them all.
/// Thread: the caller locks. A returned pointer is good until the next change.
class Sessions {
 public:
  /// A session with fresh tokens and PIN key. A device keeps its latest sessions only, so that a
  /// client that re-establishes without end does not fill the memory.
  ///
  /// With `keepOnePerDevice` the device keeps the new session only.
  const Session& open(std::string_view deviceSerial, std::string_view wallet);

  /// The session with both tokens, or none.
  Session* find(std::string_view token1, std::string_view token2);

  /// Which session these tokens are or were of: also after its end, unless many have been opened
  /// since.
  Origin originOf(std::string_view token1, std::string_view token2) const;

  /// From the next `open` on. A device's earlier sessions are kept until then.
  void keepOnePerDevice(bool one) { keptForEachDevice_ = one ? 1 : kSeveralSessions; }

  void forget(std::string_view token1);
  void forgetDevice(std::string_view serial);
  void forgetAll();
  size_t count() const { return sessions_.size(); }
  /// All that were ever opened.
  std::int64_t openedCount() const { return openedCount_; }

 private:
  void remember(const Session& session);

  static constexpr size_t kSeveralSessions = 16;
  static constexpr size_t kKept = kMostKept;  ///< Of all devices; the oldest are dropped.

  std::list<Session> sessions_;  ///< Latest first.
  size_t keptForEachDevice_ = kSeveralSessions;
  std::int64_t openedCount_ = 0;
  std::unordered_map<std::string, Origin> origins_;  ///< By both tokens.
  std::deque<std::string> openedTokens_;             ///< The keys of `origins_`, oldest first.
};

}  // namespace orlix::sandbox
