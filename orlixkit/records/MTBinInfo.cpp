// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTBinInfo.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTBinInfo& MTBinInfo::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  answer.read("cardSupported", cardSupported, hasCardSupported);
  answer.read("needAccount", needAccount, hasNeedAccount);
  answer.read("needExp", needExp, hasNeedExp);
  answer.read("needDob", needDob, hasNeedDob);
  answer.read("needCardHolderName", needCardHolderName, hasNeedCardHolderName);
  return *this;
}

}  // namespace orlix
