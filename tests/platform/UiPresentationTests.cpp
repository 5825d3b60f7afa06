#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "orlixkit/platform/ui/Containers.h"
#include "tests/platform/UiStage.h"

namespace orlix {

TEST(Presentation, AnAnimatedScreenAppearsAfterItsPresenterHasReturned) {
  UiStage stage;
  stage.root().present(stage.screen("A"), true, stage.note("completed"));
  EXPECT_EQ(stage.read(), (Diary{"A loaded", "A will appear"}));
  EXPECT_FALSE(stage.host.topController()->hasAppeared());
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"A appeared", "A presented", "completed"}));
  EXPECT_TRUE(stage.host.topController()->hasAppeared());
}

TEST(Presentation, ACutHappensBeforeThePresenterReturns) {
  UiStage stage;
  stage.root().present(stage.screen("A"), false, stage.note("shown"));
  EXPECT_EQ(stage.read(),
            (Diary{"A loaded", "A will appear", "A appeared", "A presented", "shown"}));
  stage.root().dismiss(false, stage.note("removed"));
  EXPECT_EQ(stage.read(), (Diary{"A will disappear", "A gone", "removed"}));
  EXPECT_EQ(stage.host.topController(), stage.host.root());
  stage.root().dismiss(true, stage.note("nothing there"));
  EXPECT_EQ(stage.read(), (Diary{"nothing there"}));
}

TEST(Presentation, IsRefusedWithALogLineWhereItHasNoPlace) {
  UiStage stage;
  const auto a = stage.screen("A");
  const auto b = stage.screen("B");
  stage.root().present(a, false);
  a->present(b, false);
  stage.read();
  stage.root().present(stage.screen("C"), true, stage.note("completed"));
  b->present(a, true);
  b->present(b, true);
  b->present(stage.host.root(), true);
  stage.holding = true;
  a->dismiss(true);
  b->present(stage.screen("C"), true);
  stage.endAnimations();
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"B will disappear", "B gone"}));
  EXPECT_EQ(stage.host.log().lines(),
            (std::vector<std::string>{"Attempt to present C on , which presents A already",
                                      "Attempt to present A on B, but it is shown already",
                                      "Attempt to present B on B, but it is shown already",
                                      "Attempt to present  on B, but it is shown already",
                                      "Attempt to present C on B, which is on its way out"}));
}

TEST(Presentation, WaitsWhileItsPlaceIsBeingLeft) {
  UiStage stage;
  stage.root().present(stage.screen("A"), false);
  stage.root().dismiss(true, stage.note("A was dismissed"));
  stage.read();
  stage.root().present(stage.screen("B"), false, stage.note("B was presented"));
  EXPECT_TRUE(stage.read().empty());
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"A gone", "A was dismissed", "B loaded", "B will appear",
                                 "B appeared", "B presented", "B was presented"}));
}

TEST(Presentation, UsesTheTransitioningDelegateForTheCustomStyleOnly) {
  class Card : public PresentationController {
   public:
    using PresentationController::PresentationController;
    void presentationTransitionWillBegin() override { ++begun; }
    void dismissalTransitionWillBegin() override { ++ended; }
    int begun = 0;
    int ended = 0;
  };
  struct Cards : TransitioningDelegate {
    std::shared_ptr<PresentationController> presentationControllerFor(
        const std::shared_ptr<ViewController>& presented,
        const std::shared_ptr<ViewController>& presenting,
        const std::shared_ptr<ViewController>&) override {
      return last = std::make_shared<Card>(presented, presenting);
    }
    std::shared_ptr<Card> last;
  };
  UiStage stage;
  const auto cards = std::make_shared<Cards>();
  const auto a = stage.screen("A");
  a->transitioningDelegate = cards;
  stage.root().present(a, false);
  EXPECT_EQ(cards->last, nullptr);
  stage.root().dismiss(false);

  a->modalPresentationStyle = ModalPresentationStyle::custom;
  stage.root().present(a, true);
  ASSERT_NE(cards->last, nullptr);
  EXPECT_EQ(a->presentationController(), cards->last);
  EXPECT_EQ(cards->last->presentingViewController(), stage.host.root());
  EXPECT_EQ(cards->last->frameOfPresentedViewInContainerView(), (Rect{0, 0, 375, 667}));
  EXPECT_EQ(cards->last->begun, 1);
  stage.root().dismiss(true);
  EXPECT_EQ(cards->last->ended, 1);
  stage.host.runUntilIdle();
  EXPECT_EQ(a->presentationController(), nullptr);
}

