// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/ScriptedHttpClient.h"

#include <algorithm>

#include "orlixkit/testing/ScriptedExchange.h"

namespace orlix {

std::string RecordedRequest::path() const {
  const std::size_t scheme = url.find("://");
  const std::size_t slash = url.find('/', scheme == std::string::npos ? 0 : scheme + 3);
  return slash == std::string::npos ? "/" : url.substr(slash);
}

std::optional<std::string> RecordedRequest::header(const std::string& name) const {
  const auto found = std::find_if(headers.begin(), headers.end(),
                                  [&name](const auto& field) { return field.first == name; });
  return found == headers.end() ? std::nullopt : std::optional(found->second);
}

ScriptedHttpClient::ScriptedHttpClient(std::shared_ptr<VirtualWorld> world)
    : world_(std::move(world)) {}

ScriptedHttpClient::~ScriptedHttpClient() = default;

void ScriptedHttpClient::on(std::string part, Script script) {
  scripts_.emplace_back(std::move(part), std::move(script));
}

void ScriptedHttpClient::on(std::string part, ServerReply reply) {
  on(std::move(part), [reply = std::move(reply)](const RecordedRequest&) { return reply; });
}

std::vector<RecordedRequest> ScriptedHttpClient::requestsTo(const std::string& part) const {
  std::vector<RecordedRequest> found;
  for (const RecordedRequest& request : requests_) {
    if (request.path().find(part) != std::string::npos) {
      found.push_back(request);
    }
  }
  return found;
}

ServerReply ScriptedHttpClient::replyTo(const RecordedRequest& request) {
  requests_.push_back(request);
  const std::string path = request.path();
  const auto fits = [&path](const auto& entry) {
    return path.find(entry.first) != std::string::npos;
  };
  const auto found = std::find_if(scripts_.rbegin(), scripts_.rend(), fits);
  if (found == scripts_.rend()) {
    return ServerReply().fail("ScriptedHttpClient: there is no script for " + request.url);
  }
  const Script script = found->second;  // held: it may set another one
  return script(request);
}

HttpResult ScriptedHttpClient::perform(const HttpRequest& request, HttpDelegate& delegate) {
  world_->mayBeOvertaken();
  const auto exchange = std::make_shared<ScriptedExchange>(*this, request, delegate);
  exchanges_.push_back(exchange.get());
  const std::shared_ptr<void> end(nullptr, [&](void*) { std::erase(exchanges_, exchange.get()); });
  return exchange->run();
}

void ScriptedHttpClient::close() {
  closed_ = true;
  for (ScriptedExchange* const exchange : exchanges_) {
    exchange->wake();
  }
}

}  // namespace orlix
