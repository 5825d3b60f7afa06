// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "orlixkit/testing/MemoryHost.h"
#include "orlixkit/ui/AlertController.h"

namespace orlix::test {

/// Callbacks of a test's controllers, one line each.
using Diary = std::vector<std::string>;

/// A screen that records its callbacks.
class DiaryScreen : public ViewController {
 public:
  DiaryScreen(const std::string& name, Diary& entries) : diary(entries) { setIdentifier(name); }
  void viewDidLoad() override { note("loaded"); }
  void viewWillAppear() override { note("will appear"); }
  void viewDidAppear() override {
    note("appeared");
    if (whenAppeared) {
      whenAppeared();
    }
  }
  void viewWillDisappear() override {
    note("will disappear");
    if (whenDisappearing) {
      whenDisappearing();
    }
  }

  void note(const std::string& what) { diary.push_back(identifier() + " " + what); }

  Diary& diary;
  Task whenAppeared, whenDisappearing;
};

/// A host with an observer that writes down who has come and gone, and when the progress indicator
/// has changed.
class PresentationStage : private UiObserver {
 public:
  PresentationStage() { host.application().setObserver(this); }

  std::shared_ptr<DiaryScreen> screen(const std::string& name) {
    return std::make_shared<DiaryScreen>(name, diary);
  }
  /// With one button "Ok"; writes down its press and its loss.
  std::shared_ptr<AlertController> alert(const std::string& title) {
    auto made = std::make_shared<AlertController>(title, "");
    made->addAction({"Ok", AlertActionStyle::cancel, note("Ok on " + title)});
    made->onLost = note(title + " lost");
    return made;
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
  /// The same after everything has ended that is under way.
  Diary readAll() {
    host.runUntilIdle();
    return read();
  }
  ViewController& root() { return *host.root(); }
  ProgressIndicator& indicator() { return host.application().progressIndicator(); }
  static std::string nameOf(const std::shared_ptr<ViewController>& controller) {
    const auto alert = std::dynamic_pointer_cast<AlertController>(controller);
    return alert ? "alert " + alert->title() : controller->identifier();
  }
  /// Called at each call of the observer.
  std::function<void(const std::string& call)> whenCalled;

  Diary diary;
  MemoryHost host;

 private:
  void called(const std::string& call) {
    if (whenCalled) {
      whenCalled(call);
    }
  }
  void didPresent(const std::shared_ptr<ViewController>& controller) override {
    diary.push_back(nameOf(controller) + " presented");
    called("didPresent");
  }
  void didDismiss(const std::shared_ptr<ViewController>& controller) override {
    diary.push_back(nameOf(controller) + " gone");
    called("didDismiss");
  }
  void progressChanged(const ProgressIndicator& changed) override {
    diary.push_back(changed.visible() ? "progress " + changed.status() : "no progress");
    called("progressChanged");
  }
  bool animate(const std::shared_ptr<ViewController>&, Transition, const Task&) override {
    called("animate");
    return false;
  }
};

}  // namespace orlix::test
