#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "orlixkit/platform/ui/TableView.h"
#include "orlixkit/platform/ui/TextField.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

namespace {

TEST(TextField, ReplacesCharactersNotBytesAndStaysDefinedOnAnyRange) {
  constexpr std::size_t all = static_cast<std::size_t>(-1);
  const struct {
    std::string before;
    TextRange range;
    std::string replacement, after;
    std::size_t caret;
  } rows[] = {
      {"12", {2, 0}, "3", "123", 3},   {"æøå", {1, 0}, "é", "æéøå", 2},
      {"€5", {0, 1}, "", "5", 0},      {"a☃b☃c", {1, 3}, "日本", "a日本c", 3},
      {"abc", {2, 9}, "X", "abX", 3},  {"abc", {7, 1}, "X", "abcX", 4},
      {"abc", {1, all}, "X", "aX", 2}, {"abc", {all, all}, "X", "abcX", 4},
      {"", {0, 0}, "x", "x", 1},       {"\xE2\x98", {0, 1}, "b", "b", 1},
  };
  for (const auto& row : rows) {
    TextField field;
    field.setText(row.before);
    field.replaceCharacters(row.range, row.replacement);
    EXPECT_EQ(field.text(), row.after) << row.before;
    EXPECT_EQ(field.caret(), row.caret) << row.before;
  }
  TextField field;
  field.setText("\x80\x80");
  EXPECT_EQ(field.textLength(), 0u);
  field.replaceCharacters({0, 1}, "a");
  field.replaceCharacters({field.caret() - 1, 1}, "");
}

TEST(TextField, LetsItsDelegateDecideUnlessItIsDisabled) {
  struct Censor : TextFieldDelegate {
    bool textFieldShouldBeginEditing(TextField&) override { return begins; }
    bool textFieldShouldChangeCharacters(TextField& field, TextRange range,
                                         const std::string& replacement) override {
      asked = std::to_string(range.location) + "+" + std::to_string(range.length) + replacement;
      field.setText("0." + field.text());
      return false;
    }
    bool begins = false;
    std::string asked;
  };
  TextField field;
  Censor censor;
  field.setDelegate(&censor);
  field.setText("12");
  field.replaceCharacters({1, 1}, "x");
  EXPECT_EQ(censor.asked, "1+1x");
  EXPECT_EQ(field.text(), "0.12") << "the delegate may set another text";
  EXPECT_EQ(field.caret(), 4u);
  EXPECT_FALSE(field.beginEditing() || field.editing());
  censor.begins = true;
  EXPECT_TRUE(field.beginEditing() && field.editing());
  field.endEditing();
  field.setEnabled(false);
  EXPECT_FALSE(field.beginEditing());
  field.replaceCharacters({1, 0}, "2");
  EXPECT_EQ(censor.asked, "1+1x") << "not asked again";
  field.setSecure(true);
  EXPECT_EQ(field.shownText(), "••••");
}

TEST(View, IsOutOfSightWithItsParentOrWithAllItsChildren) {
  const auto group = std::make_shared<View>();
  const auto first = std::make_shared<View>();
  const auto second = std::make_shared<View>();
  group->addSubview(first);
  group->insertSubview(second, 0);
  EXPECT_EQ(group->subviews(), (std::vector<std::shared_ptr<View>>{second, first}));
  first->setHidden(true);
  EXPECT_FALSE(group->isOutOfSight() || second->isOutOfSight());
  group->setSubviewsHidden(true);
  EXPECT_FALSE(group->hidden()) << "the group itself stays as it is";
  EXPECT_TRUE(group->isOutOfSight());
  group->setSubviewsHidden(false);
  group->setHidden(true);
  EXPECT_TRUE(!first->hidden() && first->isOutOfSight());
  std::make_shared<View>()->addSubview(first);
  EXPECT_EQ(group->subviews().size(), 1u) << "a view stands in one place only";
}

TEST(TableView, HasTheRowsOfItsSourceAndNoOthers) {
  struct Source : TableViewDataSource {
    std::size_t numberOfRows() override { return 2; }
    TableCell cellForRow(std::size_t row) override {
      TableCell cell;
      cell.text = "xxx-" + std::to_string(row);
      return cell;
    }
    void didSelectRow(std::size_t row) override { selected = row; }
    std::size_t selected = 0;
  } source;
  TableView table;
  EXPECT_EQ(table.shownText(), "");
  table.setDataSource(&source);
  EXPECT_EQ(table.shownText(), "xxx-0\nxxx-1");
  table.select(1);
  EXPECT_EQ(source.selected, 1u);
  EXPECT_THROW(table.select(2), std::out_of_range);
  EXPECT_THROW(table.cell(2), std::out_of_range);
}

TEST(ViewController, ReachesOutletsAndActionsByTheirNamesAndOutlivesItsAction) {
  class Screen : public ViewController {
   public:
    explicit Screen(std::shared_ptr<ViewController>& owner) {
      outlet<TextField>("cvvField", group);
      action("leave", [this, &owner] {
        owner.reset();
        group->setHidden(true);  // of a controller that is still there
      });
    }
    std::shared_ptr<View> group = outlet<View>("cvvGroupView");
  };
  std::shared_ptr<ViewController> owner;
  owner = std::make_shared<Screen>(owner);
  EXPECT_EQ(owner->outletNames(), (std::vector<std::string>{"cvvGroupView", "cvvField"}));
  EXPECT_EQ(owner->outletNamed("cvvField")->superview(), owner->outletNamed("cvvGroupView"));
  EXPECT_EQ(owner->outletNamed("pinField"), nullptr);
  EXPECT_THROW(owner->performAction("cancelAction"), std::out_of_range);
  const std::weak_ptr<ViewController> gone = owner;
  owner->performAction("leave");
  EXPECT_TRUE(gone.expired());
}

}  // namespace

}  // namespace orlix
