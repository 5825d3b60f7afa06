#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/platform/ui/AlertController.h"
#include "orlixkit/platform/ui/PresentationController.h"

namespace orlix {

namespace {

/// What the controllers of a test were told, one line each.
using Diary = std::vector<std::string>;

/// A screen that writes down what it is told.
class DiaryScreen : public ViewController {
 public:
  DiaryScreen(const std::string& name, Diary& entries) : diary(entries) { setIdentifier(name); }
  void viewDidLoad() override { note("loaded"); }
  void viewWillAppear() override { note("will appear"); }
  void viewDidAppear() override { note("appeared"); }
  void viewWillDisappear() override { note("will disappear"); }

  void note(const std::string& what) { diary.push_back(identifier() + " " + what); }

  Diary& diary;
};

/// A host with an observer that writes down who has come and gone.
class UiStage : private UiObserver {
 public:
  UiStage() { host.application().setObserver(this); }

  std::shared_ptr<DiaryScreen> screen(const std::string& name) {
    return std::make_shared<DiaryScreen>(name, diary);
  }
  Task note(const std::string& what) {
    return [this, what] { diary.push_back(what); };
  }
  /// What was written since the last call.
  Diary read() {
    Diary entries;
    entries.swap(diary);
    return entries;
  }
  ViewController& root() { return *host.root(); }
  Diary diary;
  MemoryHost host;

 private:
  static std::string nameOf(const std::shared_ptr<ViewController>& controller) {
    const auto alert = std::dynamic_pointer_cast<AlertController>(controller);
    return alert ? "alert " + alert->title() : controller->identifier();
  }
  void didPresent(const std::shared_ptr<ViewController>& controller) override {
    diary.push_back(nameOf(controller) + " presented");
  }
  void didDismiss(const std::shared_ptr<ViewController>& controller) override {
    diary.push_back(nameOf(controller) + " gone");
  }
};

TEST(Presentation, AppearsAfterItsPresenterHasReturnedUnlessItIsACut) {
  UiStage stage;
  stage.root().present(stage.screen("A"), true, stage.note("completed"));
  EXPECT_EQ(stage.read(), (Diary{"A loaded", "A will appear"}));
  EXPECT_FALSE(stage.host.topController()->hasAppeared());
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(), (Diary{"A appeared", "A presented", "completed"}));
  EXPECT_TRUE(stage.host.topController()->hasAppeared());
  stage.root().dismiss(false, stage.note("removed"));
  EXPECT_EQ(stage.read(), (Diary{"A will disappear", "A gone", "removed"}));
  stage.root().present(stage.screen("A"), false, stage.note("shown"));
  EXPECT_EQ(stage.read(),
            (Diary{"A loaded", "A will appear", "A appeared", "A presented", "shown"}));
  stage.root().dismiss(false);
  stage.read();
  stage.root().dismiss(true, stage.note("nothing there"));
  EXPECT_EQ(stage.read(), (Diary{"nothing there"}));
}

TEST(Dismissal, TakesTheWholeStackFromTheTopDownAndFinishesWhatIsUnderWay) {
  UiStage stage;
  const auto a = stage.screen("A");
  const auto b = stage.screen("B");
  stage.root().present(a, false);
  a->present(b, true, stage.note("B was presented"));
  b->present(std::make_shared<AlertController>("Warning", ""), false);
  stage.read();
  stage.root().dismiss(true, [] { throw std::runtime_error("the first broke"); });
  stage.root().dismiss(true, stage.note("done"));
  stage.host.runUntilIdle();
  EXPECT_EQ(stage.read(),
            (Diary{"B appeared", "B presented", "B was presented", "B will disappear",
                   "A will disappear", "alert Warning gone", "B gone", "A gone", "done"}));
  EXPECT_TRUE(stage.host.log().contains("the first broke"));
  EXPECT_FALSE(b->isBeingDismissed() || b->hasAppeared());
  EXPECT_EQ(b->presentingViewController(), nullptr);
  EXPECT_EQ(a->presentedViewController(), nullptr);
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
  a->dismiss(true);
  b->present(stage.screen("C"), true);
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

TEST(Alert, GoesBeforeItsHandlerRunsAndHearsOnePressOnlyWhileItStands) {
  for (const bool pressedBefore : {false, true}) {
    UiStage stage;
    const auto a = stage.screen("A");
    const auto alert = std::make_shared<AlertController>("Problem", "");
    alert->addAction({"Cancel", AlertActionStyle::cancel, {}});
    alert->addAction({"Retry", AlertActionStyle::standard, stage.note("retries")});
    alert->press(1);
    stage.root().present(a, false);
    a->present(alert, false);
    alert->press(2);
    EXPECT_FALSE(alert->isBeingDismissed()) << "there is no third button";
    stage.read();
    if (pressedBefore) {
      alert->press(1);
    }
    stage.root().dismiss(true, stage.note("done"));
    alert->press(1);
    alert->press(0);
    stage.host.runUntilIdle();
    alert->press(1);
    Diary expected{"A will disappear", "alert Problem gone", "A gone", "done"};
    if (pressedBefore) {
      expected.insert(expected.begin() + 2, "retries");
    }
    EXPECT_EQ(stage.read(), expected) << "only a press that came before holds";
  }
}

}  // namespace

}  // namespace orlix
