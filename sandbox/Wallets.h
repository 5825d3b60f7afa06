// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sandbox/CardKinds.h"
#include "sandbox/Database.h"
#include "sandbox/Json.h"

namespace orlix::sandbox {

/// A card in a wallet. Of its number only the kind and the last four digits are kept.
struct Card {
  std::int64_t id = 0;
  CardKind kind;
  std::string hint;
  bool validated = false;
  bool authenticated = false;  ///< By the issuer's page.

  bool usable() const { return kind.validation.empty() || validated; }

  /// As an element of "cards". "validated" and "validationtype" are left out where no validation
  /// is asked for, "allowCnp" where the card pays in another way.
  json::object toJson() const;
};

/// The wallets, their cards in the order in which they were added, and the terms each accepted.
/// Thread: the caller locks.
class Wallets {
 public:
  Wallets(Database& database, CardKinds& kinds);

  static constexpr std::int64_t kMostCards = 100;  ///< In a wallet.

  /// What the wallets that `ensure` fills hold, in this order; at first the demonstration.
  void fillWith(std::vector<CardKind> kinds) { filling_ = std::move(kinds); }

  /// Makes the wallet, with the present terms accepted, unless there is one. The latest `kMostKept`
  /// wallets are kept.
  /// `filled`: with the cards of `fillWith`.
  void ensure(const std::string& wallet, bool filled);

  std::vector<Card> cards(const std::string& wallet) const;
  std::optional<Card> card(const std::string& wallet, std::int64_t id) const;
  json::object cardList(const std::string& wallet) const;

  /// Adding a card that is there already leaves the wallet as it is: a link whose answer was lost
  /// may be repeated. False when the wallet is full.
  bool add(const std::string& wallet, const CardKind& kind, const std::string& number);
  void remove(const std::string& wallet, std::int64_t id);
  void setValidated(std::int64_t id, bool validated = true);
  void setAuthenticated(std::int64_t id, bool authenticated = true);
  /// The latest wallets, at most `most` of them.
  std::vector<std::string> list(std::int64_t most) const;
  bool has(const std::string& wallet) const;

  std::int64_t termsVersion() const;
  void setTermsVersion(std::int64_t version);
  bool acceptsPresentTerms(const std::string& wallet) const;
  /// Wallets that have not accepted the present terms.
  std::int64_t behindTerms() const;
  void acceptTerms(const std::string& wallet);
  void withdrawTerms(const std::string& wallet);

 private:
  Database& database_;
  CardKinds& kinds_;
  std::vector<CardKind> filling_ = CardKinds::demonstration();
};

}  // namespace orlix::sandbox
