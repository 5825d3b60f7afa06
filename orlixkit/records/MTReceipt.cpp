// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTReceipt.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTReceipt& MTReceipt::parseFromData(ByteView data) {
  const JsonObject answer = KCVelloUtil::getJson(data);
  return parseFromDictionary(answer.dictionary());
}

MTReceipt& MTReceipt::parseFromDictionary(const JsonDictionary& dictionary) {
  const AnswerReader answer(dictionary);
  answer.read("receiptId", receiptId, hasReceiptId);
  answer.read("preview1", preview1, hasPreview1);
  answer.read("preview2", preview2, hasPreview2);
  answer.read("htmlContent", htmlContent, hasHtmlContent);
  answer.read("status", status, hasStatus);
  answer.read("amount", amount, hasAmount);
  return *this;
}

}  // namespace orlix
