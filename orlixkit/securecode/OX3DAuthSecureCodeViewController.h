// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "orlixkit/securecode/OXSecureCodeViewController.h"

namespace orlix {

/// Authenticates a card on its issuer's page without paying; the payment screen continues with the
/// card.
class OX3DAuthSecureCodeViewController : public OXSecureCodeViewController {
 protected:
  PageRequest pageRequest() const override;
  PurchaseCall purchaseCall() const override;
  void succeeded(const std::string& reference) override;
  void noteSuccess(PurchaseAttempt& attempt) const override { attempt.authenticated(); }
};

}  // namespace orlix
