// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

namespace orlix {

/// What is known of the purchases of one flow; see `OXOrlix::purchaseStatus`.
enum class PurchaseState {
  none,     ///< Nothing that takes money has left this device. Nothing was taken.
  unknown,  ///< One was sent, and whether it was carried out is not known (yet). Only the server
            ///< knows: ask it before the user pays again.
  refused,  ///< Each one that was sent has been refused. Nothing was taken.
  paid      ///< A receipt says that it succeeded.
};

/// `unknown` covers all that cannot be excluded: a connection that broke after the first byte, an
/// answer that cannot be read or that says neither yes nor no, a purchase that was accepted and has
/// no receipt yet. After one of these a later refusal changes nothing: the earlier one may still
/// have been carried out. When a card is authenticated by its issuer before its first payment, the
/// server makes a transaction for that alone, which counts until it has succeeded.
struct PurchaseStatus {
  PurchaseState state = PurchaseState::none;
  /// The server's transaction number of the purchase that `state` speaks of, as in the callbacks;
  /// the newest one when there are several. Absent while the server has not sent one.
  std::optional<std::string> reference = std::nullopt;
  /// Of the last refusal: the server did not accept the PIN.
  bool pinRefused = false;
};

}  // namespace orlix
