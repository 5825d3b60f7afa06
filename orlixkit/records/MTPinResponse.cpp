// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTPinResponse.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTPinResponse& MTPinResponse::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  const Match known =
      answer.readEnum("status", status, {"SUCCESS", "ERROR", "INVALID_PASSWORD"}, Case::ignored);
  hasStatus = known != Match::missingKey;
  answer.read("transactionId", transactionId, hasTransactionId);
  answer.read("errorMessage", errorMessage, hasErrorMessage);
  return *this;
}

}  // namespace orlix
