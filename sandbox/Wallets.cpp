// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Wallets.h"

#include "sandbox/Bounds.h"

namespace orlix::sandbox {

namespace {

constexpr size_t kHintLength = 4;

}  // namespace

json::object Card::toJson() const {
  json::object out{{"cardId", id},
                   {"cardHint", hint},
                   {"needCvv", kind.needCvv},
                   {"cardType", kind.cardType},
                   {"drawLine", ""},
                   {"method", kind.method},
                   {"imageId", 0},
                   {"product", kind.product},
                   {"authed3Ds", authenticated},
                   {"issuer", kind.issuer}};
  if (!kind.validation.empty()) {
    out["validated"] = validated;
    out["validationtype"] = kind.validation;
  }
  if (kind.method == "CNP") out["allowCnp"] = true;
  return out;
}

Wallets::Wallets(Database& database, CardKinds& kinds) : database_(database), kinds_(kinds) {
  database_.run(
      "CREATE TABLE IF NOT EXISTS wallets (wallet TEXT PRIMARY KEY, accepted_terms INTEGER NOT "
      "NULL)");
  database_.run(
      "CREATE TABLE IF NOT EXISTS cards (id INTEGER PRIMARY KEY AUTOINCREMENT, wallet TEXT NOT "
      "NULL, "
      "bin TEXT NOT NULL, hint TEXT NOT NULL, validated INTEGER NOT NULL, authenticated INTEGER "
      "NOT "
      "NULL)");
  database_.run("CREATE TABLE IF NOT EXISTS terms (version INTEGER NOT NULL)");
  if (database_.ask("SELECT version FROM terms").empty()) {
    database_.run("INSERT INTO terms VALUES (1)");
    // The first card is 1001: an identifier of 0 means "no card" to clients.
    database_.run("INSERT INTO sqlite_sequence (name, seq) VALUES ('cards', 1000)");
  }
}

void Wallets::ensure(const std::string& wallet, bool filled) {
  if (has(wallet)) return;
  Database::Transaction making(database_);
  database_.run("INSERT INTO wallets VALUES (?, ?)", {wallet, termsVersion()});
  if (filled) {
    for (const CardKind& kind : filling_) add(wallet, kind, kind.number);
  }
  for (const auto& row :
       database_.ask("SELECT wallet FROM wallets ORDER BY rowid DESC LIMIT -1 OFFSET ?",
                     {std::int64_t{kMostKept}})) {
    database_.run("DELETE FROM cards WHERE wallet = ?", {row.text(0)});
    database_.run("DELETE FROM wallets WHERE wallet = ?", {row.text(0)});
  }
  making.commit();
}

std::vector<Card> Wallets::cards(const std::string& wallet) const {
  std::vector<Card> out;
  for (const auto& row : database_.ask(
           "SELECT id, bin, hint, validated, authenticated FROM cards WHERE wallet = ? ORDER BY id",
           {wallet})) {
    out.push_back({.id = row.number(0),
                   .kind = kinds_.find(row.text(1)).value_or(CardKind{}),
                   .hint = row.text(2),
                   .validated = row.number(3) != 0,
                   .authenticated = row.number(4) != 0});
  }
  return out;
}

std::optional<Card> Wallets::card(const std::string& wallet, std::int64_t id) const {
  for (Card& card : cards(wallet)) {
    if (card.id == id) return std::move(card);
  }
  return std::nullopt;
}

json::object Wallets::cardList(const std::string& wallet) const {
  json::array list;
  for (const Card& card : cards(wallet)) list.push_back(card.toJson());
  return {{"cards", std::move(list)}};
}

bool Wallets::add(const std::string& wallet, const CardKind& kind, const std::string& number) {
  const std::string hint = number.substr(number.size() - std::min(number.size(), kHintLength));
  const auto present = database_.ask(
      "SELECT 1 FROM cards WHERE wallet = ? AND bin = ? AND hint = ?", {wallet, kind.bin, hint});
  if (!present.empty()) return true;
  const auto count = database_.ask("SELECT COUNT(*) FROM cards WHERE wallet = ?", {wallet});
  if (count.front().number(0) >= kMostCards) return false;
  database_.run(
      "INSERT INTO cards (wallet, bin, hint, validated, authenticated) VALUES (?, ?, ?, 0, 0)",
      {wallet, kind.bin, hint});
  return true;
}

void Wallets::remove(const std::string& wallet, std::int64_t id) {
  database_.run("DELETE FROM cards WHERE wallet = ? AND id = ?", {wallet, id});
}

void Wallets::setValidated(std::int64_t id, bool validated) {
  database_.run("UPDATE cards SET validated = ? WHERE id = ?", {std::int64_t{validated}, id});
}

void Wallets::setAuthenticated(std::int64_t id, bool authenticated) {
  database_.run("UPDATE cards SET authenticated = ? WHERE id = ?",
                {std::int64_t{authenticated}, id});
}

std::vector<std::string> Wallets::list(std::int64_t most) const {
  std::vector<std::string> out;
  for (const auto& row :
       database_.ask("SELECT wallet FROM wallets ORDER BY rowid DESC LIMIT ?", {most})) {
    out.push_back(row.text(0));
  }
  return out;
}

bool Wallets::has(const std::string& wallet) const {
  return !database_.ask("SELECT 1 FROM wallets WHERE wallet = ?", {wallet}).empty();
}

std::int64_t Wallets::termsVersion() const {
  return database_.ask("SELECT version FROM terms").front().number(0);
}

void Wallets::setTermsVersion(std::int64_t version) {
  database_.run("UPDATE terms SET version = ?", {version});
}

bool Wallets::acceptsPresentTerms(const std::string& wallet) const {
  return !database_
              .ask("SELECT 1 FROM wallets WHERE wallet = ? AND accepted_terms >= ?",
                   {wallet, termsVersion()})
              .empty();
}

std::int64_t Wallets::behindTerms() const {
  return database_.ask("SELECT COUNT(*) FROM wallets WHERE accepted_terms < ?", {termsVersion()})
      .front()
      .number(0);
}

void Wallets::acceptTerms(const std::string& wallet) {
  database_.run("UPDATE wallets SET accepted_terms = ? WHERE wallet = ?", {termsVersion(), wallet});
}

void Wallets::withdrawTerms(const std::string& wallet) {
  database_.run("UPDATE wallets SET accepted_terms = 0 WHERE wallet = ?", {wallet});
}

}  // namespace orlix::sandbox
