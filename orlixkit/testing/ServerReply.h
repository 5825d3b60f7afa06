// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "orlixkit/ports/Clock.h"
#include "orlixkit/testing/ScriptedTrust.h"

namespace orlix {

/// The steps of a scripted server's answer to one request:
///
///     ServerReply::of(200, R"({"status":"SUCCESS"})")
///     ServerReply().after(3s).status(200).body("{").after(2s).body("}")
///     ServerReply().status(200).silence()        // a header, never a body
///     ServerReply().fail("connection reset")     // before the header
///
/// The answer is complete after the last step unless that is `fail` or `silence`.
class ServerReply {
 public:
  struct Pause {
    Duration span;
  };
  struct Challenge {
    std::shared_ptr<ScriptedTrust> trust;
  };
  struct Status {
    std::int64_t code;
  };
  struct Body {
    std::string piece;
  };
  struct Redirect {
    std::string target;
  };
  struct Failure {
    std::string description;
  };
  struct Silence {};
  using Step = std::variant<Pause, Challenge, Status, Body, Redirect, Failure, Silence>;

  static ServerReply of(std::int64_t status, std::string body = {});
  static ServerReply ok(std::string body) { return of(200, std::move(body)); }

  ServerReply& after(Duration span) { return add(Pause{span}); }
  /// The server presents its certificates, as at the beginning of a new connection.
  ServerReply& challenge(std::shared_ptr<ScriptedTrust> trust) {
    return add(Challenge{std::move(trust)});
  }
  ServerReply& status(std::int64_t code) { return add(Status{code}); }
  ServerReply& body(std::string piece) { return add(Body{std::move(piece)}); }
  /// Redirects to that address, for which the script is consulted again. Follows a status of 301 or
  /// above.
  ServerReply& redirect(std::string target) { return add(Redirect{std::move(target)}); }
  ServerReply& fail(std::string description) { return add(Failure{std::move(description)}); }
  /// Sends nothing more, until the request's deadline.
  ServerReply& silence() { return add(Silence{}); }

  const std::vector<Step>& steps() const { return steps_; }

 private:
  ServerReply& add(Step step);

  std::vector<Step> steps_;
};

}  // namespace orlix
