// SPDX-License-Identifier: Apache-2.0

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "orlixkit/ui/TextField.h"
#include "orlixkit/widgets/DropDownPicker.h"

namespace orlix {
namespace {

TEST(DropDownPicker, PutsTheChosenEntryIntoItsField) {
  const auto field = std::make_shared<TextField>();
  const auto picker = DropDownPicker::attach(field, {"Savings", "Current", "Credit"});
  field->beginEditing();
  picker->pick(1);
  EXPECT_EQ(field->text(), "Current");
  EXPECT_FALSE(field->editing());
  picker->pick("Credit");
  EXPECT_EQ(field->text(), "Credit");
  EXPECT_EQ(picker->shownText(), "Credit");
  EXPECT_THROW(picker->pick(3), std::out_of_range);
  try {
    picker->pick("Cheque");
    ADD_FAILURE() << "picked what is not there";
  } catch (const std::out_of_range& refusal) {
    EXPECT_STREQ(refusal.what(), "DropDownPicker: no entry \"Cheque\"");
  }
  EXPECT_EQ(field->text(), "Credit");
}

TEST(DropDownPicker, TakesThePlaceOfTheFormerOneAndLeavesTheText) {
  const auto field = std::make_shared<TextField>();
  auto former = DropDownPicker::attach(field, {"Savings"});
  former->pick(0);
  auto picker = DropDownPicker::attach(field, {"Current"});
  EXPECT_EQ(DropDownPicker::of(*field), picker);
  EXPECT_EQ(field->subviews().size(), 1U);
  EXPECT_EQ(field->text(), "Savings");
  former->pick(0);
  former.reset();
  field->replaceCharacters({0, 0}, "x");
  EXPECT_EQ(field->text(), "Savings") << "nobody types into it, though the former one is gone";
  picker->removeFromSuperview();
  picker.reset();
  EXPECT_EQ(DropDownPicker::of(*field), nullptr);
  field->replaceCharacters({0, 7}, "x");
  EXPECT_EQ(field->text(), "x");
}

}  // namespace
}  // namespace orlix
