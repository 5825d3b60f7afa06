// SPDX-License-Identifier: Apache-2.0

#include <stdexcept>

#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/RequestFailure.h"
#include "orlixkit/security/PinBlock.h"

// The requests of KCVelloConnection from the lookup of a code to the receipt.

namespace orlix {

namespace {

constexpr std::size_t kPinKeyBytes = 16;

RequestBody secureCodeFields(const VelloSecureCodeData& data) {
  RequestBody result;
  result.setRequired("PaRes", data.PaRes);
  result.set("secureCodeId", data.secureCodeId);
  return {{"secureCodeData", result}};
}

void addPresent(RequestBody& body, const std::string& key, const std::optional<std::string>& text) {
  if (text) {
    body.set(key, *text);
  }
}

/// The fields of every purchase, after those of its kind.
void addPurchase(RequestBody& body, const PurchaseRequest& request) {
  if (request.cvv) {
    body.set("cvv", *request.cvv);
  }
  if (request.location) {
    body.set("locationInfo", request.location->buildLocation());
  }
  addPresent(body, "amount", request.amount);
  addPresent(body, "tipAmount", request.tipAmount);
  addPresent(body, "extraRefValue", request.extraRefValue);
  body.set("cardId", request.cardId);
  body.set("billingListId", request.billingListId);
  body.set("shippingListId", request.shippingListId);
  body.setRequired("code", request.code);
}

}  // namespace

MTCodeResponse KCVelloConnection::getCodeInfoV2(const std::optional<std::string>& code,
                                                const std::string& method) {
  RequestBody body;
  body.setRequired("qrValue", code);
  body.set("method", method);
  return request<MTCodeResponse>(withNode("/lookup/query/v2/"), body);
}

MTSecureCodeURLResponse KCVelloConnection::getSecureCodeUrl(
    std::int64_t cardId, const std::optional<std::string>& code,
    const std::optional<std::string>& amount) {
  RequestBody body{{"cardId", cardId}};
  body.setRequired("code", code);
  body.set("amount", amount.value_or(""));
  return request<MTSecureCodeURLResponse>(withNode("/card/scUrl/"), body);
}

MTSecureCodeURLResponse KCVelloConnection::get3DAuthSecureCodeUrl(std::int64_t cardId) {
  return request<MTSecureCodeURLResponse>(withNode("/card/get3dsValidateUrl/"),
                                          {{"cardId", cardId}});
}

RequestBody KCVelloConnection::_pinData(const std::optional<SecretBytes>& pinKey,
                                        const SecretString& pin) {
  // A shorter key would be padded with zeros and hardly protect the PIN.
  if (!pinKey || pinKey->size() < kPinKeyBytes) {
    throw std::invalid_argument("the session has brought no key for the PIN");
  }
  RequestBody pinData;
  pinData.setRequired("pinBlock", PinBlock::createPINBlock(*pinKey, pin, /*ref=*/0));
  return pinData;
}

MTPinResponse KCVelloConnection::purchaseAMT(const PurchaseRequest& request,
                                             const SecretString& pin) {
  const WalletSession::Values session = session_->values();
  RequestBody fields{{"pinData", _pinData(session.store.pinKey, pin)}};
  addPurchase(fields, request);
  const std::string path = withNode("/purchase/");
  return withNetworkException(path, [&] {
    return parsed<MTPinResponse>(path, _sendPurchaseAMT(path, fields, pin, session.number));
  });
}

MTPinResponse KCVelloConnection::puchaseCNP(const PurchaseRequest& request) {
  return _purchase(request, {}, withNode("/purchase/"));
}

MTPinResponse KCVelloConnection::purchaseSecureCode(const PurchaseRequest& request,
                                                    const VelloSecureCodeData& secureCodeData) {
  return _purchase(request, secureCodeFields(secureCodeData), withNode("/purchase/"));
}

MTPinResponse KCVelloConnection::auth3DsCard(const PurchaseRequest& request,
                                             const VelloSecureCodeData& secureCodeData) {
  return _purchase(request, secureCodeFields(secureCodeData), withNode("/auth3Ds/"));
}

MTPinResponse KCVelloConnection::_purchase(const PurchaseRequest& request, RequestBody builder,
                                           const std::string& url) const {
  addPurchase(builder, request);
  return this->request<MTPinResponse>(url, builder);
}

std::optional<MTReceipt> KCVelloConnection::pollForReceipt(std::int64_t transactionId) {
  const std::string path = withNode("/receipt/poll/");
  return withNetworkException(path, [&]() -> std::optional<MTReceipt> {
    const std::optional<SecretBytes> answer = _send(path, {{"transactionId", transactionId}});
    if (!answer || answer->empty()) {
      return std::nullopt;
    }
    return parsed<MTReceipt>(path, answer);
  });
}

}  // namespace orlix
