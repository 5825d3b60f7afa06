#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/platform/ui/AlertController.h"
#include "orlixkit/platform/ui/Containers.h"
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
class Presentation : public testing::Test, private UiObserver {
 protected:
  Presentation() { host.application().setObserver(this); }

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

using Dismissal = Presentation;

TEST_F(Presentation, AppearsAfterItsPresenterHasReturnedUnlessItIsACut) {
  root().present(screen("A"), true, note("completed"));
  EXPECT_EQ(read(), (Diary{"A loaded", "A will appear"}));
  EXPECT_FALSE(host.topController()->hasAppeared());
  host.runUntilIdle();
  EXPECT_EQ(read(), (Diary{"A appeared", "A presented", "completed"}));
  EXPECT_TRUE(host.topController()->hasAppeared());
  root().dismiss(false, note("removed"));
  EXPECT_EQ(read(), (Diary{"A will disappear", "A gone", "removed"}));
  root().present(screen("A"), false, note("shown"));
  EXPECT_EQ(read(), (Diary{"A loaded", "A will appear", "A appeared", "A presented", "shown"}));
  root().dismiss(false);
  read();
  root().dismiss(true, note("nothing there"));
  EXPECT_EQ(read(), (Diary{"nothing there"}));
}

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

TEST_F(Presentation, OfAnAlertEndsBeforeItsHandlerRunsAndHearsOnePressOnly) {
  const auto alert = std::make_shared<AlertController>("Problem", "");
  alert->addAction({"Retry", AlertActionStyle::standard, note("retries")});
  root().present(alert, false);
  read();
  alert->press(1);
  EXPECT_FALSE(alert->isBeingDismissed()) << "there is no second button";
  alert->press(0);
  alert->press(0);
  host.runUntilIdle();
  alert->press(0);
  EXPECT_EQ(read(), (Diary{"alert Problem gone", "retries"}));
}

}  // namespace

}  // namespace orlix
