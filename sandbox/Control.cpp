#include "sandbox/Control.h"

#include <array>
#include <utility>

#include "sandbox/Call.h"

namespace orlix::sandbox {

namespace {

bool isLoopback(std::string_view address) {
  return address.substr(0, 4) == "127." || address == "::1";
}

HttpAnswer done() { return answerWith({{"done", true}}); }

/// Echoes the request, so that a test sees what a redirect has dropped or kept.
HttpAnswer echo(const HttpRequest& request) {
  json::array names;
  for (const std::string& name : request.headerNames) names.push_back(json::string(name));
  return answerWith({{"method", request.method},
                     {"bytes", request.body.size()},
                     {"token1", !request.sessionToken1.empty()},
                     {"token2", !request.sessionToken2.empty()},
                     {"headers", std::move(names)}});
}

}  // namespace

struct Control::Entry {
  std::string_view method;
  std::string_view path;
  HttpAnswer (Control::*answer)(const json::object&);
};

const std::vector<Control::Entry>& Control::entries() {
  static const std::vector<Entry> all{
      {"GET", "/control/state", &Control::counts},
      {"POST", "/control/faults", &Control::addFault},
      {"GET", "/control/faults", &Control::listFaults},
      {"DELETE", "/control/faults", &Control::clearFaults},
      {"POST", "/control/sessions", &Control::setSessions},
      {"DELETE", "/control/sessions", &Control::forgetSessions},
      {"DELETE", "/control/connections", &Control::dropConnections},
      {"POST", "/control/start", &Control::setSessionStart},
      {"POST", "/control/terms", &Control::setTerms},
      {"POST", "/control/enrolled", &Control::setEnrolled},
      {"POST", "/control/cards", &Control::putCardKind},
      {"GET", "/control/purchases", &Control::listPurchases},
      {"DELETE", "/control/purchases", &Control::clearPurchases},
      {"GET", "/control/requests", &Control::listRequests},
      {"DELETE", "/control/requests", &Control::clearRequests},
  };
  return all;
}

Control::Control(State& state, Connections connections)
    : state_(state), connections_(std::move(connections)) {}

bool Control::owns(const HttpRequest& request) { return request.path.rfind("/control/", 0) == 0; }

HttpAnswer Control::answer(const HttpRequest& request) {
  if (!isLoopback(request.remoteAddress)) return refusal(403, "for this machine only");
  if (request.path == "/control/echo") return echo(request);
  for (const Entry& entry : entries()) {
    if (entry.method != request.method || entry.path != request.path) continue;
    const auto wish = request.body.empty() ? json::object{} : parseObject(request.body);
    if (!wish) return mistake("the body is no JSON object");
    const std::lock_guard lock(state_.mutex);
    return (this->*entry.answer)(*wish);
  }
  return refusal(404, "there is no such switch");
}

HttpAnswer Control::addFault(const json::object& wish) {
  if (const auto wrong = state_.faults.add(wish)) return mistake(*wrong);
  json::array faults = state_.faults.list();
  const json::value id = faults.back().at("id");
  return answerWith({{"id", id}, {"faults", std::move(faults)}});
}

HttpAnswer Control::listFaults(const json::object& /*wish*/) {
  return answerWith({{"faults", state_.faults.list()}});
}

HttpAnswer Control::clearFaults(const json::object& wish) {
  if (const auto wrong = state_.faults.clear(wish)) return mistake(*wrong);
  state_.changed.notify_all();
  return done();
}

HttpAnswer Control::dropConnections(const json::object& /*wish*/) {
  connections_.drop();
  return done();
}

HttpAnswer Control::forgetSessions(const json::object& /*wish*/) {
  state_.sessions.forgetAll();
  return done();
}

HttpAnswer Control::setSessions(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"onePerDevice", Kind::boolean}})) return mistake(*wrong);
  state_.sessions.keepOnePerDevice(booleanOf(wish, "onePerDevice"));
  return done();
}

HttpAnswer Control::setSessionStart(const json::object& wish) {
  constexpr std::array<std::string_view, 7> starts{
      "normal", "notice", "refused", "refusedEmpty", "refusedAbsent", "terms", "enrol"};
  if (auto wrong = complaint(wish, {{"answer"}, {"message", Kind::text, false}})) {
    return mistake(*wrong);
  }
  const std::string start = textOf(wish, "answer");
  if (std::find(starts.begin(), starts.end(), start) == starts.end()) {
    return mistake("there is no such session start");
  }
  state_.sessionStart = start;
  if (wish.contains("message")) state_.sessionMessage = textOf(wish, "message");
  return done();
}

HttpAnswer Control::setTerms(const json::object& wish) {
  if (auto wrong = complaint(
          wish, {{"version", Kind::integer, false}, {"waitMilliseconds", Kind::integer, false}})) {
    return mistake(*wrong);
  }
  const bool waitOnly = wish.contains("waitMilliseconds") && !wish.contains("version");
  state_.termsWaitMs = integerOf(wish, "waitMilliseconds", state_.termsWaitMs);
  if (!waitOnly) {
    state_.wallets.setTermsVersion(integerOf(wish, "version", state_.wallets.termsVersion() + 1));
  }
  return answerWith({{"version", state_.wallets.termsVersion()}});
}

HttpAnswer Control::setEnrolled(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"everyDevice", Kind::boolean}})) return mistake(*wrong);
  state_.everyDeviceEnrolled = booleanOf(wish, "everyDevice");
  return done();
}

HttpAnswer Control::putCardKind(const json::object& wish) {
  CardKind kind = state_.kinds.find(textOf(wish, "bin")).value_or(CardKind{});
  if (const auto wrong = kind.apply(wish)) return mistake(*wrong);
  state_.kinds.put(kind);
  return answerWith(kind.toJson());
}

HttpAnswer Control::counts(const json::object& /*wish*/) {
  const ConnectionCounts connections = connections_.counts();
  return answerWith({{"connections", connections.connections},
                     {"handshakes", connections.handshakes},
                     {"resumed", connections.resumed},
                     {"sessions", state_.sessions.count()},
                     {"sessionsOpened", state_.sessions.openedCount()},
                     {"requests", state_.seen.count()},
                     {"purchasesReceived", state_.purchases.receivedCount()},
                     {"purchasesPaid", state_.purchases.paymentCount()},
                     {"termsVersion", state_.wallets.termsVersion()},
                     {"walletsBehindTerms", state_.wallets.behindTerms()}});
}

HttpAnswer Control::listPurchases(const json::object& /*wish*/) {
  return answerWith(state_.purchases.account());
}

HttpAnswer Control::clearPurchases(const json::object& /*wish*/) {
  state_.purchases.clearAccount();
  return done();
}

HttpAnswer Control::listRequests(const json::object& /*wish*/) {
  return answerWith({{"requests", state_.seen.list()}});
}

HttpAnswer Control::clearRequests(const json::object& /*wish*/) {
  state_.seen.clear();
  return done();
}

}  // namespace orlix::sandbox
