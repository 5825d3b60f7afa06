// SPDX-License-Identifier: Apache-2.0

// The part of the control address that looks after devices, wallets and their cards.

#include <algorithm>

#include "sandbox/Call.h"
#include "sandbox/Control.h"
#include "sandbox/Formats.h"

namespace orlix::sandbox {

namespace {

constexpr std::int64_t kMostListed = 500;
constexpr size_t kShortestNumber = 13;
constexpr size_t kLongestNumber = 19;

/// A card and the rule of its kind, without the PIN and the CVV.
json::object described(const Card& card) {
  const CardKind& kind = card.kind;
  return {{"cardId", card.id},
          {"hint", card.hint},
          {"bin", kind.bin},
          {"cardType", kind.cardType},
          {"issuer", kind.issuer},
          {"validation", kind.validation},
          {"validated", card.validated},
          {"authenticated", card.authenticated},
          {"usable", card.usable()},
          {"method", kind.method},
          {"needCvv", kind.needCvv},
          {"declines", kind.purchase != "SUCCESS"},
          {"authentication", kind.authentication}};
}

json::array kindsToAdd() {
  json::array out;
  for (const CardKind& kind : CardKinds::documented()) {
    out.push_back(json::object{{"number", kind.number},
                               {"cardType", kind.cardType},
                               {"method", kind.method},
                               {"validation", kind.validation},
                               {"authentication", kind.authentication}});
  }
  return out;
}

}  // namespace

HttpAnswer Control::listWallets(const json::object& /*wish*/) {
  json::array wallets;
  for (const std::string& name : state_.wallets.list(kMostListed)) {
    json::array cards;
    for (const Card& card : state_.wallets.cards(name)) cards.push_back(described(card));
    wallets.push_back(json::object{{"wallet", name},
                                   {"acceptsTerms", state_.wallets.acceptsPresentTerms(name)},
                                   {"cards", std::move(cards)}});
  }
  json::array devices;
  for (const Device& device : state_.devices.list(kMostListed)) {
    devices.push_back(json::object{
        {"device", device.serial}, {"wallet", device.wallet}, {"nextStart", device.nextStart}});
  }
  return answerWith({{"everyDeviceEnrolled", state_.everyDeviceEnrolled},
                     {"wallets", std::move(wallets)},
                     {"devices", std::move(devices)},
                     {"kinds", kindsToAdd()}});
}

HttpAnswer Control::addCard(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"wallet"}, {"number"}})) return mistake(*wrong);
  const std::string wallet = textOf(wish, "wallet");
  const std::string number = textOf(wish, "number");
  if (!state_.wallets.has(wallet)) return mistake("there is no such wallet");
  if (!isDigits(number) || number.size() < kShortestNumber || number.size() > kLongestNumber) {
    return mistake("a card number has 13 to 19 digits");
  }
  const auto kind = state_.kinds.find(number);
  if (!kind) return mistake("no card rule begins with the first nine digits of this number");
  if (!state_.wallets.add(wallet, *kind, number)) return mistake("the wallet is full");
  return done();
}

HttpAnswer Control::changeCard(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"wallet"},
                                    {"cardId", Kind::integer},
                                    {"validated", Kind::boolean, false},
                                    {"authenticated", Kind::boolean, false}})) {
    return mistake(*wrong);
  }
  const auto card = state_.wallets.card(textOf(wish, "wallet"), integerOf(wish, "cardId"));
  if (!card) return mistake("there is no such card");
  if (wish.contains("validated")) {
    state_.wallets.setValidated(card->id, booleanOf(wish, "validated"));
  }
  if (wish.contains("authenticated")) {
    state_.wallets.setAuthenticated(card->id, booleanOf(wish, "authenticated"));
  }
  return done();
}

HttpAnswer Control::removeCard(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"wallet"}, {"cardId", Kind::integer}})) return mistake(*wrong);
  const std::string wallet = textOf(wish, "wallet");
  if (!state_.wallets.card(wallet, integerOf(wish, "cardId"))) {
    return mistake("there is no such card");
  }
  state_.wallets.remove(wallet, integerOf(wish, "cardId"));
  return done();
}

/// A removed device has to enrol again; its wallet stays for the other devices of its number.
HttpAnswer Control::removeDevice(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"device"}})) return mistake(*wrong);
  const std::string serial = textOf(wish, "device");
  if (!state_.devices.find(serial)) return mistake("there is no such device");
  state_.devices.remove(serial);
  state_.sessions.forgetDevice(serial);
  return done();
}

HttpAnswer Control::setDevice(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"device"}, {"nextStart"}})) return mistake(*wrong);
  auto device = state_.devices.find(textOf(wish, "device"));
  if (!device) return mistake("there is no such device");
  const std::string start = textOf(wish, "nextStart");
  if (!isSessionStart(start)) return mistake(noSessionStart(start));
  device->nextStart = start == "normal" ? "" : start;
  state_.devices.put(*device);
  return done();
}

}  // namespace orlix::sandbox
