// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/CardInfoResponse.h"
#include "orlixkit/records/Failures.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/records/MTApiResponse.h"
#include "orlixkit/records/MTBinInfo.h"
#include "orlixkit/records/MTCardResponse.h"
#include "orlixkit/records/MTCardValidateResponse.h"
#include "orlixkit/records/MTCodeResponse.h"
#include "orlixkit/records/MTPinResponse.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"
#include "orlixkit/records/MTSmsResponse.h"
#include "orlixkit/records/PurchaseRequest.h"
#include "orlixkit/records/VelloSecureCodeData.h"

namespace orlix {

inline ByteView view(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// A record that is filled from a whole answer, or from its decoded object.
template <class Record>
Record parsed(std::string_view text) {
  Record record;
  if constexpr (requires { record.parseFromData(view(text)); }) {
    record.parseFromData(view(text));
  } else {
    const JsonObject answer = KCVelloUtil::getJson(view(text));
    record.parseFromData(answer.dictionary());
  }
  return record;
}

/// Each of these answers has this value in the field; and the flag, if the value is a known one.
template <class Record, class Value>
void expectEach(Value Record::*field, bool Record::*flag, bool alsoOfUnknown,
                std::initializer_list<std::pair<const char*, Value>> rows) {
  for (const auto& [answer, value] : rows) {
    const auto record = parsed<Record>(answer);
    EXPECT_EQ(record.*field, value) << answer;
    EXPECT_EQ(record.*flag, alsoOfUnknown || value != Value{}) << answer;
  }
}

}  // namespace orlix
