#include <type_traits>

#include <boost/pfr.hpp>
#include <gtest/gtest.h>

#include "orlixkit/records/CardInfoResponse.h"
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
