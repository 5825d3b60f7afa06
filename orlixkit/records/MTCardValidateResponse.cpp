// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTCardValidateResponse.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTCardValidateResponse& MTCardValidateResponse::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  answer.read("message", message, hasMessage);
  answer.readRecord("cardList", cardList, hasCardList);
  return *this;
}

}  // namespace orlix
