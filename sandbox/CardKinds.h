// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Database.h"
#include "sandbox/Json.h"

namespace orlix::sandbox {

/// What the first nine digits of a card number (its BIN) decide: what must be asked to add the
/// card, how its owner proves ownership, how it pays and how its issuer behaves.
struct CardKind {
  std::string bin;
  std::string number;  ///< A number of this kind, as the README gives it.
  std::string cardType = "visa";
  std::string product = "Debit";
  std::string issuer = "First Sandbox Bank";

  bool supported = true;
  bool needExp = true;
  bool needDob = false;
  bool needCardHolderName = true;
  bool needAccount = false;
  std::string link =
      "SUCCESS";  ///< Status of a link; "RELINK" until the right mobile number comes.

  std::string method = "AMT";
  bool needCvv = false;
  std::string pin = "1234";
  std::string cvv = "123";
  std::string purchase = "SUCCESS";  ///< Status of every purchase with it.

  std::string validation;  ///< "DOB", "SIMPLE", "3DS" or another text; empty: none is asked for.
  std::string dateOfBirth = "1990-12-31";
  std::string authentication = "pass";  ///< How the issuer's page behaves.

  json::object toJson() const;

  /// Replaces the fields that `change` names; what is wrong with it in words, or nothing.
  std::optional<std::string> apply(const json::object& change);

  /// What is wrong with the values of the fields; nothing when they make sense.
  std::optional<std::string> complaint() const;
};

/// The kinds that the server knows, kept in the database so that added rules survive a restart.
/// Thread: the caller locks.
class CardKinds {
 public:
  /// Adds the documented kinds that the database lacks.
  explicit CardKinds(Database& database);

  std::optional<CardKind> find(std::string_view numberOrBin) const;
  void put(const CardKind& kind);
  bool isFull() const { return byBin_.size() >= kMost; }

  /// Those that a demonstration wallet holds, in the wallet's order.
  static std::vector<CardKind> demonstration();

  /// Every documented kind.
  static std::vector<CardKind> documented();

  static constexpr size_t kBinLength = 9;
  static constexpr size_t kMost = 1000;

 private:
  Database& database_;
  std::map<std::string, CardKind, std::less<>> byBin_;  ///< What the table holds.
};

}  // namespace orlix::sandbox
