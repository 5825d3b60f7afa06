// SPDX-License-Identifier: Apache-2.0

#include "sandbox/CardKinds.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <variant>

#include <fmt/format.h>

#include "sandbox/Bounds.h"
#include "sandbox/Formats.h"

namespace orlix::sandbox {

namespace {

using Member = std::variant<std::string CardKind::*, bool CardKind::*>;

struct NamedMember {
  std::string_view name;
  Member member;
};

const std::vector<NamedMember>& members() {
  static const std::vector<NamedMember> all{
      {"bin", &CardKind::bin},
      {"number", &CardKind::number},
      {"cardType", &CardKind::cardType},
      {"product", &CardKind::product},
      {"issuer", &CardKind::issuer},
      {"supported", &CardKind::supported},
      {"needExp", &CardKind::needExp},
      {"needDob", &CardKind::needDob},
      {"needCardHolderName", &CardKind::needCardHolderName},
      {"needAccount", &CardKind::needAccount},
      {"link", &CardKind::link},
      {"method", &CardKind::method},
      {"needCvv", &CardKind::needCvv},
      {"pin", &CardKind::pin},
      {"cvv", &CardKind::cvv},
      {"purchase", &CardKind::purchase},
      {"validation", &CardKind::validation},
      {"dateOfBirth", &CardKind::dateOfBirth},
      {"authentication", &CardKind::authentication},
  };
  return all;
}

CardKind of(std::string number) {
  CardKind kind;
  kind.bin = number.substr(0, CardKinds::kBinLength);
  kind.number = std::move(number);
  return kind;
}

CardKind paysBy(std::string number, std::string type, std::string method, bool needCvv = false) {
  CardKind kind = of(std::move(number));
  kind.cardType = std::move(type);
  kind.method = std::move(method);
  kind.needCvv = needCvv;
  return kind;
}

CardKind proves(std::string number, std::string validation, std::string method = "AMT") {
  CardKind kind = of(std::move(number));
  kind.validation = std::move(validation);
  kind.method = std::move(method);
  return kind;
}

CardKind authenticates(std::string number, std::string behaviour) {
  CardKind kind = of(std::move(number));
  kind.method = "SECURE_CODE";
  kind.product = "Credit";
  kind.authentication = std::move(behaviour);
  return kind;
}

CardKind asks(std::string number, bool exp, bool dob, bool name, bool account) {
  CardKind kind = of(std::move(number));
  kind.needExp = exp;
  kind.needDob = dob;
  kind.needCardHolderName = name;
  kind.needAccount = account;
  return kind;
}

CardKind links(std::string number, std::string status) {
  CardKind kind = of(std::move(number));
  kind.link = std::move(status);
  return kind;
}

std::vector<CardKind> paying() {
  std::vector<CardKind> kinds{
      paysBy("4000001000001111", "visa", "AMT"),
      paysBy("5000002000002222", "orbis", "CNP"),
      paysBy("3700003000003333", "amex", "CNP", true),
      paysBy("4000004000004444", "visa", "AMT", true),
      paysBy("6000005000005555", "club", "WALLET"),
      paysBy("4000006000006666", "visa", "CNP"),
      paysBy("4000007000007777", "visa", "AMT"),
  };
  kinds[2].cvv = "1234";
  kinds[5].purchase = "ERROR";
  kinds[6].pin = "987654321";
  return kinds;
}

std::vector<CardKind> proving() {
  return {proves("4200001000000201", "DOB"), proves("4200002000000202", "SIMPLE"),
          proves("4200003000000203", "3DS", "SECURE_CODE"),
          proves("4200004000000204", "FINGERPRINT")};
}

std::vector<CardKind> authenticating() {
  std::vector<CardKind> kinds{
      authenticates("4300001000000301", "pass"),
      authenticates("4300002000000302", "notEnrolled"),
      authenticates("4300003000000303", "error"),
      authenticates("4300004000000304", "html"),
      authenticates("4300005000000305", "htmlPresentFalse"),
      authenticates("4300006000000306", "neverReturns"),
      authenticates("4300007000000307", "twice"),
      authenticates("4300008000000308", "pass"),
      authenticates("4300009000000309", "pass"),
      authenticates("4300010000000310", "largePage"),
  };
  kinds[7].purchase = "ERROR";
  kinds[8].needCvv = true;
  return kinds;
}

std::vector<CardKind> adding() {
  std::vector<CardKind> kinds{
      asks("4100001000000101", false, false, false, false),
      asks("4100002000000102", true, false, false, false),
      asks("4100003000000103", false, true, false, false),
      asks("4100004000000104", false, false, true, false),
      asks("4100005000000105", false, false, false, true),
      asks("4100006000000106", true, true, true, true),
      asks("4100007000000107", false, false, false, false),
      links("4100008000000108", "RELINK"),
      links("4100009000000109", "FAILED"),
      links("4100010000000110", "FAILED"),
      links("4100011000000111", "PENDING"),
  };
  kinds[6].supported = false;
  kinds[9].issuer = "Somebody else's bank";
  return kinds;
}

void append(std::vector<CardKind>& to, std::vector<CardKind> more) {
  to.insert(to.end(), more.begin(), more.end());
}

}  // namespace

json::object CardKind::toJson() const {
  json::object out;
  for (const NamedMember& named : members()) {
    json::value& value = out[{named.name.data(), named.name.size()}];
    std::visit([&](auto pointer) { value = this->*pointer; }, named.member);
  }
  return out;
}

std::optional<std::string> CardKind::apply(const json::object& change) {
  for (const json::key_value_pair& pair : change) {
    const std::string_view key(pair.key().data(), pair.key().size());
    bool done = false;
    for (const auto& [name, member] : members()) {
      if (name != key) continue;
      if (const auto* text = std::get_if<std::string CardKind::*>(&member)) {
        done = pair.value().is_string();
        if (done) this->*(*text) = textOf(change, key);
      } else if (const auto* flag = std::get_if<bool CardKind::*>(&member)) {
        done = pair.value().is_bool();
        if (done) this->*(*flag) = pair.value().get_bool();
      }
    }
    if (!done) {
      std::string names;
      for (const auto& [name, member] : members()) {
        const bool isText = std::holds_alternative<std::string CardKind::*>(member);
        names += fmt::format("{}{} ({})", names.empty() ? "" : ", ", name,
                             isText ? "string" : "boolean");
      }
      return fmt::format("\"{}\" is no field of a card kind, or of another type; the fields are {}",
                         key, names);
    }
  }
  if (bin.size() != CardKinds::kBinLength) return "\"bin\" must have nine characters";
  return std::nullopt;
}

std::optional<std::string> CardKind::complaint() const {
  const auto holds = [](std::string_view text, size_t least, size_t most) {
    return isDigits(text) && text.size() >= least && text.size() <= most;
  };
  if (!holds(bin, CardKinds::kBinLength, CardKinds::kBinLength))
    return "\"bin\" is not of nine digits";
  if (!holds(pin, 4, 12)) return "\"pin\" is not of 4 to 12 digits";
  if (!holds(cvv, 3, 4)) return "\"cvv\" is not of 3 or 4 digits";
  constexpr std::array<std::string_view, 8> kPages{"pass",  "notEnrolled",      "error",
                                                   "html",  "htmlPresentFalse", "neverReturns",
                                                   "twice", "largePage"};
  if (std::find(kPages.begin(), kPages.end(), authentication) == kPages.end()) {
    return fmt::format("\"authentication\" is none of {}", fmt::join(kPages, ", "));
  }
  for (const auto& [name, member] : members()) {
    const auto* text = std::get_if<std::string CardKind::*>(&member);
    if (text != nullptr && (this->*(*text)).size() > kLongestKeptText) {
      return fmt::format("\"{}\" is longer than {} bytes", name, kLongestKeptText);
    }
  }
  return std::nullopt;
}

CardKinds::CardKinds(Database& database) : database_(database) {
  database_.run("CREATE TABLE IF NOT EXISTS card_kinds (bin TEXT PRIMARY KEY, rule TEXT NOT NULL)");
  Database::Transaction filling(database_);
  for (const CardKind& kind : documented()) {
    database_.run("INSERT OR IGNORE INTO card_kinds VALUES (?, ?)",
                  {kind.bin, json::serialize(kind.toJson())});
  }
  filling.commit();
  for (const auto& row : database_.ask("SELECT rule FROM card_kinds")) {
    const auto rule = parseObject(row.text(0));
    CardKind kind;
    if (!rule || kind.apply(*rule)) throw std::runtime_error("the database has a bad card kind");
    byBin_[kind.bin] = kind;
  }
}

std::optional<CardKind> CardKinds::find(std::string_view numberOrBin) const {
  const auto found = byBin_.find(numberOrBin.substr(0, kBinLength));
  if (found == byBin_.end()) return std::nullopt;
  return found->second;
}

void CardKinds::put(const CardKind& kind) {
  database_.run("INSERT OR REPLACE INTO card_kinds VALUES (?, ?)",
                {kind.bin, json::serialize(kind.toJson())});
  byBin_[kind.bin] = kind;
}

std::vector<CardKind> CardKinds::demonstration() {
  std::vector<CardKind> kinds = paying();
  append(kinds, proving());
  append(kinds, authenticating());
  return kinds;
}

std::vector<CardKind> CardKinds::documented() {
  std::vector<CardKind> kinds = demonstration();
  append(kinds, adding());
  return kinds;
}

}  // namespace orlix::sandbox
