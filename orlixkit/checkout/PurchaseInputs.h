// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/records/CardOption.h"
#include "orlixkit/records/MTCodeInfo.h"

namespace orlix {

/// What the session passes to the payment screen before it is presented.
class PurchaseInputs {
 public:
  virtual ~PurchaseInputs() = default;

  std::optional<std::string> code;
  std::vector<CardOption> cards;
  std::optional<MTCodeInfo> codeInfo;
  std::int64_t system = 0;  ///< 0 live, non-zero test
};

}  // namespace orlix
