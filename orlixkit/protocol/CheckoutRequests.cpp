#include <mutex>
#include <stdexcept>

#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/RequestFailure.h"
#include "orlixkit/security/PinBlock.h"

// The requests of KCVelloConnection from the lookup of a code to the receipt.

namespace orlix {

namespace {

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

/// What every purchase carries, after the fields of its own kind.
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

RequestBody KCVelloConnection::_pinData(const SecretString& pin) const {
  if (!dataStore_.pinKey) {
    throw std::invalid_argument("the session has brought no key for the PIN");
  }
  const std::optional<std::string> block =
      PinBlock::createPINBlock(*dataStore_.pinKey, pin, /*ref=*/0);
  RequestBody pinData;
  pinData.setRequired("pinBlock", block);
  return pinData;
}

MTPinResponse KCVelloConnection::purchaseAMT(const PurchaseRequest& request,
                                             const SecretString& pin) {
  Turn turn(turn_);
  return _purchase(turn, request, {{"pinData", _pinData(pin)}}, &pin, withNode("/purchase/"));
}

MTPinResponse KCVelloConnection::puchaseCNP(const PurchaseRequest& request) {
  Turn turn(turn_);
  return _purchase(turn, request, {}, nullptr, withNode("/purchase/"));
}

MTPinResponse KCVelloConnection::purchaseSecureCode(const PurchaseRequest& request,
                                                    const VelloSecureCodeData& secureCodeData) {
  Turn turn(turn_);
  return _purchase(turn, request, secureCodeFields(secureCodeData), nullptr,
                   withNode("/purchase/"));
}

MTPinResponse KCVelloConnection::auth3DsCard(const PurchaseRequest& request,
                                             const VelloSecureCodeData& secureCodeData) {
  Turn turn(turn_);
  return _purchase(turn, request, secureCodeFields(secureCodeData), nullptr, withNode("/auth3Ds/"));
}

MTPinResponse KCVelloConnection::_purchase(Turn& turn, const PurchaseRequest& request,
                                           RequestBody builder, const SecretString* pin,
                                           const std::string& url) {
  addPurchase(builder, request);
  return withNetworkException([&] {
    MTPinResponse response;
    const std::optional<SecretBytes> answer =
        pin != nullptr ? _sendPurchaseAMT(turn, url, builder, *pin) : _send(turn, url, builder);
    response.parseFromData(bytesOf(answer));
    return response;
  });
}

std::optional<MTReceipt> KCVelloConnection::pollForReceipt(std::int64_t transactionId) {
  return withNetworkException([&]() -> std::optional<MTReceipt> {
    Turn turn(turn_);
    const std::optional<SecretBytes> answer =
        _send(turn, withNode("/receipt/poll/"), {{"transactionId", transactionId}});
    if (!answer || answer->empty()) {
      return std::nullopt;
    }
    MTReceipt receipt;
    receipt.parseFromData(answer->reveal());
    return receipt;
  });
}

}  // namespace orlix
