// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/records/Location.h"

namespace orlix {

/// The details of a card that the user wants to add.
struct CardInfoResponse {
  std::optional<SecretString> cardNumber;  ///< PAN
  std::optional<std::string> account;
  std::optional<std::string> expiryDateMonth;
  std::optional<std::string> expiryDateYear;
  std::optional<std::string> dateOfBirth;
  std::optional<std::string> linkedMsisdn;
  std::optional<std::string> cardHolderName;
  std::optional<Location> location;
};

}  // namespace orlix
