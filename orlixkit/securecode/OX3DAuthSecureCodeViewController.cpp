// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/securecode/OX3DAuthSecureCodeViewController.h"

#include "orlixkit/records/Failures.h"

namespace orlix {

OXSecureCodeViewController::PageRequest OX3DAuthSecureCodeViewController::pageRequest() const {
  return [cardId = purchaseRequest_.cardId](KCVelloConnection& connection) {
    return connection.get3DAuthSecureCodeUrl(cardId);
  };
}

OXSecureCodeViewController::PurchaseCall OX3DAuthSecureCodeViewController::purchaseCall() const {
  PurchaseRequest request = purchaseRequest_;
  // The server decides what the authentication transaction costs.
  request.amount.reset();
  return [request = std::move(request), data = secureCodeData_](KCVelloConnection& connection) {
    return connection.auth3DsCard(request, data);
  };
}

void OX3DAuthSecureCodeViewController::succeeded(const std::string&) {
  const auto screen =
      std::static_pointer_cast<OX3DAuthSecureCodeViewController>(shared_from_this());
  validateCard([screen] { screen->session()->returnAuth3DsValidated(); },
               // Not caught here: a card that the server could not mark must not pay. The failure
               // ends in the main queue's own handling, and the user leaves by CANCEL.
               [] { throw NetworkException(); });
}

}  // namespace orlix
