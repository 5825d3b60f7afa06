// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTVasAccount.h"

#include "orlixkit/records/AnswerReader.h"

namespace orlix {

MTVasAccount& MTVasAccount::parseFromData(const JsonDictionary& dictionary) {
  const AnswerReader answer(dictionary);
  answer.read("company", company, hasCompany);
  answer.read("name", name, hasName);
  answer.read("accountNumber", accountNumber, hasAccountNumber);
  answer.read("detail", detail, hasDetail);
  answer.read("billId", billId, hasBillId);
  answer.read("amount", amount, hasAmount);
  return *this;
}

}  // namespace orlix
