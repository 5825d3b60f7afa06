// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTSecureCodeURLResponse.h"

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"

namespace orlix {

MTSecureCodeURLResponse& MTSecureCodeURLResponse::parseFromData(ByteView data) {
  const JsonObject json = KCVelloUtil::getJson(data);
  const AnswerReader answer(json);
  answer.read("cardSupported", cardSupported, hasCardSupported);
  answer.read("secureCodeId", secureCodeId, hasSecureCodeId);
  answer.read("url", URL, hasURL);
  answer.readRecord("automator", automator, hasAutomator);
  answer.read("payload", payload, hasPayload);
  answer.read("error", error, hasError);
  answer.read("htmlPresent", htmlPresent, hasHtmlPresent);
  answer.read("htmlContent", htmlContent, hasHtmlContent);
  return *this;
}

}  // namespace orlix
