// SPDX-License-Identifier: Apache-2.0

// Looking a code up, paying, polling for the receipt.

#include <fmt/format.h>

#include "sandbox/Call.h"
#include "sandbox/Formats.h"
#include "sandbox/Pages.h"
#include "sandbox/PinBlock.h"

namespace orlix::sandbox {

namespace {

/// A payment that is refused, with the "status" that says so.
struct Refusal {
  std::string status;
  std::string reason;
};

using MaybeRefusal = std::optional<Refusal>;

Refusal declined(std::string_view reason) { return {"ERROR", std::string(reason)}; }

void forbidPurchases(Faults& faults) {
  Fault fault;
  fault.kind = Fault::Kind::status;
  fault.status = 403;
  fault.path = "/vello/purchase/TALU";
  fault.count = -1;
  faults.add(std::move(fault));
}

/// Gives a person time to accept changed terms before the lookup's answer replaces that screen.
void awaitTerms(Call& call, const std::string& wallet) {
  State& state = call.state;
  state.changed.wait_for(call.lock, std::chrono::milliseconds(state.termsWaitMs), [&] {
    return state.wallets.acceptsPresentTerms(wallet) || call.shutdown.begun();
  });
}

HttpAnswer lookUp(Call& call) {
  if (textOf(call.body, "method") != "inapp") return mistake("\"method\" is not inapp");
  const std::string wallet = call.session->wallet;
  const std::string serial = call.session->deviceSerial;
  const auto code = call.state.codes.find(textOf(call.body, "qrValue"));
  if (code && code->forgetsSession) call.session->forgetAtNextRequest = true;
  awaitTerms(call, wallet);  // The session may be gone afterwards.
  if (call.shutdown.begun()) return {.delivery = Delivery::hangUp};
  if (!code) return answerWith({{"message", "This code is not known."}});

  if (code->forbidsPurchases) forbidPurchases(call.state.faults);
  if (!code->nextStart.empty()) {
    Device device = call.state.devices.find(serial).value_or(Device{.serial = serial});
    device.nextStart = code->nextStart;
    call.state.devices.put(device);
  }
  json::object cards = code->withoutCards ? json::object{{"cards", json::array{}}}
                                          : call.state.wallets.cardList(wallet);
  HttpAnswer answer =
      answerWith({{"message", ""}, {"codeInfo", code->info}, {"cardList", std::move(cards)}});
  answer.delay = std::chrono::milliseconds(code->lookupDelayMs);
  return answer;
}

/// What no client of the protocol can send; nothing when the body is well formed.
std::optional<std::string> complaintAboutPurchase(const json::object& body) {
  for (const auto* name : {"amount", "tipAmount"}) {
    if (body.contains(name) && !isDecimalNumber(textOf(body, name))) {
      return fmt::format("\"{}\" is no decimal number", name);
    }
  }
  if (!isLocation(textOf(body, "locationInfo"))) return "\"locationInfo\" is malformed";
  if (body.contains("pinData") && body.contains("secureCodeData")) {
    return "\"pinData\" and \"secureCodeData\" exclude each other";
  }
  if (const auto* pin = body.if_contains("pinData")) {
    if (auto wrong = complaint(pin->get_object(), {{"pinBlock"}}, "\"pinData\"")) return wrong;
    if (!looksLikePinBlock(textOf(pin->get_object(), "pinBlock"))) {
      return "\"pinBlock\" is not of 16 upper-case hexadecimal digits";
    }
  }
  if (const auto* secureCode = body.if_contains("secureCodeData")) {
    const Shape shape{{"PaRes"}, {"secureCodeId", Kind::integer}};
    return complaint(secureCode->get_object(), shape, "\"secureCodeData\"");
  }
  return std::nullopt;
}

MaybeRefusal checkAmount(const json::object& body, const Code& code) {
  const std::string amount = textOf(body, "amount");
  if (amount.empty()) return declined("there is no amount");
  if (!code.amount.empty()) {
    if (amount != code.amount) return declined("the amount is not the code's");
    return std::nullopt;
  }
  const double value = std::stod(amount);
  if (value <= 0) return declined("the amount is nothing");
  if (!code.min.empty() && value < std::stod(code.min)) return declined("the amount is too small");
  if (!code.max.empty() && value > std::stod(code.max)) return declined("the amount is too big");
  return std::nullopt;
}

MaybeRefusal checkPin(const Call& call, const Card& card) {
  const std::string block = textOf(call.body.at("pinData").get_object(), "pinBlock");
  if (holdsPin(block, call.session->pinKey, card.kind.pin)) return std::nullopt;
  return Refusal{"INVALID_PASSWORD", "the PIN is wrong"};
}

/// The issuer's word: its page was passed, for this card and this payment, and not used before.
MaybeRefusal checkAuthentication(Call& call, const Card& card, bool forPurchase) {
  const json::object& data = call.body.at("secureCodeData").get_object();
  Authentication* found = call.state.authentications.find(integerOf(data, "secureCodeId"));
  if (found == nullptr || found->wallet != call.session->wallet || found->cardId != card.id) {
    return declined("the authentication is not known");
  }
  if (found->paRes.empty() || textOf(data, "PaRes") != found->paRes) {
    return declined("the PaRes is not the issuer's");
  }
  if (!found->passed) return declined("the card's owner was not authenticated");
  if (found->used || found->forPurchase != forPurchase) {
    return declined("the authentication was for something else");
  }
  if (forPurchase &&
      (found->code != textOf(call.body, "code") || found->amount != textOf(call.body, "amount"))) {
    return declined("the authentication was for another payment");
  }
  found->used = true;
  return std::nullopt;
}

MaybeRefusal checkCard(Call& call, const Card& card, bool forPurchase) {
  const std::string_view way = call.body.contains("pinData")          ? "AMT"
                               : call.body.contains("secureCodeData") ? "SECURE_CODE"
                                                                      : "CNP";
  if (forPurchase && card.kind.method != way) return declined("the card pays in another way");
  if (forPurchase && !card.usable() && !card.authenticated) {
    return declined("the card is not validated");
  }
  if (card.kind.needCvv && textOf(call.body, "cvv") != card.kind.cvv) {
    return declined("the CVV is wrong");
  }
  if (way == "AMT") return checkPin(call, card);
  if (way == "SECURE_CODE") return checkAuthentication(call, card, forPurchase);
  return std::nullopt;
}

HttpAnswer refused(const Refusal& refusal) {
  HttpAnswer answer = answerWith({{"status", refusal.status}, {"errorMessage", refusal.reason}});
  answer.reason = refusal.reason;
  return answer;
}

/// The answer to a completed payment may still be spoilt, so that its client cannot know of it.
HttpAnswer spoiltBy(PurchaseFault fault, HttpAnswer answer) {
  if (fault == PurchaseFault::hangUp) answer.delivery = Delivery::hangUp;
  if (fault == PurchaseFault::headerThenSilence) answer.delivery = Delivery::headerThenSilence;
  if (fault == PurchaseFault::emptyBody) answer.body.clear();
  return answer;
}

std::string currencyOf(const Code& code) {
  const std::string currency = textOf(code.info, "currency");
  return currency.empty() ? "R" : currency;
}

HttpAnswer pay(Call& call, const Code& code, const std::string& amount) {
  State& state = call.state;
  const std::int64_t id = state.purchases.pay({.wallet = call.session->wallet,
                                               .amount = amount,
                                               .currency = currencyOf(code),
                                               .merchant = textOf(code.info, "merchantName"),
                                               .receipt = code.receipt},
                                              code.bigReference);
  return answerWith({{"status", code.purchaseStatus}, {"transactionId", id}});
}

HttpAnswer purchase(Call& call) {
  if (const auto wrong = complaintAboutPurchase(call.body)) return mistake(*wrong);
  const std::string name = textOf(call.body, "code");
  const auto code = call.state.codes.find(name);
  // An alias refers to another code; a purchase names that one.
  if (!code || textOf(code->info, "code") != name) return refused(declined("no such code"));
  const auto card = call.state.wallets.card(call.session->wallet, integerOf(call.body, "cardId"));
  if (!card) return refused(declined("no such card"));

  PurchaseFault fault = PurchaseFault::none;
  if (code->purchaseFault != PurchaseFault::none &&
      call.state.purchases.countTry(call.session->wallet, name) % 2 == 1) {
    fault = code->purchaseFault;
  }
  if (fault == PurchaseFault::serverError) return refusal(500, "down");
  if (const auto no = checkAmount(call.body, *code)) return refused(*no);
  if (const auto no = checkCard(call, *card, true)) return refused(*no);
  if (card->kind.purchase != "SUCCESS" || code->purchaseStatus == "ERROR") {
    return refused(declined("the bank declines"));
  }
  return spoiltBy(fault, pay(call, *code, textOf(call.body, "amount")));
}

HttpAnswer authenticateCard(Call& call) {
  if (const auto wrong = complaintAboutPurchase(call.body)) return mistake(*wrong);
  const auto code = call.state.codes.find(textOf(call.body, "code"));
  if (!code) return refused(declined("no such code"));
  const auto card = call.state.wallets.card(call.session->wallet, integerOf(call.body, "cardId"));
  if (!card) return refused(declined("no such card"));
  if (const auto no = checkCard(call, *card, false)) return refused(*no);
  call.state.wallets.setAuthenticated(card->id);
  return pay(call, *code, "1.00");
}

HttpAnswer pollReceipt(Call& call) {
  Payment* payment = call.state.purchases.find(integerOf(call.body, "transactionId"));
  if (payment == nullptr || payment->wallet != call.session->wallet) {
    return mistake("the transaction is not known");
  }
  ++payment->polls;
  const ReceiptPlan& plan = payment->receipt;
  if (!payment->hasReceipt()) {
    return plan.emptyBody ? HttpAnswer{} : answerWith({{"preview1", "The payment is being made"}});
  }
  return answerWith({{"receiptId", payment->id},
                     {"preview1", payment->merchant},
                     {"preview2", fmt::format("{} {}", payment->currency, payment->amount)},
                     {"htmlContent", fmt::format("<p>{}: {} {}</p>", escaped(payment->merchant),
                                                 escaped(payment->currency), payment->amount)},
                     {"status", plan.status},
                     {"amount", payment->amount}});
}

Shape purchaseShape(std::vector<Field> more) {
  Shape shape{{"code"},
              {"cardId", Kind::integer},
              {"billingListId", Kind::integer},
              {"shippingListId", Kind::integer},
              {"cvv", Kind::text, false},
              {"locationInfo", Kind::text, false},
              {"amount", Kind::text, false},
              {"tipAmount", Kind::text, false},
              {"extraRefValue", Kind::text, false}};
  shape.insert(shape.end(), more.begin(), more.end());
  return shape;
}

}  // namespace

const std::vector<Route>& checkoutRoutes() {
  static const std::vector<Route> routes{
      {"/vello/lookup/query/v2/TALU", Access::enrolled, {{"qrValue"}, {"method"}}, &lookUp},
      {"/vello/purchase/TALU", Access::enrolled,
       purchaseShape({{"pinData", Kind::object, false}, {"secureCodeData", Kind::object, false}}),
       &purchase},
      {"/vello/auth3Ds/TALU", Access::enrolled, purchaseShape({{"secureCodeData", Kind::object}}),
       &authenticateCard},
      {"/vello/receipt/poll/TALU",
       Access::enrolled,
       {{"transactionId", Kind::integer}},
       &pollReceipt},
  };
  return routes;
}

}  // namespace orlix::sandbox
