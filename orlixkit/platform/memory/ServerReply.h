#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "orlixkit/platform/Clock.h"
#include "orlixkit/platform/memory/ScriptedTrust.h"

namespace orlix {

/// What a scripted server does with one request, step by step:
///
///     ServerReply::of(200, R"({"status":"SUCCESS"})")
///     ServerReply().after(3s).status(200).body("{").after(2s).body("}")
///     ServerReply().status(200).silence()        // a header, and never a body
///     ServerReply().fail("connection reset")     // before the header
///
/// When the steps are used up without fail or silence, the answer is complete.
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

  ServerReply& after(Duration span) { return add(Pause{span}); }
  /// The server shows its certificates: what a new connection begins with.
  ServerReply& challenge(std::shared_ptr<ScriptedTrust> trust) {
    return add(Challenge{std::move(trust)});
  }
  ServerReply& status(std::int64_t code) { return add(Status{code}); }
  ServerReply& body(std::string piece) { return add(Body{std::move(piece)}); }
  /// Goes on at that address, where the script is asked anew. To follow a status from 301 on.
  ServerReply& redirect(std::string target) { return add(Redirect{std::move(target)}); }
  ServerReply& fail(std::string description) { return add(Failure{std::move(description)}); }
  /// Nothing more, until the request's deadline.
  ServerReply& silence() { return add(Silence{}); }

  const std::vector<Step>& steps() const { return steps_; }

 private:
  ServerReply& add(Step step);

  std::vector<Step> steps_;
};

}  // namespace orlix
