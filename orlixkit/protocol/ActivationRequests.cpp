// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/StoredCredentials.h"

// The requests of KCVelloConnection that enrol the device by SMS. Their paths have no node.

namespace orlix {

MTSmsResponse KCVelloConnection::sendMsisdn(const std::string& msisdn) {
  return request<MTSmsResponse>("/sms/send", {{"msisdn", msisdn}});
}

std::int32_t KCVelloConnection::processActivationCode(const std::string& code) {
  const std::uint64_t wipes = StoredCredentials::shared().wipes();
  const auto answer = request<MTSmsResponse>("/sms/activateSession", {{"activationCode", code}});
  if (answer.status == SmsResponseStatus::success) {
    // Not converted to NetworkException: a retry would fail because the code has been used.
    session_->storeToken(answer.newSsToken, wipes, scope_);
  }
  return static_cast<std::int32_t>(answer.status);
}

}  // namespace orlix
