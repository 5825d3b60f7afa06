// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTCardResponse.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTCardResponse& MTCardResponse::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  const Match known =
      answer.readEnum("status", status, {"SUCCESS", "FAILED", "RELINK"}, Case::exact);
  hasStatus = hasStatus || known == Match::known;
  answer.readRecord("receipt", receipt, hasReceipt);
  answer.readRecord("cardList", cardList, hasCardList);
  return *this;
}

}  // namespace orlix
