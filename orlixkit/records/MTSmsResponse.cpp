// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTSmsResponse.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTSmsResponse& MTSmsResponse::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  hasStatus = true;
  if (!answer.equals("status", "SUCCESS")) {
    status = SmsResponseStatus::other;
    return *this;
  }
  status = SmsResponseStatus::success;
  if (answer.equals("newSsToken", "")) {
    return *this;
  }
  newSsToken = answer.text("newSsToken");
  // Also without the key: a success always replaces the token, possibly by an absent one.
  hasNewSsToken = true;
  return *this;
}

}  // namespace orlix
