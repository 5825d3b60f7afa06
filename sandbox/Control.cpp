// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Control.h"

#include <charconv>
#include <utility>

#include <fmt/format.h>

#include "sandbox/Call.h"

namespace orlix::sandbox {

namespace {

bool isLoopback(std::string_view address) {
  return address.substr(0, 4) == "127." || address == "::1";
}

/// Echoes the request, so that a test sees what a redirect has dropped or kept.
HttpAnswer echo(const HttpRequest& request) {
  json::array names;
  for (const auto& [name, value] : request.headers) names.push_back(json::string(name));
  return answerWith({{"method", request.method},
                     {"bytes", request.body.size()},
                     {"token1", !request.sessionToken1().empty()},
                     {"token2", !request.sessionToken2().empty()},
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
      {"GET", "/control/codes", &Control::listCodes},
      {"POST", "/control/codes", &Control::makeCode},
      {"DELETE", "/control/codes", &Control::removeCode},
      {"GET", "/control/payments", &Control::listPayments},
      {"POST", "/control/payments", &Control::setPayments},
      {"GET", "/control/messages", &Control::listMessages},
      {"GET", "/control/wallets", &Control::listWallets},
      {"POST", "/control/wallets/cards", &Control::addCard},
      {"PATCH", "/control/wallets/cards", &Control::changeCard},
      {"DELETE", "/control/wallets/cards", &Control::removeCard},
      {"POST", "/control/devices", &Control::setDevice},
      {"DELETE", "/control/devices", &Control::removeDevice},
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
    if (entry.method != "GET") state_.touch();
    return (this->*entry.answer)(*wish);
  }
  return noSuchSwitch(request.path);
}

/// Names the methods of the path, or all there is when nothing has that path.
HttpAnswer Control::noSuchSwitch(std::string_view path) {
  std::string methods;
  std::string all;
  for (const Entry& entry : entries()) {
    if (entry.path == path)
      methods += fmt::format("{}{}", methods.empty() ? "" : ", ", entry.method);
    all += fmt::format("{}{} {}", all.empty() ? "" : ", ", entry.method, entry.path);
  }
  if (!methods.empty()) return refusal(405, fmt::format("{} takes {}", path, methods));
  return refusal(404, fmt::format("there is no such switch; there are {}", all));
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
  if (auto wrong = complaint(
          wish, {{"answer"}, {"message", Kind::text, false}, {"once", Kind::boolean, false}})) {
    return mistake(*wrong);
  }
  const std::string start = textOf(wish, "answer");
  if (!isSessionStart(start)) return mistake(noSessionStart(start));
  if (booleanOf(wish, "once")) {
    state_.nextSessionStart = start;
  } else {
    state_.sessionStart = start;
    state_.nextSessionStart.clear();
  }
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
  if (const auto wrong = kind.complaint()) return mistake(*wrong);
  if (state_.kinds.isFull() && !state_.kinds.find(kind.bin)) {
    return mistake(fmt::format("there are {} card rules already", CardKinds::kMost));
  }
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

HttpAnswer Control::listCodes(const json::object& /*wish*/) {
  return answerWith({{"codes", state_.codes.list()}});
}

HttpAnswer Control::makeCode(const json::object& wish) {
  std::string name;
  if (const auto wrong = state_.codes.make(wish, name)) return mistake(*wrong);
  return answerWith({{"code", name}});
}

HttpAnswer Control::removeCode(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"code"}})) return mistake(*wrong);
  if (!state_.codes.remove(textOf(wish, "code"))) return mistake("no such code has been made");
  return done();
}

HttpAnswer Control::listPayments(const json::object& /*wish*/) {
  return answerWith(
      {{"holds", state_.purchases.holds()}, {"payments", state_.purchases.payments()}});
}

HttpAnswer Control::setPayments(const json::object& wish) {
  // A text, because a page's script cannot tell every 64-bit number.
  const Shape shape{{"hold", Kind::boolean, false},
                    {"transactionId", Kind::text, false},
                    {"receipt", Kind::text, false}};
  if (auto wrong = complaint(wish, shape)) return mistake(*wrong);
  if (wish.contains("transactionId") != wish.contains("receipt")) {
    return mistake("\"transactionId\" and \"receipt\" go together");
  }
  if (wish.contains("hold")) state_.purchases.hold(booleanOf(wish, "hold"));
  if (!wish.contains("receipt")) return done();
  const std::string receipt = textOf(wish, "receipt");
  if (receipt != "SUCCESS" && receipt != "FAILED") {
    return mistake("\"receipt\" is neither SUCCESS nor FAILED");
  }
  const std::string id = textOf(wish, "transactionId");
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number);
  if (error != std::errc() || end != id.data() + id.size() ||
      !state_.purchases.settle(number, receipt)) {
    return mistake("there is no such payment");
  }
  return done();
}

HttpAnswer Control::listMessages(const json::object& /*wish*/) {
  return answerWith({{"messages", state_.messages.list()}});
}

HttpAnswer Control::listRequests(const json::object& /*wish*/) {
  return answerWith({{"requests", state_.seen.list()}});
}

HttpAnswer Control::clearRequests(const json::object& /*wish*/) {
  state_.seen.clear();
  return done();
}

}  // namespace orlix::sandbox
