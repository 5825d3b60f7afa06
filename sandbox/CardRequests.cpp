// SPDX-License-Identifier: Apache-2.0

// Looking after the cards of a wallet: list, link, remove, validate, ask what a BIN needs.

#include <algorithm>
#include <array>
#include <cctype>

#include <fmt/format.h>

#include "sandbox/Call.h"
#include "sandbox/Formats.h"

namespace orlix::sandbox {

namespace {

constexpr std::string_view kAddedMessage = "Your card has been added";

/// The mobile number that the bank knows for every card that must be relinked.
constexpr std::string_view kNumberAtTheBank = "27821234567";

HttpAnswer withCards(Call& call, std::string_view status) {
  return answerWith(
      {{"status", status}, {"cardList", call.state.wallets.cardList(call.session->wallet)}});
}

HttpAnswer listCards(Call& call) {
  return answerWith(call.state.wallets.cardList(call.session->wallet));
}

HttpAnswer binInfo(Call& call) {
  const std::string bin = textOf(call.body, "bin");
  if (bin.size() != CardKinds::kBinLength) return mistake("\"bin\" has not nine characters");
  const auto kind = call.state.kinds.find(bin);
  if (!kind || !kind->supported) return answerWith({{"cardSupported", false}});
  return answerWith({{"cardSupported", true},
                     {"needAccount", kind->needAccount},
                     {"needExp", kind->needExp},
                     {"needDob", kind->needDob},
                     {"needCardHolderName", kind->needCardHolderName}});
}

/// A client sends exactly what the BIN asks for; the rest stays empty.
std::optional<std::string> complaintAboutUnasked(const json::object& body, const CardKind& kind) {
  const std::array<std::pair<std::string_view, bool>, 6> values{
      {{"expiryMonth", kind.needExp},
       {"expiryYear", kind.needExp},
       {"dateOfBirth", kind.needDob},
       {"cardHolderName", kind.needCardHolderName},
       {"account", kind.needAccount},
       {"linkedMsisdn", kind.link == "RELINK"}}};
  for (const auto& [name, asked] : values) {
    if (!asked && !textOf(body, name).empty()) {
      return fmt::format("\"{}\" was not asked for by the BIN", name);
    }
  }
  return std::nullopt;
}

bool isMonth(const std::string& text) {
  return text.size() == 2 && isDigits(text) && text >= "01" && text <= "12";
}

/// What a bank checks itself, whatever the application let through.
bool satisfies(const json::object& body, const CardKind& kind) {
  const std::string year = textOf(body, "expiryYear");
  const std::string birth = textOf(body, "dateOfBirth");
  const std::string account = textOf(body, "account");
  if (!isDigits(textOf(body, "cardNumber"))) return false;
  if (kind.needExp && !(isMonth(textOf(body, "expiryMonth")) && year.size() == 2 && isDigits(year)))
    return false;
  if (kind.needDob && !(birth.size() == 8 && isDigits(birth))) return false;
  if (kind.needCardHolderName && textOf(body, "cardHolderName").empty()) return false;
  return !kind.needAccount || account == "Savings" || account == "Current" || account == "Credit";
}

/// A number in whatever way it was written: digits only, the national zero replaced by 27.
std::string internationalForm(const std::string& typed) {
  std::string digits;
  std::copy_if(typed.begin(), typed.end(), std::back_inserter(digits),
               [](unsigned char c) { return std::isdigit(c) != 0; });
  if (digits.rfind("00", 0) == 0) return digits.substr(2);
  if (digits.rfind('0', 0) == 0) return "27" + digits.substr(1);
  return digits;
}

HttpAnswer linkCard(Call& call) {
  if (!isLocation(textOf(call.body, "locationInfo"))) {
    return mistake("\"locationInfo\" is malformed");
  }
  const std::string number = textOf(call.body, "cardNumber");
  const auto kind = call.state.kinds.find(number);
  if (!kind || !kind->supported) return withCards(call, "FAILED");
  if (const auto wrong = complaintAboutUnasked(call.body, *kind)) return mistake(*wrong);
  if (!satisfies(call.body, *kind)) return withCards(call, "FAILED");

  std::string status = kind->link;
  if (status == "RELINK") {
    const std::string linked = textOf(call.body, "linkedMsisdn");
    if (!linked.empty())
      status = internationalForm(linked) == kNumberAtTheBank ? "SUCCESS" : "FAILED";
  }
  if (status == "SUCCESS" && !call.state.wallets.add(call.session->wallet, *kind, number)) {
    status = "FAILED";  // The wallet is full.
  }
  return withCards(call, status);
}

HttpAnswer delinkCard(Call& call) {
  const std::int64_t id = integerOf(call.body, "cardId");
  if (!call.state.wallets.card(call.session->wallet, id)) return withCards(call, "FAILED");
  call.state.wallets.remove(call.session->wallet, id);
  return withCards(call, "SUCCESS");
}

/// Validates the ownership of `card`; returns the message for the user.
std::string_view validate(State& state, const std::string& wallet, const Card& card,
                          const std::string& input) {
  if (card.usable()) return kAddedMessage;
  const std::string& type = card.kind.validation;
  const bool proven = (type == "DOB" && input == card.kind.dateOfBirth) ||
                      (type == "SIMPLE" && input.empty()) || (type == "3DS" && card.authenticated);
  if (proven) {
    state.wallets.setValidated(card.id);
    return kAddedMessage;
  }
  if (type == "3DS") return "Authenticate the card with its issuer first";
  if (type != "DOB") return "The card cannot be validated in this way";
  state.wallets.remove(wallet, card.id);
  return "The date of birth is wrong and the card has been removed";
}

HttpAnswer validateCard(Call& call) {
  const std::string& wallet = call.session->wallet;
  const auto card = call.state.wallets.card(wallet, integerOf(call.body, "cardId"));
  std::string_view message = "The card is not in your wallet";
  if (card && !booleanOf(call.body, "validate")) message = "Nothing was validated";
  if (card && booleanOf(call.body, "validate")) {
    message = validate(call.state, wallet, *card, textOf(call.body, "inputValue"));
  }
  return answerWith({{"message", message}, {"cardList", call.state.wallets.cardList(wallet)}});
}

}  // namespace

const std::vector<Route>& cardRoutes() {
  static const std::vector<Route> routes{
      {"/vello/card/list/TALU", Access::enrolled, {}, &listCards},
      {"/vello/card/bin/TALU", Access::enrolled, {{"bin"}}, &binInfo},
      {"/vello/card/link/TALU",
       Access::enrolled,
       {{"cardNumber"},
        {"account"},
        {"dateOfBirth"},
        {"expiryMonth"},
        {"expiryYear"},
        {"linkedMsisdn"},
        {"cardHolderName"},
        {"locationInfo"}},
       &linkCard},
      {"/vello/card/delink/TALU", Access::enrolled, {{"cardId", Kind::integer}}, &delinkCard},
      {"/vello/card/validate/TALU",
       Access::enrolled,
       {{"validate", Kind::boolean}, {"cardId", Kind::integer}, {"inputValue"}},
       &validateCard},
  };
  return routes;
}

}  // namespace orlix::sandbox
