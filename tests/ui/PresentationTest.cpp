// SPDX-License-Identifier: Apache-2.0

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ui/Containers.h"
#include "tests/ui/PresentationStage.h"

namespace orlix {

namespace {

using test::Diary;
class Presentation : public testing::Test, protected test::PresentationStage {};
using Dismissal = Presentation;

TEST_F(Dismissal, TakesTheWholeStackFromTheTopDownAndFinishesWhatIsUnderWay) {
  const auto a = screen("A");
  const auto b = screen("B");
  root().present(a, false);
  a->present(b, true, note("B was presented"));
  b->present(std::make_shared<AlertController>("Warning", ""), false);
  read();
  root().dismiss(true, [] { throw std::runtime_error("the first broke"); });
  root().dismiss(true, note("done"));
  host.runUntilIdle();
  EXPECT_EQ(read(), (Diary{"B appeared", "B presented", "B was presented", "B will disappear",
                           "A will disappear", "alert Warning gone", "B gone", "A gone", "done"}));
  EXPECT_TRUE(host.log().contains("the first broke"));
  EXPECT_FALSE(b->isBeingDismissed() || b->hasAppeared());
  EXPECT_EQ(b->presentingViewController(), nullptr);
  EXPECT_EQ(a->presentedViewController(), nullptr);
}

TEST_F(Presentation, WaitsWhileItsPlaceIsBeingLeftAlsoForAControllerInsideContainers) {
  const auto inside = screen("inside");
  const auto tabs = std::make_shared<TabBarController>();
  tabs->setChildren({screen("other"), NavigationController::make(inside)}, 1);
  EXPECT_EQ(inside->tabBarController(), tabs);
  root().present(tabs, false);
  EXPECT_EQ(host.topController(), inside);
  inside->present(screen("A"), false);
  EXPECT_EQ(tabs->presentedViewController()->identifier(), "A");
  inside->dismiss(true, note("A was dismissed"));
  read();
  inside->present(screen("B"), false, note("B was presented"));
  EXPECT_TRUE(read().empty());
  host.runUntilIdle();
  EXPECT_EQ(read(), (Diary{"A gone", "A was dismissed", "B loaded", "B will appear", "B appeared",
                           "B presented", "B was presented"}));
  inside->dismiss(false);
  inside->presentingViewController()->dismiss(true);
  EXPECT_TRUE(inside->isBeingDismissed());
  host.runUntilIdle();
  EXPECT_EQ(host.topController(), host.root());
}

TEST_F(Presentation, IsRefusedWithALogLineWhereItHasNoPlace) {
  const auto a = screen("A");
  const auto b = screen("B");
  root().present(a, false);
  a->present(b, false);
  read();
  root().present(screen("C"), true, note("completed"));
  b->present(a, true);
  b->present(b, true);
  b->present(host.root(), true);
  a->dismiss(true);
  b->present(screen("C"), true);
  host.runUntilIdle();
  EXPECT_EQ(read(), (Diary{"B will disappear", "B gone"}));
  EXPECT_EQ(host.log().lines(),
            (std::vector<std::string>{"Attempt to present C on , which presents A already",
                                      "Attempt to present A on B, but it is shown already",
                                      "Attempt to present B on B, but it is shown already",
                                      "Attempt to present  on B, but it is shown already",
                                      "Attempt to present C on B, which is on its way out"}));
}

TEST_F(Presentation, OfAScreenWaitsUntilTheAlertInItsPlaceHasGone) {
  root().present(alert("Warning"), false);
  root().present(screen("A"), true, note("A was presented"));
  root().present(screen("B"), true);
  EXPECT_EQ(readAll(), (Diary{"alert Warning presented"}));
  host.pressAlert("Ok");
  EXPECT_EQ(readAll(), (Diary{"alert Warning gone", "Ok on Warning", "A loaded", "A will appear",
                              "A appeared", "A presented", "A was presented"}));
  EXPECT_EQ(host.log().lines(),
            (std::vector<std::string>{"Attempt to present B on , which presents A already"}));
  const auto a = host.topController();
  a->present(alert("Error"), false);
  a->present(screen("C"), false);
  root().dismiss(true);
  EXPECT_EQ(readAll(), (Diary{"alert Error presented", "A will disappear", "alert Error gone",
                              "A gone", "Error lost"}));
  EXPECT_EQ(host.log().lines().back(),
            "Attempt to present C, but what it waited to be presented on has gone");
}

TEST_F(Presentation, ThatCannotBeginLeavesNothingBehind) {
  struct Unloadable : ViewController {
    void viewWillAppear() override { throw std::runtime_error("no room"); }
  };
  EXPECT_THROW(root().present(std::make_shared<Unloadable>(), true), std::runtime_error);
  EXPECT_FALSE(root().presentedViewController());
  root().present(screen("A"), false);
  EXPECT_EQ(host.topController()->identifier(), "A");
}

}  // namespace

}  // namespace orlix
