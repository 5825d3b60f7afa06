#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "orlixkit/platform/ui/TableView.h"
#include "orlixkit/platform/ui/TextField.h"
#include "orlixkit/platform/ui/View.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

namespace {

/// Allows what the test allows and remembers the last question.
struct Censor : TextFieldDelegate {
  bool textFieldShouldBeginEditing(TextField&) override { return begins; }
  bool textFieldShouldChangeCharacters(TextField& field, TextRange range,
                                       const std::string& replacement) override {
    asked = field.text() + "|" + std::to_string(range.location) + "+" +
            std::to_string(range.length) + "|" + replacement;
    if (!instead.empty()) {
      field.setText(instead);
    }
    return changes;
  }
  bool begins = true;
  bool changes = true;
  std::string instead;
  std::string asked;
};

}  // namespace

TEST(TextField, ReplacesCharactersNotBytes) {
  struct Row {
    std::string name, before;
    TextRange range;
    std::string replacement, after;
    std::size_t caret;
  };
  const std::size_t all = static_cast<std::size_t>(-1);
  const Row rows[] = {
      {"a key at the end", "12", {2, 0}, "3", "123", 3},
      {"a key in the middle", "æøå", {1, 0}, "é", "æéøå", 2},
      {"deletion of one wide character", "€5", {0, 1}, "", "5", 0},
      {"a paste over a part", "a☃b☃c", {1, 3}, "日本", "a日本c", 3},
      {"a range that ends behind the text", "abc", {2, 9}, "X", "abX", 3},
      {"a range that begins behind the text", "abc", {7, 1}, "X", "abcX", 4},
      {"a length beyond counting", "abc", {1, all}, "X", "aX", 2},
      {"a start beyond counting", "abc", {all, all}, "X", "abcX", 4},
      {"into an empty field", "", {0, 0}, "x", "x", 1},
  };
  for (const Row& row : rows) {
    TextField field;
    field.setText(row.before);
    field.replaceCharacters(row.range, row.replacement);
    EXPECT_EQ(field.text(), row.after) << row.name;
    EXPECT_EQ(field.caret(), row.caret) << row.name;
  }
}

TEST(TextField, StaysDefinedOnTextThatIsNoUtf8) {
  TextField field;
  field.setText("\x80\x80");
  EXPECT_EQ(field.textLength(), 0u);
  field.replaceCharacters({0, 1}, "a");
  field.replaceCharacters({field.caret() - 1, 1}, "");
  field.setText("\xE2\x98");
  EXPECT_EQ(field.textLength(), 1u);
  field.replaceCharacters({0, 1}, "b");
  EXPECT_EQ(field.text(), "b");
}

TEST(TextField, LetsItsDelegateDecide) {
  TextField field;
  Censor censor;
  field.setDelegate(&censor);
  field.setText("12");
  censor.changes = false;
  field.replaceCharacters({1, 1}, "9");
  EXPECT_EQ(censor.asked, "12|1+1|9");
  EXPECT_EQ(field.text(), "12");
  censor.instead = "0.12";
  field.replaceCharacters({2, 0}, "3");
  EXPECT_EQ(field.text(), "0.12") << "the delegate may set another text";
  EXPECT_EQ(field.caret(), 4u);

  EXPECT_TRUE(field.beginEditing());
  EXPECT_TRUE(field.editing());
  field.endEditing();
  censor.begins = false;
  EXPECT_FALSE(field.beginEditing());
  EXPECT_FALSE(field.editing());
}

TEST(TextField, TakesNoKeysWhileItIsDisabled) {
  TextField field;
  Censor censor;
  field.setDelegate(&censor);
  field.setText("1");
  field.setEnabled(false);
  EXPECT_FALSE(field.beginEditing());
  field.replaceCharacters({1, 0}, "2");
  EXPECT_EQ(field.text(), "1");
  EXPECT_EQ(censor.asked, "");
}

TEST(TextField, ShowsBulletsForASecret) {
  TextField field;
  field.setText("1æ34");
  EXPECT_EQ(field.shownText(), "1æ34");
  field.setSecure(true);
  EXPECT_EQ(field.shownText(), "••••");
  EXPECT_EQ(field.secretText().text(), "1æ34");
}

