// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Judgement.h"

#include <fmt/format.h>

#include "sandbox/PinBlock.h"

namespace orlix::sandbox {

namespace {

std::string textIn(const json::value& value) {
  return value.is_string() ? std::string(value.get_string()) : std::string();
}

class Judge {
 public:
  Judge(State& state, const Session* session) : state_(state), session_(session) {}

  std::string explain(std::string_view key, const json::value& value, const json::object& body) {
    if (key == "pinblock") return pinBlock(textIn(value), body);
    if (key == "cvv") return cvv(textIn(value), body);
    if (key == "pares") return paRes(textIn(value), body);
    return {};
  }

 private:
  std::optional<Card> cardOf(const json::object& body) const {
    if (session_ == nullptr || session_->wallet.empty()) return std::nullopt;
    return state_.wallets.card(session_->wallet, integerOf(body, "cardId"));
  }

  std::string pinBlock(const std::string& block, const json::object& body) const {
    if (!looksLikePinBlock(block)) return "PIN block, malformed";
    const auto card = cardOf(body);
    if (!card) return "PIN block, of a session or card that is not known";
    return holdsPin(block, session_->pinKey, card->kind.pin) ? "PIN block, correct PIN"
                                                             : "PIN block, wrong PIN";
  }

  std::string cvv(const std::string& typed, const json::object& body) const {
    const auto card = cardOf(body);
    if (!card) return "CVV, of a session or card that is not known";
    if (!card->kind.needCvv) return "CVV, which the card does not need";
    return typed == card->kind.cvv ? "CVV, correct" : "CVV, wrong";
  }

  std::string paRes(const std::string& paRes, const json::object& body) const {
    const json::value* data = body.if_contains("secureCodeData");
    if (data == nullptr || !data->is_object()) return {};
    const Authentication* found =
        state_.authentications.find(integerOf(data->get_object(), "secureCodeId"));
    if (found == nullptr) return "PaRes, of an authentication that is not known";
    if (found->paRes.empty() || paRes != found->paRes) return "PaRes, not the issuer's";
    if (!found->passed) return "PaRes, the issuer's; the authentication failed";
    return found->used ? "PaRes, the issuer's; used before"
                       : "PaRes, the issuer's; the authentication passed";
  }

  State& state_;
  const Session* session_;
};

}  // namespace

MaskedBody maskRequest(State& state, const HttpRequest& request) {
  if (!request.form.empty()) {
    std::string names;
    for (const auto& [name, value] : request.form) names += (names.empty() ? "" : ", ") + name;
    return {.text = fmt::format("A form of {} bytes with the fields {}", request.body.size(),
                                names.substr(0, kLongestKeptBody))};
  }
  Judge judge(state, state.sessions.find(request.sessionToken1(), request.sessionToken2()));
  return maskBody(request.body, request.contentType(),
                  [&judge](std::string_view key, const json::value& value,
                           const json::object& body) { return judge.explain(key, value, body); });
}

MaskedBody maskAnswer(const HttpAnswer& answer) {
  return maskBody(answer.body, answer.contentType, {});
}

}  // namespace orlix::sandbox
