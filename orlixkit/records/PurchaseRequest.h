// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/records/Location.h"

namespace orlix {

/// The user's choices for a purchase. Absent texts are omitted from the request; the three integers
/// are always sent.
struct PurchaseRequest {
  std::optional<std::string> code;
  std::int64_t cardId = 0;
  std::optional<SecretString> cvv;
  std::optional<Location> location;
  std::optional<std::string> amount;     ///< decimal text
  std::optional<std::string> tipAmount;  ///< decimal text
  std::optional<std::string> extraRefValue;
  std::int64_t billingListId = 0;
  std::int64_t shippingListId = 0;
};

}  // namespace orlix
