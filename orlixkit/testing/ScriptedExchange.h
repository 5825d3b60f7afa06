// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/testing/ScriptedHttpClient.h"

namespace orlix {

/// One exchange with the scripted server. The server takes its steps in tasks of its own, pausing
/// in the world's time; the caller waits in the world for what they bring.
class ScriptedExchange : public std::enable_shared_from_this<ScriptedExchange> {
 public:
  /// The caller's references need to hold until `run` has ended.
  ScriptedExchange(ScriptedHttpClient& network, const HttpRequest& request, HttpDelegate& delegate);

  HttpResult run();
  /// Has the caller look whether the network is still open.
  void wake() { world_->wake(this); }

 private:
  /// What something that has come means for the caller: nothing while the exchange goes on.
  using Outcome = std::optional<HttpResult>;
  using Arrival = std::function<Outcome()>;

  std::string reasonToRefuse() const;
  Outcome outcome() const;

  // The caller's.
  void connect();
  Outcome send();
  Outcome take(const ServerReply::Step& step);
  Outcome ask(const std::shared_ptr<ScriptedTrust>& trust);
  Outcome follow(const std::string& target);
  static Outcome goesOnIf(const std::function<bool()>& ask);

  // The server's.
  void atServer(Duration delay, Task step);
  void arrive(Arrival arrival);
  void answer();

  ScriptedHttpClient* network_;
  std::shared_ptr<VirtualWorld> world_;
  HttpDelegate& delegate_;
  RecordedRequest request_;  ///< of this hop
  const SteadyTime deadline_;
  std::deque<Arrival> arrived_;
  ServerReply reply_;
  std::size_t next_ = 0;
  std::int64_t status_ = 0;
  int redirects_ = 0;
  bool over_ = false;
};

}  // namespace orlix
