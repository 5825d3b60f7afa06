// SPDX-License-Identifier: Apache-2.0

#include <type_traits>

#include <boost/pfr.hpp>

#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

template <class Record>
class FreshRecord : public testing::Test {};

using Records =
    testing::Types<CardInfoResponse, CardOption, Location, MTAmountOptions, MTApiResponse,
                   MTBinInfo, MTCardList, MTCardResponse, MTCardValidateResponse, MTCodeInfo,
                   MTCodeResponse, MTPinResponse, MTReceipt, MTSecureCodeURLResponse, MTSmsResponse,
                   MTVasAccount, MTVasAccountList, PurchaseRequest, SecureCodeAutomator,
                   VelloSecureCodeData>;
TYPED_TEST_SUITE(FreshRecord, Records);

TYPED_TEST(FreshRecord, HoldsNothingAndFlagsNothing) {
  boost::pfr::for_each_field(TypeParam{}, [](const auto& field, std::size_t number) {
    using Field = std::remove_cvref_t<decltype(field)>;
    if constexpr (std::is_scalar_v<Field>) {
      EXPECT_EQ(field, Field{}) << "field " << number;
    }
  });
}

}  // namespace

}  // namespace orlix
