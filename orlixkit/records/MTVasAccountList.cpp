// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/MTVasAccountList.h"

#include "orlixkit/records/AnswerReader.h"

namespace orlix {

MTVasAccountList& MTVasAccountList::parseFromData(const JsonDictionary& dictionary) {
  AnswerReader(dictionary).appendRecords("vasAccounts", vasAccountsArray);
  vasAccountsArray_Count = vasAccountsArray.size();
  return *this;
}

}  // namespace orlix
