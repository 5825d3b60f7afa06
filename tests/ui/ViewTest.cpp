// SPDX-License-Identifier: Apache-2.0

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "orlixkit/ui/TextField.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

namespace {

TEST(TextField, ReplacesCharactersNotBytesAndStaysDefinedOnAnyRange) {
  constexpr std::size_t kAll = static_cast<std::size_t>(-1);
  const struct {
    std::string before;
    TextRange range;
    std::string replacement, after;
    std::size_t caret;
  } rows[] = {
      {"12", {2, 0}, "3", "123", 3},    {"æøå", {1, 0}, "é", "æéøå", 2},
      {"€5", {0, 1}, "", "5", 0},       {"a☃b☃c", {1, 3}, "日本", "a日本c", 3},
      {"abc", {2, 9}, "X", "abX", 3},   {"abc", {7, 1}, "X", "abcX", 4},
      {"abc", {1, kAll}, "X", "aX", 2}, {"abc", {kAll, kAll}, "X", "abcX", 4},
      {"", {0, 0}, "x", "x", 1},        {"\xE2\x98", {0, 1}, "b", "b", 1},
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

TEST(View, IsInOneSuperviewOrInNone) {
  const auto hidden = std::make_shared<View>();
  const auto shown = std::make_shared<View>();
  const auto view = std::make_shared<View>();
  hidden->setHidden(true);
  hidden->addSubview(view);
  EXPECT_TRUE(view->isOutOfSight());
  shown->addSubview(view);
  EXPECT_TRUE(hidden->subviews().empty());
  EXPECT_EQ(view->superview(), shown);
  EXPECT_FALSE(shown->isOutOfSight());
  view->setHidden(true);
  EXPECT_TRUE(shown->isOutOfSight()) << "a group with nothing to show";
  view->setHidden(false);
  hidden->addSubview(view);
  view->removeFromSuperview();
  view->removeFromSuperview();
  EXPECT_EQ(view->superview(), nullptr);
  EXPECT_TRUE(hidden->subviews().empty() && shown->subviews().empty());
  EXPECT_FALSE(view->isOutOfSight());
}

TEST(View, TellsItsListenerOfEachChangeOnce) {
  const auto screen = std::make_shared<View>();
  const auto part = std::make_shared<View>();
  Button button;
  Label label;
  TextField field;
  const struct {
    std::string name;
    View& view;
    std::function<void()> change;
  } rows[] = {
      {"a part more", *screen, [&] { screen->addSubview(part); }},
      {"a part less", *screen, [&] { part->removeFromSuperview(); }},
      {"a border", *part, [&] { part->setBorder(1, kWhite); }},
      {"a title", button, [&] { button.setTitle("Pay"); }},
      {"a text with marks", label, [&] { label.setHtml("<b>Pay</b>"); }},
      {"typed characters", field,
       [&] {
         field.replaceCharacters({0, 0}, "1");
       }},
  };
  for (const auto& row : rows) {
    int told = 0;
    row.view.onChange = [&told] { ++told; };
    row.change();
    row.view.onChange = {};
    EXPECT_EQ(told, 1) << row.name;
  }
  EXPECT_TRUE(label.isHtml());
}

TEST(ViewController, OutlivesItsActionAlsoWhenThatLetsGoOfIt) {
  struct Screen : ViewController {
    explicit Screen(std::shared_ptr<ViewController>& owner) {
      action("leave", [this, &owner] {
        owner.reset();
        group->setHidden(true);  // of a controller that is still there
      });
    }
    std::shared_ptr<View> group = outlet<View>("cvvGroupView");
  };
  std::shared_ptr<ViewController> owner;
  owner = std::make_shared<Screen>(owner);
  EXPECT_THROW(owner->performAction("cancelAction"), std::out_of_range);
  owner->performAction("leave");
  EXPECT_FALSE(owner);
}

}  // namespace

}  // namespace orlix
