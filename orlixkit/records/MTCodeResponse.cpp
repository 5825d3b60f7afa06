// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTCodeResponse.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTCodeResponse& MTCodeResponse::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  answer.read("message", message, hasMessage);
  answer.readRecord("codeInfo", codeInfo, hasCodeInfo);
  answer.readRecord("cardList", cardList, hasCardList);
  answer.read("URLResponse", URLResponse, hasURLResponse);
  return *this;
}

}  // namespace orlix
