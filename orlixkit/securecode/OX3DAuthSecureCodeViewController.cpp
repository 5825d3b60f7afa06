#include "orlixkit/securecode/OX3DAuthSecureCodeViewController.h"

#include "orlixkit/checkout/WalletRequest.h"
#include "orlixkit/records/Failures.h"

namespace orlix {

OXSecureCodeViewController::PageRequest OX3DAuthSecureCodeViewController::pageRequest() const {
  return [cardId = session()->cardId](KCVelloConnection& connection) {
    return connection.get3DAuthSecureCodeUrl(cardId);
  };
}

OXSecureCodeViewController::PurchaseCall OX3DAuthSecureCodeViewController::purchaseCall() const {
  PurchaseRequest request = purchaseRequest();
  // The server decides what the authentication transaction costs.
  request.amount.reset();
  return [request = std::move(request), data = secureCodeData()](KCVelloConnection& connection) {
    return connection.auth3DsCard(request, data);
  };
}

void OX3DAuthSecureCodeViewController::succeeded(const std::string&) {
  settle(true);
  const auto screen =
      std::static_pointer_cast<OX3DAuthSecureCodeViewController>(shared_from_this());
  requestInBackground<MTCardValidateResponse>(
      RequestQueue::globalHigh,
      [cardId = session()->cardId](KCVelloConnection& connection) {
        return connection.validateCard(true, cardId, "");
      },
      [screen](const MTCardValidateResponse&) { screen->session()->returnAuth3DsValidated(); },
      [screen] {
        // Not caught here: a card that the server could not mark must not pay. The failure ends in
        // the main queue's own handling, and the user leaves by cancel.
        screen->settle(false);
        throw NetworkException();
      });
}

}  // namespace orlix
