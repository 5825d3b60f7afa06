#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/HttpFront.h"
#include "sandbox/Json.h"

namespace orlix::sandbox {

/// One way in which requests are answered badly, for a path and a number of requests.
struct Fault {
  enum class Kind {
    status,         ///< Another status; the request is not carried out.
    redirect,       ///< To `location`; not carried out.
    forgetSession,  ///< The session is forgotten first, so that the answer is 403.
    delay,          ///< Carried out, the answer held back for `milliseconds`.
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
    lastAnswer,       ///< Whole; the client must connect anew for its next request.
    resetConnection,  ///< The next connections, whatever their path, before TLS.
    refuseHandshake,
  };

  std::int64_t id = 0;
  Kind kind = Kind::status;
  std::string path = "*";          ///< A whole path, or "*" for every path below /vello.
  std::int64_t skip = 0;           ///< Requests let through first.
  std::int64_t count = 1;          ///< Requests spoilt after those; -1: until taken away.
  std::int64_t hits = 0;           ///< Requests spoilt so far.
  std::optional<bool> carriedOut;  ///< Overrides whether the request is carried out.
  int status = 500;
  std::string body;
  std::string location;
  std::int64_t milliseconds = 1000;
  std::int64_t bytes = 50'000'000;

  bool carriesOut() const;
  json::object toJson() const;
};

/// The faults that are switched on. Thread: the caller locks.
class Faults {
 public:
  /// Reads a fault as the control endpoint takes it and switches it on; what is wrong with it in
  /// words, or nothing.
  std::optional<std::string> add(const json::object& wish);
  std::int64_t add(Fault fault);

  /// The fault that meets this request, if any: the one switched on first that is not spent.
  std::optional<Fault> take(std::string_view path);

  ConnectionFault takeForConnection();

  bool remove(std::int64_t id);
  void clear() { faults_.clear(); }
  json::array list() const;

  /// Spoils the answer of a request that was carried out, or stands in for it.
  static void spoil(HttpAnswer& answer, const Fault& fault);

 private:
  std::optional<Fault> takeIf(bool (*fits)(const Fault&, std::string_view), std::string_view path);

  std::list<Fault> faults_;
  std::int64_t nextId_ = 1;
};

}  // namespace orlix::sandbox
