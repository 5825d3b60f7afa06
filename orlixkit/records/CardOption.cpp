// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/CardOption.h"

#include "orlixkit/records/AnswerReader.h"

namespace orlix {

CardOption& CardOption::parseFromData(const JsonDictionary& dictionary) {
  const AnswerReader answer(dictionary);
  // The presence of the identifier is stored in the hint's flag and overwritten at once, so
  // `hasCardId` is never set. Screens rely on that; keep it.
  answer.read("cardId", cardId, hasCardHint);
  answer.read("cardHint", cardHint, hasCardHint);
  answer.read("needCvv", needCvv, hasNeedCvv);
  answer.read("cardType", cardType, hasCardType);
  answer.read("drawLine", drawLine, hasDrawLine);
  const Match known =
      answer.readEnum("method", method, {"AMT", "SECURE_CODE", "WALLET", "CNP"}, Case::ignored);
  hasMethod = hasMethod || known != Match::missingKey;
  answer.read("imageId", imageId, hasImageId);
  answer.read("product", product, hasProduct);
  answer.read("authed3Ds", authed3Ds, hasAuthed3Ds);
  answer.read("validated", validated, hasValidated);
  answer.read("validationtype", validationtype, hasValidationtype);
  answer.read("issuer", issuer, hasIssuer);
  // Servers disable payment without PIN by omitting the key, so its value is read (and has to be
  // readable) but only its presence counts.
  bool value = false;
  answer.read("allowCnp", value, allowCnp);
  return *this;
}

}  // namespace orlix
