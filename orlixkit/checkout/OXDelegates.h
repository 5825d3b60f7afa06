// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace orlix {

/// Callbacks to the host application: exactly one for each flow that returns to the host, on the
/// main thread, after all screens of the library have been dismissed.
///
/// Cancel, an error and a failed payment do not always mean that no money was taken: the user can
/// leave while a purchase is in progress, or when its receipt never arrives. Call
/// `OXOrlix::purchaseStatus` in the callback. If it says `unknown`, your server asks the wallet
/// server, by the reference or else by the code, before the goods are delivered or the user pays
/// again.
class OXOrlixDelegate {
 public:
  virtual ~OXOrlixDelegate() = default;
  virtual void orlixPaymentSucceededWithTransactionReference(const std::string& reference) = 0;
  virtual void orlixPaymentFailedWithTransactionReference(const std::string& reference) = 0;
  /// 2: the purchase was refused, or memory ran out during the flow and a purchase may have been
  /// made; `OXOrlix::purchaseStatus` distinguishes these. 4: the code is unknown, or needs what an
  /// in-app checkout does not support. 6: the card is not enrolled in 3-D Secure. 7: both the host
  /// and the code fix an amount.
  virtual void orlixError(int code) = 0;
  virtual void orlixUserDidCancel() = 0;
  virtual void orlixUserRegistered() = 0;
  virtual void orlixUserCompletedWallet() = 0;
  /// Never called by the library; part of the interface for compatibility.
  virtual void orlixInvalidCode() = 0;
};

/// Is notified when a card has been authenticated by 3-D Secure.
class OX3DSecureOrlixDelegate {
 public:
  virtual ~OX3DSecureOrlixDelegate() = default;
  virtual void auth3DsValidated() = 0;
};

}  // namespace orlix
