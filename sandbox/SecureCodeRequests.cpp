// SPDX-License-Identifier: Apache-2.0

// Where a card's owner is sent to be authenticated by the issuer.

#include <fmt/format.h>

#include "sandbox/Call.h"
#include "sandbox/Formats.h"
#include "sandbox/Pages.h"

namespace orlix::sandbox {

namespace {

HttpAnswer error(std::string_view text) {
  return answerWith({{"cardSupported", true}, {"error", text}});
}

/// The issuer's page itself, for the cards whose server sends it instead of an address.
std::string embeddedPage(const State& state, const Authentication& authentication) {
  return issuerPage({.action = state.origin + "/issuer/otp",
                     .paReq = authentication.paReq,
                     .termUrl = state.origin + "/vello/secure_code.jsp",
                     .md = "",
                     .amount = authentication.amount});
}

HttpAnswer begin(Call& call, const Card& card, bool forPurchase) {
  const std::string& behaviour = card.kind.authentication;
  if (card.kind.method != "SECURE_CODE" || behaviour == "notEnrolled") {
    return answerWith({{"cardSupported", false}});
  }
  if (behaviour == "error") return error("The issuer cannot be reached.");
  const Authentication& begun =
      call.state.authentications.begin({.wallet = call.session->wallet,
                                        .cardId = card.id,
                                        .code = textOf(call.body, "code"),
                                        .amount = textOf(call.body, "amount"),
                                        .behaviour = behaviour,
                                        .forPurchase = forPurchase});
  json::object out{{"cardSupported", true}, {"secureCodeId", begun.id}};
  if (behaviour == "html" || behaviour == "htmlPresentFalse") {
    out["htmlPresent"] = behaviour == "html";
    out["htmlContent"] = embeddedPage(call.state, begun);
    return answerWith(out);
  }
  out["url"] = call.state.origin + "/issuer/acs";
  out["payload"] = begun.paReq;
  out["automator"] = {{"type", "SMS_OTP"},
                      {"javascript", ""},
                      {"smsRegex", "[0-9]{6}"},
                      {"inputPrompt", "One-time code"}};
  return answerWith(out);
}

HttpAnswer pageForPurchase(Call& call) {
  const auto card = call.state.wallets.card(call.session->wallet, integerOf(call.body, "cardId"));
  if (!card) return error("The card is not in your wallet.");
  if (!call.state.codes.find(textOf(call.body, "code"))) return error("This code is not known.");
  const std::string amount = textOf(call.body, "amount");
  if (!amount.empty() && !isDecimalNumber(amount)) {
    return mistake("\"amount\" is no decimal number");
  }
  return begin(call, *card, true);
}

HttpAnswer pageForCard(Call& call) {
  const auto card = call.state.wallets.card(call.session->wallet, integerOf(call.body, "cardId"));
  if (!card) return error("The card is not in your wallet.");
  return begin(call, *card, false);
}

}  // namespace

const std::vector<Route>& secureCodeRoutes() {
  static const std::vector<Route> routes{
      {"/vello/card/scUrl/TALU",
       Access::enrolled,
       {{"cardId", Kind::integer}, {"code"}, {"amount"}},
       &pageForPurchase},
      {"/vello/card/get3dsValidateUrl/TALU",
       Access::enrolled,
       {{"cardId", Kind::integer}},
       &pageForCard},
  };
  return routes;
}

}  // namespace orlix::sandbox
