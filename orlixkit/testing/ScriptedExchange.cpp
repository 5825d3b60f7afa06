// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/ScriptedExchange.h"

#include <algorithm>
#include <utility>

namespace orlix {

namespace {

using End = HttpResult::End;

constexpr int kMostRedirects = 20;

/// Scheme, host and port of an address.
std::string serverOf(const std::string& url) {
  const std::size_t scheme = url.find("://");
  return url.substr(0, url.find('/', scheme == std::string::npos ? 0 : scheme + 3));
}

bool isHttps(const std::string& url) { return url.starts_with("https://"); }

bool breaksTheLine(const std::string& text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos;
}

RecordedRequest recorded(const HttpRequest& request) {
  RecordedRequest made{request.url, request.method, request.headers, std::nullopt};
  if (request.body) {
    made.body.emplace(request.body->reveal().begin(), request.body->reveal().end());
  }
  return made;
}

HttpResult failure(std::string why) { return {End::failed, std::move(why)}; }

}  // namespace

ScriptedExchange::ScriptedExchange(ScriptedHttpClient& network, const HttpRequest& request,
                                   HttpDelegate& delegate)
    : network_(&network),
      world_(network.world_),
      delegate_(delegate),
      request_(recorded(request)),
      deadline_(request.deadline) {}

HttpResult ScriptedExchange::run() {
  // What the server does after the end has no effect.
  const std::shared_ptr<void> end(nullptr, [this](void*) { over_ = true; });
  if (const std::string refusal = reasonToRefuse(); !refusal.empty()) {
    return failure(refusal);
  }
  connect();
  for (;;) {
    if (const Outcome ended = outcome()) {
      return *ended;
    }
    if (arrived_.empty()) {
      world_->wait("waits for the server", this, deadline_);
      continue;
    }
    const Arrival arrival = std::move(arrived_.front());
    arrived_.pop_front();
    if (const Outcome ended = arrival()) {
      return *ended;
    }
  }
}

std::string ScriptedExchange::reasonToRefuse() const {
  if (!isHttps(request_.url)) {
    return "The address " + request_.url + " is not secure.";
  }
  const auto isBroken = [](const auto& field) {
    return breaksTheLine(field.first) || breaksTheLine(field.second);
  };
  if (std::any_of(request_.headers.begin(), request_.headers.end(), isBroken)) {
    return "A header field holds a line break.";
  }
  return {};
}

ScriptedExchange::Outcome ScriptedExchange::outcome() const {
  if (network_->closed_ || world_->isShutDown()) {
    return HttpResult{End::closed};
  }
  const SteadyTime now = world_->now();
  // What arrives at the last moment still counts.
  if (now > deadline_ || (now == deadline_ && arrived_.empty())) {
    return HttpResult{End::timedOut};
  }
  return std::nullopt;
}

void ScriptedExchange::connect() {
  atServer(network_->connectTime_, [this] { arrive([this] { return send(); }); });
}

ScriptedExchange::Outcome ScriptedExchange::send() {
  const Outcome stopped = goesOnIf([this] { return delegate_.mayBeSent(); });
  if (!stopped) {
    atServer(network_->latency_, [this] {
      reply_ = network_->replyTo(request_);
      next_ = 0;
      answer();
    });
  }
  return stopped;
}

ScriptedExchange::Outcome ScriptedExchange::take(const ServerReply::Step& step) {
  if (const auto* challenge = std::get_if<ServerReply::Challenge>(&step)) {
    return ask(challenge->trust);
  }
  if (const auto* status = std::get_if<ServerReply::Status>(&step)) {
    status_ = status->code;
    return goesOnIf([this] { return delegate_.didReceiveResponse(status_); });
  }
  if (const auto* body = std::get_if<ServerReply::Body>(&step)) {
    return goesOnIf([&] { return delegate_.didReceiveData(toBytes(body->piece)); });
  }
  if (const auto* redirect = std::get_if<ServerReply::Redirect>(&step)) {
    return follow(redirect->target);
  }
  return failure(std::get<ServerReply::Failure>(step).description);
}

ScriptedExchange::Outcome ScriptedExchange::ask(const std::shared_ptr<ScriptedTrust>& trust) {
  const bool refused = goesOnIf([&] {
                         return delegate_.trusts(trust->missing ? nullptr : trust.get());
                       }).has_value();
  trust->setAccepted(!refused);
  return refused ? Outcome(failure("The server's certificates were refused.")) : std::nullopt;
}

ScriptedExchange::Outcome ScriptedExchange::follow(const std::string& target) {
  if (++redirects_ > kMostRedirects || !isHttps(target)) {
    return failure(isHttps(target) ? "Too many redirects."
                                   : "A redirect leads to no secure address.");
  }
  if (status_ >= 301 && status_ <= 303 && request_.method == "POST") {
    request_.method = "GET";
    request_.body.reset();
  }
  if (serverOf(target) != serverOf(request_.url)) {
    if (request_.body && !request_.body->empty()) {
      return failure("The redirect to " + serverOf(target) +
                     " would carry the request's body to another server.");
    }
    std::erase_if(request_.headers,
                  [](const auto& field) { return field.first != "Content-Type"; });
  }
  request_.url = target;
  return send();
}

ScriptedExchange::Outcome ScriptedExchange::goesOnIf(const std::function<bool()>& ask) {
  try {
    return ask() ? std::nullopt : Outcome(HttpResult{End::stopped});
  } catch (...) {
    return HttpResult{End::stopped};
  }
}

void ScriptedExchange::atServer(Duration delay, Task step) {
  world_->inBackground(
      "server",
      [self = shared_from_this(), step = std::move(step)] {
        if (!self->over_) {
          step();
        }
      },
      delay);
}

void ScriptedExchange::arrive(Arrival arrival) {
  arrived_.push_back(std::move(arrival));
  wake();
}

/// Takes the steps up to the next pause, or to the end of what the server does.
void ScriptedExchange::answer() {
  while (next_ < reply_.steps().size()) {
    const ServerReply::Step& step = reply_.steps()[next_++];
    if (std::holds_alternative<ServerReply::Silence>(step)) {
      return;
    }
    if (const auto* pause = std::get_if<ServerReply::Pause>(&step)) {
      return atServer(pause->span, [this] { answer(); });
    }
    arrive([this, step] { return take(step); });
    if (std::holds_alternative<ServerReply::Redirect>(step) ||
        std::holds_alternative<ServerReply::Failure>(step)) {
      return;
    }
  }
  arrive([] { return HttpResult{End::complete}; });
}

}  // namespace orlix
