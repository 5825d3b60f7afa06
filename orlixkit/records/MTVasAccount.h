// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/records/Json.h"

namespace orlix {

/// A bill account of a value-added service.
struct MTVasAccount {
  std::optional<std::string> company;
  bool hasCompany = false;
  std::optional<std::string> name;
  bool hasName = false;
  std::optional<std::string> accountNumber;
  bool hasAccountNumber = false;
  std::optional<std::string> detail;
  bool hasDetail = false;
  std::optional<std::string> billId;
  bool hasBillId = false;
  std::optional<std::string> amount;  ///< decimal text
  bool hasAmount = false;

  MTVasAccount& parseFromData(const JsonDictionary& dictionary);
};

}  // namespace orlix
