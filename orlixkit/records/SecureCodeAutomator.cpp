// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/SecureCodeAutomator.h"

#include "orlixkit/records/AnswerReader.h"

namespace orlix {

SecureCodeAutomator& SecureCodeAutomator::parseFromData(const JsonDictionary& dictionary) {
  const AnswerReader answer(dictionary);
  // The older of two keys that servers use; the newer one overrides it when present.
  if (answer.equals("status", "SmsOtp")) {
    type = SecureCodeAutomatorType::smsOtp;
    hasType = true;
  }
  const Match known =
      answer.readEnum("type", type, {"SMS_OTP", "PASSWORD", "PUSH_USSD", "JS_ONLY"}, Case::ignored);
  hasType = hasType || known != Match::missingKey;
  answer.read("javascript", javascript, hasJavascript);
  answer.read("smsRegex", smsRegex, hasSmsRegex);
  answer.read("inputPrompt", inputPrompt, hasInputPrompt);
  return *this;
}

}  // namespace orlix
