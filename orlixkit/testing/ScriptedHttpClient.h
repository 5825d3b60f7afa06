// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "orlixkit/ports/HttpClient.h"
#include "orlixkit/testing/ServerReply.h"
#include "orlixkit/testing/VirtualWorld.h"

namespace orlix {

/// A request as the scripted server saw it.
struct RecordedRequest {
  std::string url;
  std::string method;
  std::vector<std::pair<std::string, std::string>> headers;
  std::optional<std::string> body;

  /// The part of the address after host and port, from the "/" on.
  std::string path() const;
  std::optional<std::string> header(const std::string& name) const;
};

class ScriptedExchange;

/// The network of a virtual world: a server that answers as a test says, in virtual time.
///
/// A script is asked when the request has reached the server, off the main thread, one at a time.
class ScriptedHttpClient : public HttpClient {
 public:
  using Script = std::function<ServerReply(const RecordedRequest&)>;

  explicit ScriptedHttpClient(std::shared_ptr<VirtualWorld> world);
  ~ScriptedHttpClient() override;

  /// Answers the requests whose path holds `part`; "" for all. Of several that fit, the one that
  /// was set last. A request without a script fails, and the failure's description says so.
  void on(std::string part, Script script);
  void on(std::string part, ServerReply reply);
  /// How long an exchange takes to reach the point where its request is sent; none at first.
  void setConnectTime(Duration connectTime) { connectTime_ = connectTime; }
  /// How long a sent request travels; none at first.
  void setLatency(Duration latency) { latency_ = latency; }

  /// All that reached the server, in order. To be read on the main thread.
  const std::vector<RecordedRequest>& requests() const { return requests_; }
  /// Those whose path holds `part`.
  std::vector<RecordedRequest> requestsTo(const std::string& part) const;
  void forgetRequests() { requests_.clear(); }
  /// Exchanges that have begun and not ended.
  std::size_t underWay() const { return exchanges_.size(); }

  HttpResult perform(const HttpRequest& request, HttpDelegate& delegate) override;
  void close() override;

 private:
  friend class ScriptedExchange;
  ServerReply replyTo(const RecordedRequest& request);

  std::shared_ptr<VirtualWorld> world_;
  std::vector<std::pair<std::string, Script>> scripts_;
  std::vector<RecordedRequest> requests_;
  std::vector<ScriptedExchange*> exchanges_;
  Duration connectTime_{};
  Duration latency_{};
  bool closed_ = false;
};

}  // namespace orlix
