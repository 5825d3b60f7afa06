// SPDX-License-Identifier: Apache-2.0

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/testing/MemoryHost.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/TextField.h"
#include "orlixkit/ui/Touch.h"

namespace orlix {

namespace {

struct TouchScreen : ViewController {
  TouchScreen() {
    action("button", [this] { done = "action"; });
    keepReachableUnderMask({"field"});
  }
  std::shared_ptr<View> group = outlet<View>("group");
  std::shared_ptr<Button> button = outlet<Button>("button", group);
  std::shared_ptr<TextField> field = outlet<TextField>("field");
  std::string done;
};

}  // namespace

TEST(Touch, HasAnEffectOnWhatIsInFrontReachableSeenAndEnabled) {
  struct Case {
    std::string name;
    std::function<void(MemoryHost&, TouchScreen&)> prepare;
    TouchRefusal button, field;
  };
  using enum TouchRefusal;
  const std::vector<Case> cases{
      {"nothing in the way", [](auto&, auto&) {}, none, none},
      {"an alert on it",
       [](auto&, auto& screen) {
         screen.present(std::make_shared<AlertController>("Warning", ""), true);
       },
       covered, covered},
      {"on its way out", [](auto& host, auto&) { host.root()->dismiss(true); }, covered, covered},
      {"a mask",
       [](auto& host, auto&) {
         host.application().progressIndicator().show("", ProgressMask::gradient);
       },
       masked, none},
      {"a hidden group", [](auto&, auto& screen) { screen.group->setHidden(true); }, hidden, none},
      {"both disabled",
       [](auto&, auto& screen) {
         screen.button->setEnabled(false);
         screen.field->setEnabled(false);
       },
       disabled, disabled},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    MemoryHost host;
    const auto screen = std::make_shared<TouchScreen>();
    host.root()->present(screen, true);
    EXPECT_EQ(touchRefusal(host.application(), *screen, "button"), covered) << "on its way in";
    host.runUntilIdle();
    row.prepare(host, *screen);
    EXPECT_EQ(touchRefusal(host.application(), *screen, "button"), row.button);
    EXPECT_EQ(touchRefusal(host.application(), *screen, "field"), row.field);
  }
}

TEST(Touch, GoesToTheOutletsListenerElseToTheActionOfItsName) {
  const auto screen = std::make_shared<TouchScreen>();
  EXPECT_FALSE(touchTask(screen, "group"));
  touchTask(screen, "button")();
  EXPECT_EQ(screen->done, "action");
  screen->button->onTap = [&] { screen->done = "tap"; };
  touchTask(screen, "button")();
  EXPECT_EQ(screen->done, "tap");
  screen->button->onTouchUpInside = [&] { screen->done = "button"; };
  touchTask(screen, "button")();
  EXPECT_EQ(screen->done, "button");
  touchTask(screen, "field")();
  EXPECT_TRUE(screen->field->editing());
}

}  // namespace orlix
