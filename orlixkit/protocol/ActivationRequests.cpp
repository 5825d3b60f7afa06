#include <mutex>

#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/RequestFailure.h"

// The requests of KCVelloConnection that enrol the device by SMS. Their paths have no node.

namespace orlix {

MTSmsResponse KCVelloConnection::sendMsisdn(const std::string& msisdn) {
  return request<MTSmsResponse>("/sms/send", {{"msisdn", msisdn}});
}

std::int32_t KCVelloConnection::processActivationCode(const std::string& code) {
  Turn turn(turn_);
  const auto answer =
      _request<MTSmsResponse>(turn, "/sms/activateSession", {{"activationCode", code}});
  if (answer.status == SmsResponseStatus::success) {
    if (!dataStore_.po) {
      dataStore_.po = std::make_shared<PersistableObject>();
    }
    dataStore_.po->ssToken = answer.newSsToken;
    // Not turned into a NetworkException: a retry would find its code used up.
    dataStore_.save(*storageInterface_, *dataStore_.po);
  }
  return static_cast<std::int32_t>(answer.status);
}

}  // namespace orlix
