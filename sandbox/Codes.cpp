#include "sandbox/Codes.h"

#include <functional>
#include <map>
#include <utility>

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

std::map<std::string, Code, std::less<>> makeAll() {
  std::map<std::string, Code, std::less<>> all{
      {"FIXED-25", fixed("FIXED-25")},
      {"FIXED-999", fixed("FIXED-999", "999.99")},
      {"ALIAS-25", fixed("FIXED-25")},
      {"OPEN", open("OPEN")},
      {"OPEN-10", with(open("OPEN-10"), "amount", "10.00")},
      {"RANGE", range()},
      {"NO-CURRENCY", but(fixed("NO-CURRENCY"), [](Code& c) { c.info.erase("currency"); })},
      {"NO-CARDS", but(fixed("NO-CARDS"), [](Code& c) { c.withoutCards = true; })},
      {"RICH", rich()},
      {"EXTRA-REF", with(fixed("EXTRA-REF"), "extraReferenceName", "Customer number")},
      {"CONTACT", with(fixed("CONTACT"), "requestContact", true)},
      {"TIP", tip()},
      {"BILLING", with(fixed("BILLING"), "requestBilling", true)},
      {"SHIPPING", with(fixed("SHIPPING"), "requestShipping", true)},
      {"PARTIAL", with(fixed("PARTIAL"), "requestPartialPayment", true)},
      {"ORLIX-DATA", with(fixed("ORLIX-DATA"), "orlixData", true)},
      {"DECLINED", but(fixed("DECLINED"), [](Code& c) { c.purchaseStatus = "ERROR"; })},
      {"LOWER-CASE", but(fixed("LOWER-CASE"), [](Code& c) { c.purchaseStatus = "success"; })},
      {"BIG-REFERENCE", but(fixed("BIG-REFERENCE"), [](Code& c) { c.bigReference = true; })},
      {"RECEIPT-FAILED", withReceipt("RECEIPT-FAILED", {.status = "FAILED"})},
      {"SLOW-RECEIPT", withReceipt("SLOW-RECEIPT", {.pollsBefore = 3})},
      {"EMPTY-POLLS", withReceipt("EMPTY-POLLS", {.pollsBefore = 3, .emptyBody = true})},
      {"NO-RECEIPT", withReceipt("NO-RECEIPT", {.pollsBefore = -1})},
      {"SERVER-ERROR", withFault("SERVER-ERROR", PurchaseFault::serverError)},
      {"HANG-UP", withFault("HANG-UP", PurchaseFault::hangUp)},
      {"SILENCE", withFault("SILENCE", PurchaseFault::headerThenSilence)},
      {"EMPTY-ANSWER", withFault("EMPTY-ANSWER", PurchaseFault::emptyBody)},
      {"FORGET", but(fixed("FORGET"), [](Code& c) { c.forgetsSession = true; })},
      {"FORBIDDEN", but(fixed("FORBIDDEN"), [](Code& c) { c.forbidsPurchases = true; })},
      {"SLOW-LOOKUP", but(fixed("SLOW-LOOKUP"), [](Code& c) { c.lookupDelayMs = 3000; })},
  };
  for (const auto& [name, start] : {std::pair{"NEXT-NOTICE", "notice"},
                                    {"NEXT-REFUSED", "refused"},
                                    {"NEXT-REFUSED-EMPTY", "refusedEmpty"},
                                    {"NEXT-REFUSED-ABSENT", "refusedAbsent"},
                                    {"NEXT-TERMS", "terms"},
                                    {"NEXT-ENROL", "enrol"}}) {
    all.emplace(name, withNextStart(name, start));
  }
  return all;
}

}  // namespace

std::optional<Code> findCode(std::string_view name) {
  static const std::map<std::string, Code, std::less<>> all = makeAll();
  const auto found = all.find(name);
  if (found == all.end()) return std::nullopt;
  return found->second;
}

}  // namespace orlix::sandbox
