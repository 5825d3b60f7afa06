// SPDX-License-Identifier: Apache-2.0

// Alerts: each is shown, and reports its end once.

#include <gtest/gtest.h>

#include "tests/ui/PresentationStage.h"

namespace orlix {

namespace {

using test::Diary;
class Alert : public testing::Test, protected test::PresentationStage {};

TEST_F(Alert, MayBeShownAgain) {
  const auto problem = alert("Problem");
  for (int time = 0; time < 2; ++time) {
    root().present(problem, false);
    host.pressAlert("Ok");
    EXPECT_EQ(readAll(), (Diary{"alert Problem presented", "alert Problem gone", "Ok on Problem"}));
  }
}

TEST_F(Alert, WaitsForTransitionsAndForOtherAlerts) {
  root().present(screen("A"), false);
  root().dismiss(true);
  read();
  for (const char* const title : {"One", "Two", "Three"}) {
    host.application().showAlert(alert(title), true);
  }
  Diary expected{"A gone"};
  for (const char* const title : {"One", "Two", "Three"}) {
    expected.push_back("alert " + std::string(title) + " presented");
    EXPECT_EQ(readAll(), expected);
    host.pressAlert("Ok");
    expected = {"alert " + std::string(title) + " gone", "Ok on " + std::string(title)};
  }
  EXPECT_EQ(readAll(), expected);
}

TEST_F(Alert, IsShownOverTheScreenThatIsPresentedInItsPlace) {
  const auto a = screen("A");
  root().present(a, true);
  root().present(alert("Over it"), false);
  EXPECT_EQ(a->presentedViewController(), host.topController());
  EXPECT_TRUE(host.user().topAlert());
  root().dismiss(false);
  // As well when the screen came after the alert had begun to wait.
  root().present(screen("B"), false);
  root().dismiss(true, [this] { root().present(screen("C"), false); });
  root().present(alert("Waits"), false);
  host.runUntilIdle();
  EXPECT_EQ(host.topController()->presentingViewController()->identifier(), "C");
}

TEST_F(Alert, GoesToTheActiveWindowWhenWhatItWaitsOnLeaves) {
  const auto a = screen("A");
  root().present(a, false);
  a->present(alert("First"), false);
  a->present(alert("Second"), false);
  root().dismiss(true);
  a->present(alert("Third"), false);
  read();
  EXPECT_EQ(readAll(), (Diary{"alert First gone", "A gone", "First lost", "alert Second presented",
                              "alert Third presented"}));
  host.pressAlert("Ok");
  host.runUntilIdle();

  auto second = std::make_shared<ViewController>();
  host.application().showMainWindow(second);
  second->present(alert("Fourth"), false);
  second->present(alert("Fifth"), false);
  host.application().keyWindow.reset();
  host.application().connectedScenes.pop_back();
  host.application().connectedScenes.back().windows.back()->key = true;
  second.reset();
  read();
  EXPECT_EQ(readAll(), (Diary{"alert Fourth gone", "Fourth lost", "alert Fifth presented"}))
      << "their window is gone";
}

TEST_F(Alert, TellsOnceHowItEnded) {
  const struct {
    std::string how;
    std::function<void(AlertController&)> ends;
    Diary told;
  } rows[] = {
      {"a button", [](auto& one) { one.press(0); }, {"alert X gone", "Ok on X"}},
      {"a button twice",
       [this](auto& one) {
         one.press(0);
         one.press(0);
         host.runUntilIdle();
         one.press(0);
       },
       {"alert X gone", "Ok on X"}},
      {"a button that is not there", [](auto& one) { one.press(1); }, {}},
      {"a button, then its screen leaves",
       [this](auto& one) {
         one.press(0);
         root().dismiss(false);
       },
       {"alert X gone", "Ok on X"}},
      {"its screen leaves, then a button",
       [this](auto& one) {
         root().dismiss(true);
         one.press(0);
       },
       {"alert X gone", "X lost"}},
      {"the host removes it",
       [](auto& one) { one.presentingViewController()->dismiss(true); },
       {"alert X gone", "X lost"}},
      {"it is cut", [this](auto&) { root().dismiss(false); }, {"alert X gone", "X lost"}},
      {"withdrawn", [](auto& one) { one.withdraw(); }, {"alert X gone"}},
      {"withdrawn after a button",
       [](auto& one) {
         one.press(0);
         one.withdraw();
       },
       {"alert X gone"}},
  };
  for (const auto& row : rows) {
    for (const bool animated : {false, true}) {
      const auto a = screen("A");
      root().present(a, false);
      const auto x = alert("X");
      a->present(x, animated);
      read();
      row.ends(*x);
      Diary told = readAll();
      std::erase_if(told, [](const std::string& line) {
        return line.find('X') == std::string::npos || line.ends_with("presented");
      });
      EXPECT_EQ(told, row.told) << row.how << (animated ? ", on its way in" : "");
      root().dismiss(false);
    }
  }
}

TEST_F(Alert, IsNotLostAtTheHostsShutdown) {
  const auto shown = alert("Shown");
  const auto waits = alert("Waits");
  root().present(shown, false);
  root().present(waits, false);
  read();
  Host::uninstall();
  EXPECT_EQ(read(), Diary{});
  EXPECT_EQ(shown->presentationState(), PresentationState::idle);
  EXPECT_EQ(waits->presentationState(), PresentationState::idle);
}

TEST_F(Alert, WithoutAWindowIsLostButNotBeforeTheCallHasReturned) {
  host.application().connectedScenes.clear();
  host.application().keyWindow.reset();
  host.application().showAlert(alert("X"), true);
  EXPECT_EQ(read(), Diary{});
  EXPECT_EQ(readAll(), Diary{"X lost"});
  EXPECT_TRUE(host.log().contains("Unable to present alert"));
}

TEST_F(Alert, IsWithdrawnFromTheMiddleOfAStackAndFromWhereItWaits) {
  const auto lower = alert("Lower");
  const auto upper = alert("Upper");
  const auto waits = alert("Waits");
  root().present(lower, true);
  lower->present(upper, true);
  root().present(waits, false);
  lower->present(alert("Waits on the lower one"), true);
  lower->withdraw();
  waits->withdraw();
  waits->withdraw();
  EXPECT_EQ(readAll(), (Diary{"alert Lower presented", "alert Lower gone", "alert Upper presented",
                              "alert Waits on the lower one presented"}));
  EXPECT_EQ(root().presentedViewController(), upper);
  EXPECT_EQ(lower->presentationState(), PresentationState::idle);
  upper->press(0);
  EXPECT_EQ(readAll(), (Diary{"alert Waits on the lower one gone", "alert Upper gone",
                              "Waits on the lower one lost", "Ok on Upper"}));
  host.application().showAlert(lower, true);
  EXPECT_EQ(host.topController(), host.root()) << "what was withdrawn is not shown again";
}

}  // namespace

}  // namespace orlix
