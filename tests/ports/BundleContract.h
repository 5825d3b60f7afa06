// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>

#include <gtest/gtest.h>

#include "orlixkit/ports/Bundle.h"

namespace orlix {

/// Rules that every bundle keeps. `Platform` offers one that holds three resources, a.cer with the
/// text "one", a.plist with "two" and b.cer, which is empty: Bundle& bundle();
template <class Platform>
class BundleContract : public testing::Test {
 protected:
  Platform platform;
};
TYPED_TEST_SUITE_P(BundleContract);

TYPED_TEST_P(BundleContract, FindsAResourceByNameAndTypeToTheLetter) {
  Bundle& bundle = this->platform.bundle();
  EXPECT_EQ(bundle.resource("a", "cer"), toBytes("one"));
  EXPECT_EQ(bundle.resource("a", "plist"), toBytes("two"));
  EXPECT_EQ(bundle.resource("b", "cer"), Bytes());
  EXPECT_EQ(bundle.resource("A", "cer"), std::nullopt);
  EXPECT_EQ(bundle.resource("a", "otf"), std::nullopt);
  EXPECT_EQ(bundle.resource("a", ""), std::nullopt);
}

REGISTER_TYPED_TEST_SUITE_P(BundleContract, FindsAResourceByNameAndTypeToTheLetter);

}  // namespace orlix
