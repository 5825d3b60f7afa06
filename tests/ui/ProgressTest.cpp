// SPDX-License-Identifier: Apache-2.0

// The progress indicator: its owner, how long it stays, and the completions of its dismissals.

#include <utility>

#include <gtest/gtest.h>

#include "orlixkit/ui/Containers.h"
#include "tests/ui/PresentationStage.h"

namespace orlix {

namespace {

using test::Diary;

class Progress : public testing::Test, protected test::PresentationStage {
 protected:
  void show(const std::string& status, const std::shared_ptr<ViewController>& owner = nullptr) {
    indicator().show(status, ProgressMask::gradient, ProgressStyle::activity, owner);
  }
  std::shared_ptr<test::DiaryScreen> shownScreen(const std::string& name) {
    auto made = screen(name);
    root().present(made, false);
    read();
    return made;
  }
};

TEST_F(Progress, StaysUntilItsFadeHasEndedAndTheCompletionsWaitForThatOrForTheNextShow) {
  indicator().dismiss(note("nothing shown"));
  EXPECT_EQ(read(), Diary{"nothing shown"});
  show("Busy");
  indicator().dismiss([this] {
    note("first")();
    throw std::runtime_error("the first broke");
  });
  indicator().dismiss([this] { indicator().dismiss(note("of the next fade")); });
  indicator().dismiss(note("third"));
  EXPECT_TRUE(indicator().visible() && indicator().blocksInput());
  EXPECT_EQ(indicator().status(), "Busy");
  EXPECT_EQ(read(), Diary{"progress Busy"});
  show("Busy again");
  EXPECT_EQ(read(), (Diary{"progress Busy again", "first", "third"}));
  EXPECT_TRUE(host.log().contains("the first broke"));
  show("Stays");
  EXPECT_EQ(readAll(), (Diary{"progress Stays", "of the next fade"}));
  EXPECT_TRUE(indicator().visible());
  indicator().dismiss();
  indicator().dismiss(note("last"));
  EXPECT_EQ(readAll(), (Diary{"no progress", "last"}));
  EXPECT_FALSE(indicator().visible() || indicator().blocksInput());
}

TEST_F(Progress, BelongsToWhoeverShowedItLast) {
  const auto a = shownScreen("A");
  const auto b = screen("B");
  a->present(b, false);
  show("A is busy", a);
  EXPECT_TRUE(indicator().isShownFor(*a));
  indicator().dismissFor(*b, note("B has none"));
  EXPECT_TRUE(indicator().visible());
  show("B is busy", b);
  read();
  indicator().dismissFor(*a, note("no longer A's"));
  indicator().dismissFor(*b, note("B's is gone"));
  EXPECT_FALSE(indicator().isShownFor(*b)) << "on its way out";
  indicator().dismissFor(*b, note("B's as well"));
  EXPECT_EQ(read(), Diary{"no longer A's"});
  EXPECT_EQ(readAll(), (Diary{"no progress", "B's is gone", "B's as well"}));
  show("without an owner");
  indicator().dismissFor(*a);
  EXPECT_FALSE(indicator().isShownFor(*a));
  EXPECT_TRUE(indicator().visible());
  indicator().dismiss();
  host.runUntilIdle();
  EXPECT_FALSE(indicator().visible());
}

TEST_F(Progress, GoesWithTheScreenThatShowsIt) {
  const auto cut = shownScreen("A");
  show("Busy", cut);
  read();
  root().dismiss(false, note("removed"));
  EXPECT_EQ(read(), (Diary{"A will disappear", "no progress", "A gone", "removed"}));

  const auto inside = screen("inside");
  root().present(NavigationController::make(inside), false);
  show("Busy", inside);
  EXPECT_TRUE(indicator().blocksInput());
  root().dismiss(true);
  EXPECT_FALSE(indicator().isShownFor(*inside));
  host.runUntilIdle();
  EXPECT_FALSE(indicator().visible());

  const auto onItsWayIn = screen("B");
  onItsWayIn->whenAppeared = [&] { show("Loading", onItsWayIn); };
  root().present(onItsWayIn, true);
  root().dismiss(true);
  host.runUntilIdle();
  EXPECT_FALSE(indicator().visible());

  const auto late = shownScreen("C");
  late->whenDisappearing = [&] { show("Late", late); };
  root().dismiss(true);
  show("Later", late);
  host.runUntilIdle();
  EXPECT_FALSE(indicator().visible()) << "even when it has received `viewWillDisappear` already";

  shownScreen("D");
  show("Another's", host.root());
  root().dismiss(false);
  EXPECT_TRUE(indicator().isShownFor(root())) << "of a screen that stays";
}

TEST_F(Progress, OfAScreenThatIsInNoWindowHoldsNothingBackAndGoesWithIt) {
  auto scenes = std::exchange(host.application().connectedScenes, {});
  const auto window = std::exchange(host.application().keyWindow, nullptr);
  auto a = screen("A");
  root().present(a, false);
  show("Busy", a);
  EXPECT_TRUE(indicator().visible());
  EXPECT_FALSE(indicator().blocksInput());
  host.application().keyWindow = window;
  EXPECT_TRUE(indicator().blocksInput());
  host.application().connectedScenes = std::move(scenes);

  auto second = std::make_shared<ViewController>();
  host.application().showMainWindow(second);
  show("Of the second window", second);
  second.reset();
  host.application().keyWindow = window;
  host.application().connectedScenes.pop_back();
  EXPECT_FALSE(indicator().blocksInput());
  host.runUntilIdle();
  EXPECT_FALSE(indicator().visible());
}

}  // namespace

}  // namespace orlix
