// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Vello.h"

#include <fmt/format.h>

namespace orlix::sandbox {

namespace {

const Route* findRoute(std::string_view path) {
  for (const auto* routes :
       {&sessionRoutes(), &cardRoutes(), &checkoutRoutes(), &secureCodeRoutes()}) {
    for (const Route& route : *routes) {
      if (route.path == path) return &route;
    }
  }
  return nullptr;
}

/// The session that the request's two tokens name, unless it is to be forgotten now.
Session* sessionOf(State& state, const HttpRequest& request) {
  Session* session = state.sessions.find(request.sessionToken1(), request.sessionToken2());
  if (session != nullptr && session->forgetAtNextRequest) {
    state.sessions.forget(request.sessionToken1());
    return nullptr;
  }
  return session;
}

}  // namespace

HttpAnswer answerWith(const json::object& object) { return {.body = json::serialize(object)}; }

HttpAnswer refusal(int status, std::string_view reason) {
  HttpAnswer answer = answerWith({{"error", reason}});
  answer.status = status;
  answer.reason = reason;
  return answer;
}

HttpAnswer done() { return answerWith({{"done", true}}); }

HttpAnswer mistake(std::string_view reason) { return refusal(400, reason); }

Vello::Vello(State& state, EventLog& log, Shutdown& shutdown)
    : state_(state), log_(log), shutdown_(shutdown) {}

bool Vello::isPurchase(const HttpRequest& request) {
  return request.method == "POST" &&
         (request.path == "/vello/purchase/TALU" || request.path == "/vello/auth3Ds/TALU");
}

bool Vello::isSessionStart(const HttpRequest& request) {
  return request.method == "POST" && request.path == "/vello/session/new/TALU";
}

HttpAnswer Vello::answer(const HttpRequest& request) {
  const Route* route = findRoute(request.path);
  if (route == nullptr) return refusal(404, "there is no such request");
  if (request.method != "POST") return refusal(405, "the wallet protocol uses POST only");
  return answerRoute(*route, request);
}

HttpAnswer Vello::answerRoute(const Route& route, const HttpRequest& request) {
  std::unique_lock lock(state_.mutex);
  Session* session = nullptr;
  // The session comes first: a client whose session is gone must open a new one, whatever it sent.
  if (route.access != Access::open) {
    session = sessionOf(state_, request);
    if (session == nullptr) return refusal(403, "the session is not known");
    if (route.access == Access::enrolled && session->wallet.empty()) {
      return refusal(401, "the device is not enrolled");
    }
  }
  if (request.contentType() != "application/json") {
    return mistake("the Content-Type is not application/json");
  }
  const auto body = parseObject(request.body);
  if (!body) return mistake("the body is no JSON object");
  if (const auto wrong = complaint(*body, route.shape)) return mistake(*wrong);
  Call call{.state = state_,
            .lock = lock,
            .log = log_,
            .shutdown = shutdown_,
            .session = session,
            .body = *body,
            .path = route.path};
  return route.answer(call);
}

}  // namespace orlix::sandbox