TEST(Dismissal, TakesTheWholeStackAndTellsItFromTheTopDown) {
  for (const bool animated : {false, true}) {
    UiStage stage;
    const auto a = stage.screen("A");
    const auto b = stage.screen("B");
    stage.root().present(a, false);
    a->present(b, false);
    b->present(std::make_shared<AlertController>("Warning", ""), false);
    stage.read();
    stage.root().dismiss(animated, stage.note("done"));
    if (animated) {
      EXPECT_EQ(stage.read(), (Diary{"B will disappear", "A will disappear"}));
      EXPECT_TRUE(b->isBeingDismissed());
      EXPECT_EQ(stage.host.topController(), stage.host.root());
      stage.host.runUntilIdle();
      EXPECT_EQ(stage.read(), (Diary{"alert Warning gone", "B gone", "A gone", "done"}));
    } else {
      EXPECT_EQ(stage.read(), (Diary{"B will disappear", "A will disappear", "alert Warning gone",
                                     "B gone", "A gone", "done"}));
    }
    EXPECT_FALSE(b->isBeingDismissed());
    EXPECT_FALSE(b->hasAppeared());
    EXPECT_EQ(b->presentingViewController(), nullptr);
    EXPECT_EQ(a->presentedViewController(), nullptr);
  }
}

TEST(Dismissal, JoinsTheOneUnderWayAndACutEndsItAtOnce) {
  UiStage stage;
  const auto a = stage.screen("A");
  stage.root().present(a, false);
  stage.read();
  stage.root().dismiss(true, stage.note("first"));
  stage.root().dismiss(true, stage.note("second"));
  EXPECT_EQ(stage.read(), (Diary{"A will disappear"}));
  stage.root().dismiss(false, stage.note("cut"));
  EXPECT_EQ(stage.read(), (Diary{"A gone", "first", "second", "cut"}));
  stage.root().present(a, false);
  stage.read();
  stage.host.runUntilIdle();
  EXPECT_TRUE(stage.read().empty()) << "the overtaken animation ends without effect";
  EXPECT_EQ(stage.host.topController(), a);
}

TEST(Dismissal, FinishesAPresentationThatIsUnderWay) {
  UiStage stage;
  const auto a = stage.screen("A");
  stage.root().present(a, true, stage.note("A was presented"));
  a->present(stage.screen("B"), true, stage.note("B was presented"));
  stage.read();
  stage.root().dismiss(true, stage.note("done"));
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"A appeared", "A presented", "A was presented", "B appeared",
                                 "B presented", "B was presented", "B will disappear",
                                 "A will disappear", "B gone", "A gone", "done"}));
}

TEST(Dismissal, OfAPresenterLeavesNoRoomForWhatWaitsToStandOnIt) {
  UiStage stage;
  const auto a = stage.screen("A");
  stage.root().present(a, false);
  a->present(stage.screen("B"), false);
  a->dismiss(true, stage.note("B was dismissed"));
  a->present(stage.screen("C"), false);
  stage.read();
  stage.root().dismiss(false, stage.note("A was dismissed"));
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(),
            (Diary{"A will disappear", "B gone", "A gone", "B was dismissed", "A was dismissed"}));
}

TEST(Dismissal, MayBeCutShortByWhoIsToldOfIt) {
  UiStage stage;
  stage.root().present(stage.screen("A"), true, [&] {
    stage.root().dismiss(false, stage.note("cut"));
    stage.root().present(stage.screen("B"), false);
  });
  stage.read();
  stage.root().dismiss(true, stage.note("dismissed"));
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"A appeared", "A presented", "A gone", "dismissed", "cut",
                                 "B loaded", "B will appear", "B appeared", "B presented"}));
  EXPECT_EQ(stage.host.topController()->identifier(), "B");
  EXPECT_EQ(stage.dismissalsAnimated, 0);
}

TEST(Dismissal, RunsEveryCompletionThoughOneThrows) {
  UiStage stage;
  stage.root().present(stage.screen("A"), false);
  stage.root().dismiss(true, [] { throw std::runtime_error("the first broke"); });
  stage.root().dismiss(true, stage.note("the second ran"));
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read().back(), "the second ran");
  EXPECT_TRUE(stage.host.log().contains("the first broke"));
}

TEST(Dismissal, LeavesNothingBehindWhenTheHostEndsInTheMiddle) {
  std::weak_ptr<ViewController> shown;
  std::weak_ptr<ViewController> waiting;
  std::weak_ptr<ViewController> root;
  Diary diary;
  {
    MemoryHost host;
    root = host.root();
    const auto a = std::make_shared<DiaryScreen>("A", diary);
    const auto b = std::make_shared<DiaryScreen>("B", diary);
    shown = a;
    waiting = b;
    host.root()->present(a, false);
    a->present(std::make_shared<AlertController>("Warning", ""), true, [a] {});
    host.root()->dismiss(true, [held = host.root()] {});
    host.root()->present(b, true);
    diary.clear();
  }
  EXPECT_TRUE(diary.empty()) << "nobody is called back";
  EXPECT_TRUE(root.expired());
  EXPECT_TRUE(shown.expired());
  EXPECT_TRUE(waiting.expired());
}

