// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/Json.h"

namespace orlix {

/// A payment's receipt. `status` is kept as text and interpreted by `ReceiptPolling`.
struct MTReceipt {
  std::int64_t receiptId = 0;
  bool hasReceiptId = false;
  std::optional<std::string> preview1;
  bool hasPreview1 = false;
  std::optional<std::string> preview2;
  bool hasPreview2 = false;
  std::optional<std::string> htmlContent;
  bool hasHtmlContent = false;
  std::optional<std::string> status;
  bool hasStatus = false;
  std::optional<std::string> amount;  ///< decimal text
  bool hasAmount = false;

  /// Throws NetworkException when the data is no JSON object, std::invalid_argument when a number
  /// cannot be read.
  MTReceipt& parseFromData(ByteView data);
  MTReceipt& parseFromDictionary(const JsonDictionary& dictionary);
};

}  // namespace orlix
