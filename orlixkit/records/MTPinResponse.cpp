#include "orlixkit/records/MTPinResponse.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTPinResponse& MTPinResponse::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  answer.readEnum("status", status, {"SUCCESS", "ERROR", "INVALID_PASSWORD"}, Case::ignored);
  hasStatus = answer.has("status");
  answer.read("transactionId", transactionId, hasTransactionId);
  answer.read("errorMessage", errorMessage, hasErrorMessage);
  return *this;
}

}  // namespace orlix