TEST(Segue, PresentsItsDestinationUnderItsNameAfterThePreparation) {
  class Origin : public DiaryScreen {
   public:
    using DiaryScreen::DiaryScreen;
    void prepareForSegue(const std::string& name,
                         const std::shared_ptr<ViewController>& destination) override {
      note("prepares " + name + (destination->isViewLoaded() ? " late" : ""));
    }
  };
  UiStage stage;
  const auto origin = std::make_shared<Origin>("Activation", stage.diary);
  stage.host.application().storyboard().add(
      "TermsAndConditions", [&] { return NavigationController::make(stage.screen("inner")); });
  std::string missing;
  stage.host.application().storyboard().onMissing = [&](const std::string& text) {
    missing = text;
  };
  stage.root().present(origin, false);
  stage.read();
  origin->performSegue("TermsAndConditions");
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"Activation prepares TermsAndConditions",
                                 "TermsAndConditions loaded", "TermsAndConditions will appear",
                                 "TermsAndConditions appeared", "TermsAndConditions presented"}));
  EXPECT_EQ(stage.host.topController()->identifier(), "TermsAndConditions");
  EXPECT_EQ(missing, "");

  stage.host.topController()->performSegue("Nowhere");
  EXPECT_EQ(missing, "The storyboard has no screen \"Nowhere\".");
  EXPECT_TRUE(stage.host.log().contains(missing));
}

TEST(Containers, PresentAndAreDismissedForTheControllerInside) {
  UiStage stage;
  const auto inside = stage.screen("inside");
  const auto navigation = NavigationController::make(inside);
  const auto tabs = std::make_shared<TabBarController>();
  tabs->setChildren({stage.screen("other"), navigation}, 1);
  tabs->tabBar = std::make_shared<TabBar>();
  EXPECT_EQ(inside->navigationController(), navigation);
  EXPECT_EQ(inside->tabBarController(), tabs);

  stage.root().present(tabs, false);
  EXPECT_EQ(stage.host.topController(), inside);
  EXPECT_EQ(inside->presentingViewController(), stage.host.root());
  inside->present(stage.screen("above"), false);
  EXPECT_EQ(tabs->presentedViewController()->identifier(), "above");
  EXPECT_EQ(inside->presentedViewController(), tabs->presentedViewController());
  inside->dismiss(false);
  EXPECT_EQ(stage.host.topController(), inside);
  inside->presentingViewController()->dismiss(true);
  EXPECT_TRUE(inside->isBeingDismissed());
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.host.topController(), stage.host.root());
  EXPECT_EQ(inside->presentingViewController(), nullptr);
}

TEST(Alert, GoesBeforeItsHandlerRunsAndHearsOnePressOnly) {
  UiStage stage;
  const auto alert = std::make_shared<AlertController>("Delete Card", "Sure?");
  alert->addAction({"Cancel", AlertActionStyle::cancel, {}});
  alert->addAction({"Delete", AlertActionStyle::destructive, stage.note("deletes")});
  alert->press(1);
  stage.root().present(alert, true);
  stage.host.runUntilAlert("Delete Card");
  alert->press(2);
  EXPECT_FALSE(alert->isBeingDismissed()) << "there is no third button";
  stage.host.pressAlert("Delete");
  alert->press(1);
  alert->press(0);
  EXPECT_EQ(stage.read(), (Diary{"alert Delete Card presented"}));
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"alert Delete Card gone", "deletes"}));
}

TEST(Alert, DoesNothingWhenItIsPressedOnItsWayOutWithItsScreen) {
  for (const bool pressedBefore : {false, true}) {
    UiStage stage;
    const auto a = stage.screen("A");
    const auto alert = std::make_shared<AlertController>("Connection problem", "");
    alert->addAction({"Retry", AlertActionStyle::standard, stage.note("retries")});
    stage.root().present(a, false);
    a->present(alert, false);
    stage.read();
    if (pressedBefore) {
      alert->press(0);
    }
    stage.root().dismiss(true, stage.note("done"));
    alert->press(0);
    stage.host.runUntilIdle();
    alert->press(0);
    Diary expected{"A will disappear", "alert Connection problem gone", "A gone", "done"};
    if (pressedBefore) {
      expected = {"A will disappear", "alert Connection problem gone", "retries", "A gone", "done"};
    }
    EXPECT_EQ(stage.read(), expected) << "a press that came before holds";
  }
}

TEST(ProgressIndicator, RunsTheCompletionWhenItIsGone) {
  UiStage stage;
  ProgressIndicator& progress = stage.host.application().progressIndicator();
  progress.dismiss(stage.note("was not shown"));
  EXPECT_EQ(stage.read(), (Diary{"was not shown"}));
  progress.show("Please wait", ProgressMask::gradient);
  EXPECT_TRUE(progress.blocksInput());
  EXPECT_EQ(progress.status(), "Please wait");
  progress.dismiss(stage.note("faded out"));
  EXPECT_FALSE(progress.visible());
  EXPECT_FALSE(progress.blocksInput());
  EXPECT_TRUE(stage.read().empty());
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"faded out"}));
  progress.show("Fetching");
  EXPECT_FALSE(progress.blocksInput()) << "without a mask the screen can be touched";
}

}  // namespace orlix
