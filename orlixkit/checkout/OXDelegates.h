// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace orlix {

/// Callbacks to the host application: exactly one of these for each flow that ends by a return to
/// the host, on the main thread, after every screen of the library is gone.
///
/// Cancel, an error and a failed payment do not always mean that nothing was taken: the user may
/// leave while a purchase is under way, or after a receipt has stayed away. Ask
/// `OXOrlix::purchaseStatus` in the callback. When it says `unknown`, your server finds out: it
/// asks the wallet server by the reference, or by the code when there is none, before the goods are
/// handed over or the user pays again.
class OXOrlixDelegate {
 public:
  virtual ~OXOrlixDelegate() = default;
  virtual void orlixPaymentSucceededWithTransactionReference(const std::string& reference) = 0;
  virtual void orlixPaymentFailedWithTransactionReference(const std::string& reference) = 0;
  /// 2: the purchase was refused; or memory ran out in the middle of the flow, and a purchase may
  /// have been made or not: `OXOrlix::purchaseStatus` tells these apart. 4: the code is unknown, or
  /// asks for what the in-app checkout does not offer. 6: the card takes no part in 3-D Secure. 7:
  /// both host and code fix an amount.
  virtual void orlixError(int code) = 0;
  virtual void orlixUserDidCancel() = 0;
  virtual void orlixUserRegistered() = 0;
  virtual void orlixUserCompletedWallet() = 0;
  /// Defined for completeness; no flow makes it.
  virtual void orlixInvalidCode() = 0;
};

/// Hears that a card has been authenticated by 3-D Secure.
class OX3DSecureOrlixDelegate {
 public:
  virtual ~OX3DSecureOrlixDelegate() = default;
  virtual void auth3DsValidated() = 0;
};

}  // namespace orlix
