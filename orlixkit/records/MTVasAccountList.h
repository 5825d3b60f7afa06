// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <vector>

#include "orlixkit/records/Json.h"
#include "orlixkit/records/MTVasAccount.h"

namespace orlix {

/// The accounts that a bill payment offers, in the server's order. Parsing into a list that holds
/// accounts appends.
struct MTVasAccountList {
  std::vector<MTVasAccount> vasAccountsArray;
  std::uint64_t vasAccountsArray_Count = 0;

  /// Throws std::invalid_argument when "vasAccounts" is no array of objects.
  MTVasAccountList& parseFromData(const JsonDictionary& dictionary);
};

}  // namespace orlix
