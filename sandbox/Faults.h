// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Http.h"
#include "sandbox/Json.h"

namespace orlix::sandbox {

/// One way in which requests are answered badly, for a path and a number of requests.
struct Fault {
  enum class Kind {
    status,         ///< Another status; the request is not carried out.
    redirect,       ///< To `location`; not carried out.
    forgetSession,  ///< The session is forgotten first, so that the answer is 403.
    delay,          ///< Carried out, the answer held back for `milliseconds`.
    hold,           ///< Carried out, the answer held back until the fault is cleared.
    hangUp,         ///< The rest: carried out, the answer spoilt.
    silence,
    headerThenSilence,
    cutInBody,
    trickle,
    hugeBody,
    deepJson,
    notJson,
    notUtf8,
    emptyBody,
    wrongTypes,
    nullValues,
    lastAnswer,       ///< Complete; the client must open a new connection for its next request.
    resetConnection,  ///< The next connections, whatever their path, before TLS.
    refuseHandshake,
    holdHandshake,  ///< Left to wait until the fault is cleared.
  };

  std::int64_t id = 0;
  Kind kind = Kind::status;
  /// A whole path, a prefix with "*" behind it, or "*" for every path below /vello.
  std::string path = "*";
  std::int64_t skip = 0;             ///< Requests let through first.
  std::int64_t count = 1;            ///< Requests spoilt after those; -1: until taken away.
  std::int64_t hits = 0;             ///< Requests spoilt so far.
  std::optional<bool> carriedOut{};  ///< Overrides whether the request is carried out.
  int status = 500;
  std::string body{};
  std::string location{};
  std::int64_t milliseconds = 1000;
  std::int64_t bytes = 50'000'000;

  bool carriesOut() const;
  /// True for the kinds that change when an answer leaves, not what it says.
  bool holdsBack() const { return kind == Kind::delay || kind == Kind::hold; }
  json::object toJson() const;
};

/// The faults that are switched on. Thread: the caller locks.
class Faults {
 public:
  /// Reads a fault as the control endpoint takes it and switches it on; what is wrong with it in
  /// words, or nothing.
  std::optional<std::string> add(const json::object& wish);
  std::int64_t add(Fault fault);

  /// The kind as the control endpoint names it.
  static std::string_view nameOf(Fault::Kind kind);

  /// The faults that meet this request: at most one that holds its answer back and one of the
  /// others, of each the one switched on first that is not spent.
  std::vector<Fault> take(std::string_view path);

  /// The fault that meets a new connection, if any.
  std::optional<Fault> takeForConnection();

  /// Switches off the faults that have the "id", "kind" and "path" of `wish`, all without any of
  /// them; what is wrong with it in words, or nothing.
  std::optional<std::string> clear(const json::object& wish);
  /// False once the fault has been cleared; a fault that is spent is still there.
  bool has(std::int64_t id) const;
  json::array list() const;

  /// Spoils the answer of a request that was carried out, or replaces it.
  static void spoil(HttpAnswer& answer, const Fault& fault);

 private:
  static constexpr size_t kKept = 1000;  ///< The oldest are dropped, those that are spent first.

  std::optional<Fault> takeIf(bool (*fits)(const Fault&, std::string_view), std::string_view path);

  std::list<Fault> faults_;
  std::int64_t nextId_ = 1;
};

}  // namespace orlix::sandbox
