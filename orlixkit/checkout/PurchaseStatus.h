// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace orlix {

/// What is known about the purchases of one flow; see `OXOrlix::purchaseStatus`.
enum class PurchaseState {
  none,     ///< Nothing that takes money has left this device. Nothing was taken.
  unknown,  ///< One was sent, and whether it was carried out is not known (yet). Only the server
            ///< knows: ask it before the user pays again.
  refused,  ///< Each one that was sent has been refused. Nothing was taken.
  paid      ///< A receipt says that it succeeded.
};

/// `unknown` means that a charge cannot be excluded: the connection broke after the first byte, the
/// answer is unreadable or says neither yes nor no, or the purchase was accepted and has no receipt
/// yet. A later refusal does not change this, because the earlier purchase may still have been
/// carried out. When a card is authenticated by its issuer before its first payment, the server
/// makes a separate transaction for that, which counts until it has succeeded.
struct PurchaseStatus {
  PurchaseState state = PurchaseState::none;
  /// The server's transaction number, as in the callbacks, of the newest purchase in this state.
  /// Absent while the server has not sent one.
  std::optional<std::string> reference = std::nullopt;
  /// True when the last refusal was for a wrong PIN.
  bool pinRefused = false;
};

}  // namespace orlix
