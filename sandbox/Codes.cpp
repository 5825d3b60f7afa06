// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Codes.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include <fmt/format.h>

#include "sandbox/Formats.h"

namespace orlix::sandbox {

namespace {

Code named(std::string_view name, std::string_view merchant, std::string_view what) {
  Code code;
  code.info = {{"code", name},
               {"currency", "R"},
               {"merchantName", merchant},
               {"shortDescription", what},
               {"orlixData", false},
               {"requestContact", false},
               {"requestBilling", false},
               {"requestShipping", false},
               {"requestPartialPayment", false},
               {"requestTip", false},
               {"acceptedCards", "visa,orbis,amex"},
               {"acceptedPayments", "AMT,CNP,SECURE_CODE"},
               {"isOnUs", false}};
  return code;
}

Code fixed(std::string_view name, std::string_view amount = "25.00") {
  Code code = named(name, "Corner Coffee", "Two flat whites");
  code.amount = amount;
  code.info["amount"] = amount;
  code.info["amountString"] = amount;
  return code;
}

Code open(std::string_view name) {
  Code code = named(name, "Harbour Books", "Your basket");
  code.info["amountString"] = "";
  return code;
}

Code with(Code code, std::string_view key, json::value value) {
  code.info[{key.data(), key.size()}] = std::move(value);
  return code;
}

Code but(Code code, const std::function<void(Code&)>& change) {
  change(code);
  return code;
}

Code range() {
  Code code = open("RANGE");
  code.min = "10.00";
  code.max = "100.00";
  code.info["amountOptions"] = {
      {"min", code.min}, {"max", code.max}, {"discountFixed", "2.50"}, {"discountPercentage", "5"}};
  return code;
}

Code tip() {
  Code code = with(fixed("TIP"), "requestTip", true);
  code.info["tipFixed"] = "5.00";
  code.info["tipPercentage"] = "10";
  return code;
}

/// Every optional key at once, some in the forms that a lenient reader must understand.
Code rich() {
  Code code = fixed("RICH", "149.90");
  code.info["extraReferenceName"] = "Customer number";
  code.info["vasProfileId"] = "42";
  code.info["vasInput"] = "NUMERIC";
  code.info["vasInputMessage"] = "Your account number";
  code.info["vasImageURL"] = "";
  code.info["extraInput"] = {{"kind", "text"}, {"length", 12}};
  code.info["isOnUs"] = "true";
  const auto account = [](std::string_view company, std::string_view number, std::string_view bill,
                          std::string_view amount) {
    return json::object{{"company", company},      {"name", "A Customer"},
                        {"accountNumber", number}, {"detail", "Monthly account"},
                        {"billId", bill},          {"amount", amount}};
  };
  json::array accounts;
  accounts.push_back(account("City Power", "1002003004", "B-1", "99.90"));
  accounts.push_back(account("City Water", "1002003005", "B-2", "50.00"));
  code.info["vasAccountsList"] = json::object{{"vasAccounts", std::move(accounts)}};
  return code;
}

Code withReceipt(std::string_view name, ReceiptPlan plan) {
  return but(fixed(name), [&](Code& code) { code.receipt = std::move(plan); });
}

Code withFault(std::string_view name, PurchaseFault fault) {
  return but(fixed(name), [&](Code& code) { code.purchaseFault = fault; });
}

Code withNextStart(std::string_view name, std::string_view start) {
  return but(fixed(name), [&](Code& code) { code.nextStart = start; });
}

struct NamedCode {
  std::string name;
  Code code;
  std::string behaviour;
};

/// In the order of the README.
const std::vector<NamedCode>& documentedCodes() {
  static const std::vector<NamedCode> all{
      {"FIXED-25", fixed("FIXED-25"), "Fixed amount; the purchase must carry exactly that."},
      {"FIXED-999", fixed("FIXED-999", "999.99"),
       "Fixed amount of 999.99; the purchase must carry exactly that."},
      {"ALIAS-25", fixed("FIXED-25"),
       "Names the code FIXED-25; a purchase under ALIAS-25 itself is refused."},
      {"OPEN", open("OPEN"), "The user gives the amount."},
      {"OPEN-10", with(open("OPEN-10"), "amount", "10.00"),
       "The user gives the amount; 10.00 is suggested."},
      {"RANGE", range(),
       "Amount from 10.00 to 100.00, with discounts; outside of it the purchase is refused."},
      {"NO-CURRENCY", but(fixed("NO-CURRENCY"), [](Code& c) { c.info.erase("currency"); }),
       "The lookup names no currency."},
      {"NO-CARDS", but(fixed("NO-CARDS"), [](Code& c) { c.withoutCards = true; }),
       "The lookup's card list is empty."},
      {"RICH", rich(),
       "Every optional key, with two bill accounts and texts under keys of other types."},
      {"EXTRA-REF", with(fixed("EXTRA-REF"), "extraReferenceName", "Customer number"),
       "Names an extra reference; a checkout goes on."},
      {"CONTACT", with(fixed("CONTACT"), "requestContact", true),
       "Asks for contact data; a checkout goes on."},
      {"TIP", tip(), "Asks for a tip; an in-app checkout does not offer it."},
      {"BILLING", with(fixed("BILLING"), "requestBilling", true),
       "Asks for a billing address; an in-app checkout does not offer it."},
      {"SHIPPING", with(fixed("SHIPPING"), "requestShipping", true),
       "Asks for a shipping address; an in-app checkout does not offer it."},
      {"PARTIAL", with(fixed("PARTIAL"), "requestPartialPayment", true),
       "Asks for a partial payment; an in-app checkout does not offer it."},
      {"ORLIX-DATA", with(fixed("ORLIX-DATA"), "orlixData", true),
       "Asks for more data; an in-app checkout does not offer it."},
      {"DECLINED", but(fixed("DECLINED"), [](Code& c) { c.purchaseStatus = "ERROR"; }),
       "The purchase is answered ERROR."},
      {"LOWER-CASE", but(fixed("LOWER-CASE"), [](Code& c) { c.purchaseStatus = "success"; }),
       "The purchase is answered \"success\" in lower case."},
      {"BIG-REFERENCE", but(fixed("BIG-REFERENCE"), [](Code& c) { c.bigReference = true; }),
       "Transaction identifiers from 2^53 + 1 upwards, which a reader that uses doubles gets "
       "wrong."},
      {"RECEIPT-FAILED", withReceipt("RECEIPT-FAILED", {.status = "FAILED"}),
       "The receipt says FAILED."},
      {"SLOW-RECEIPT", withReceipt("SLOW-RECEIPT", {.pollsBefore = 3}),
       "Three polls find an object without status, the fourth the receipt."},
      {"EMPTY-POLLS", withReceipt("EMPTY-POLLS", {.pollsBefore = 3, .emptyBody = true}),
       "Three polls find an empty body, the fourth the receipt."},
      {"NO-RECEIPT", withReceipt("NO-RECEIPT", {.pollsBefore = -1}), "The receipt never comes."},
      {"SERVER-ERROR", withFault("SERVER-ERROR", PurchaseFault::serverError),
       "Every other purchase, the first too, is answered 500 and not made."},
      {"HANG-UP", withFault("HANG-UP", PurchaseFault::hangUp),
       "Every other purchase, the first too, is made and the connection closed without an answer."},
      {"SILENCE", withFault("SILENCE", PurchaseFault::headerThenSilence),
       "Every other purchase, the first too, is made; its answer has a header and never a body."},
      {"EMPTY-ANSWER", withFault("EMPTY-ANSWER", PurchaseFault::emptyBody),
       "Every other purchase, the first too, is made and answered by an empty body."},
      {"FORGET", but(fixed("FORGET"), [](Code& c) { c.forgetsSession = true; }),
       "The session is forgotten at the next request after the lookup (403); a new session heals "
       "it."},
      {"FORBIDDEN", but(fixed("FORBIDDEN"), [](Code& c) { c.forbidsPurchases = true; }),
       "Every purchase is answered 403 until the faults are cleared."},
      {"SLOW-LOOKUP", but(fixed("SLOW-LOOKUP"), [](Code& c) { c.lookupDelayMs = 3000; }),
       "The lookup's answer is held back for 3 seconds."},
      {"NEXT-NOTICE", withNextStart("NEXT-NOTICE", "notice"),
       "The device's next session start carries a notice: out of date, may go on."},
      {"NEXT-REFUSED", withNextStart("NEXT-REFUSED", "refused"),
       "The device's next session start is refused as out of date, with a message."},
      {"NEXT-REFUSED-EMPTY", withNextStart("NEXT-REFUSED-EMPTY", "refusedEmpty"),
       "The device's next session start is refused as out of date, with an empty message."},
      {"NEXT-REFUSED-ABSENT", withNextStart("NEXT-REFUSED-ABSENT", "refusedAbsent"),
       "The device's next session start is refused as out of date, without a message."},
      {"NEXT-TERMS", withNextStart("NEXT-TERMS", "terms"),
       "The device's next session start asks for new terms, as do later ones until they are "
       "accepted."},
      {"NEXT-ENROL", withNextStart("NEXT-ENROL", "enrol"),
       "The device's next session start no longer knows its token."},
  };
  return all;
}

constexpr size_t kLongestText = 200;
constexpr size_t kLongestAmount = 12;

constexpr std::array<std::string_view, 6> kFlags{"requestTip",      "requestBilling",
                                                 "requestShipping", "requestPartialPayment",
                                                 "requestContact",  "orlixData"};

std::optional<std::string> complaintAboutWish(const json::object& wish) {
  Shape shape{{"merchant"},
              {"code", Kind::text, false},
              {"description", Kind::text, false},
              {"amount", Kind::text, false},
              {"currency", Kind::text, false}};
  for (const std::string_view flag : kFlags) shape.push_back({flag, Kind::boolean, false});
  if (auto wrong = complaint(wish, shape)) return wrong;
  for (const char* name : {"merchant", "code", "description", "currency"}) {
    if (textOf(wish, name).size() > kLongestText) {
      return fmt::format("\"{}\" is longer than {} bytes", name, kLongestText);
    }
  }
  if (textOf(wish, "merchant").empty()) return "\"merchant\" is empty";
  const std::string amount = textOf(wish, "amount");
  if (amount.empty()) return std::nullopt;
  const size_t point = amount.find('.');
  const bool cents = point == std::string::npos || amount.size() - point == 3;
  if (!isDecimalNumber(amount) || !cents || amount.size() > kLongestAmount ||
      amount.find_first_not_of("0.") == std::string::npos) {
    return "\"amount\" is no amount above 0 such as 25 or 25.00";
  }
  return std::nullopt;
}

Code codeOf(const json::object& wish, std::string_view name) {
  Code code = named(name, textOf(wish, "merchant"), textOf(wish, "description"));
  code.amount = textOf(wish, "amount");
  if (!code.amount.empty() && code.amount.find('.') == std::string::npos) code.amount += ".00";
  code.info["amountString"] = code.amount;
  if (!code.amount.empty()) code.info["amount"] = code.amount;
  if (const auto currency = textOf(wish, "currency"); !currency.empty()) {
    code.info["currency"] = currency;
  }
  for (const std::string_view flag : kFlags) {
    code.info[{flag.data(), flag.size()}] = booleanOf(wish, flag);
  }
  code.behaviour = code.amount.empty() ? "Made here; the user gives the amount."
                                       : "Made here; the purchase must carry exactly its amount.";
  return code;
}

json::object described(std::string_view name, const Code& code, std::string_view behaviour,
                       bool made) {
  json::array asked;
  for (const std::string_view flag : kFlags) {
    if (booleanOf(code.info, flag)) asked.push_back(json::string(flag));
  }
  return {{"code", name},
          {"behaviour", behaviour},
          {"made", made},
          {"merchant", textOf(code.info, "merchantName")},
          {"description", textOf(code.info, "shortDescription")},
          {"amount", code.amount},
          {"currency", textOf(code.info, "currency")},
          {"flags", std::move(asked)}};
}

const NamedCode* documentedCode(std::string_view name) {
  const auto& all = documentedCodes();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const NamedCode& entry) { return entry.name == name; });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace

std::optional<Code> Codes::find(std::string_view name) const {
  if (const NamedCode* documented = documentedCode(name)) return documented->code;
  const auto found = made_.find(name);
  if (found == made_.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> Codes::make(const json::object& wish, std::string& name) {
  if (auto wrong = complaintAboutWish(wish)) return wrong;
  name = textOf(wish, "code");
  if (documentedCode(name) != nullptr) return fmt::format("the code {} is documented", name);
  if (made_.size() >= kKept && !made_.contains(name)) {
    return fmt::format("{} codes have been made; remove some first", kKept);
  }
  const bool unnamed = name.empty();
  while (name.empty() || (unnamed && made_.contains(name))) {
    name = fmt::format("MADE-{}", ++lastNumber_);
  }
  made_.insert_or_assign(name, codeOf(wish, name));
  return std::nullopt;
}

bool Codes::remove(const std::string& name) { return made_.erase(name) != 0; }

json::array Codes::list() const {
  json::array out;
  for (const auto& [name, code] : made_) {
    out.push_back(described(name, code, code.behaviour, true));
  }
  for (const NamedCode& entry : documentedCodes()) {
    out.push_back(described(entry.name, entry.code, entry.behaviour, false));
  }
  return out;
}

}  // namespace orlix::sandbox
