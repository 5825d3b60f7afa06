// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTCardList.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTCardList& MTCardList::parseFromData(ByteView data) {
  const JsonObject answer = KCVelloUtil::getJson(data);
  return parseFromDictionary(answer.dictionary());
}

MTCardList& MTCardList::parseFromDictionary(const JsonDictionary& dictionary) {
  AnswerReader(dictionary).appendRecords("cards", cardsArray);
  cardsArray_Count = static_cast<std::int32_t>(cardsArray.size());
  return *this;
}

}  // namespace orlix