TEST(View, IsOutOfSightWithItsParentOrWithAllItsChildren) {
  const auto screen = std::make_shared<View>();
  const auto group = std::make_shared<View>();
  const auto first = std::make_shared<Label>();
  const auto second = std::make_shared<TextField>();
  screen->addSubview(group);
  group->addSubview(first);
  group->addSubview(second);
  const auto seen = [&] {
    std::string names;
    for (const auto& [name, view] : {std::pair<std::string, View*>{"screen ", screen.get()},
                                     {"group ", group.get()},
                                     {"first ", first.get()},
                                     {"second ", second.get()}}) {
      names += view->isOutOfSight() ? "" : name;
    }
    return names;
  };
  EXPECT_EQ(seen(), "screen group first second ");
  first->setHidden(true);
  EXPECT_EQ(seen(), "screen group second ");
  group->setSubviewsHidden(true);
  EXPECT_FALSE(group->hidden()) << "the group itself stays as it is";
  EXPECT_EQ(seen(), "screen ");
  group->setSubviewsHidden(false);
  EXPECT_EQ(seen(), "screen group first second ");
  group->setHidden(true);
  EXPECT_FALSE(first->hidden());
  EXPECT_EQ(seen(), "");
  group->removeFromSuperview();
  group->setHidden(false);
  EXPECT_EQ(seen(), "screen group first second ");
  EXPECT_TRUE(screen->subviews().empty());
}

TEST(View, StandsInOnePlaceOnlyAndInTheOrderAsked) {
  const auto one = std::make_shared<View>();
  const auto other = std::make_shared<View>();
  const auto a = std::make_shared<View>();
  const auto b = std::make_shared<View>();
  one->addSubview(a);
  one->insertSubview(b, 0);
  EXPECT_EQ(one->subviews(), (std::vector<std::shared_ptr<View>>{b, a}));
  one->addSubview(b);
  EXPECT_EQ(one->subviews(), (std::vector<std::shared_ptr<View>>{a, b}));
  other->insertSubview(a, 99);
  EXPECT_EQ(one->subviews(), (std::vector<std::shared_ptr<View>>{b}));
  EXPECT_EQ(a->superview(), other);
}

TEST(View, TellsOfAChangeAndOfNothingElse) {
  Button button;
  int changes = 0;
  button.onChange = [&changes] { ++changes; };
  button.setHidden(true);
  button.setHidden(true);
  EXPECT_EQ(changes, 1);
  button.setTitle("Pay");
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(button.shownText(), "Pay");
}

TEST(TableView, ShowsTheRowsOfItsSourceAndNoOthers) {
  struct Source : TableViewDataSource {
    std::size_t numberOfRows() override { return texts.size(); }
    TableCell cellForRow(std::size_t row) override {
      TableCell cell;
      cell.text = texts[row];
      return cell;
    }
    void didSelectRow(std::size_t row) override { selected = texts[row]; }
    std::vector<std::string> texts{"xxx-1111", "xxx-2222"};
    std::string selected;
  };
  TableView table;
  EXPECT_EQ(table.rowCount(), 0u);
  EXPECT_EQ(table.shownText(), "");
  Source source;
  table.setDataSource(&source);
  EXPECT_EQ(table.shownText(), "xxx-1111\nxxx-2222");
  table.select(1);
  EXPECT_EQ(source.selected, "xxx-2222");
  source.texts.pop_back();
  EXPECT_THROW(table.select(1), std::out_of_range);
  EXPECT_THROW(table.cell(1), std::out_of_range);
}

TEST(ViewController, ReachesOutletsAndActionsByTheirNames) {
  class Screen : public ViewController {
   public:
    Screen() {
      outlet<TextField>("cvvField", group);
      action("proceedAction", [this] { ++proceeded; });
    }
    int proceeded = 0;
    std::shared_ptr<View> group = outlet<View>("cvvGroupView");
  };
  const auto screen = std::make_shared<Screen>();
  EXPECT_EQ(screen->outletNames(), (std::vector<std::string>{"cvvGroupView", "cvvField"}));
  EXPECT_EQ(screen->outletNamed("cvvField")->superview(), screen->group);
  EXPECT_EQ(screen->group->superview(), screen->view());
  EXPECT_EQ(screen->outletNamed("pinField"), nullptr);
  screen->performAction("proceedAction");
  EXPECT_EQ(screen->proceeded, 1);
  EXPECT_FALSE(screen->hasAction("cancelAction"));
  EXPECT_THROW(screen->performAction("cancelAction"), std::out_of_range);
}

TEST(ViewController, OutlivesItsActionThoughTheActionTakesItAway) {
  class Screen : public ViewController {
   public:
    explicit Screen(std::shared_ptr<ViewController>& owner) : owner_(owner) {
      action("leave", [this] {
        owner_.reset();
        left = true;
      });
    }
    bool left = false;

   private:
    std::shared_ptr<ViewController>& owner_;
  };
  std::shared_ptr<ViewController> owner;
  owner = std::make_shared<Screen>(owner);
  const std::weak_ptr<ViewController> gone = owner;
  owner->performAction("leave");
  EXPECT_TRUE(gone.expired());
}

}  // namespace orlix
