#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/platform/ui/AlertController.h"
#include "orlixkit/platform/ui/PresentationController.h"

namespace orlix {

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

/// A host with an observer that writes down who has come and gone. When `holding`, animations end
/// only when the test says so.
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
  /// Plays the animations that are held, to their end.
  void endAnimations() {
    for (std::size_t next = 0; next < held_.size(); ++next) {
      held_[next]();
    }
    held_.clear();
  }

  Diary diary;
  MemoryHost host;
  bool holding = false;
  int dismissalsAnimated = 0;

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
  bool animate(const std::shared_ptr<ViewController>&, Transition transition,
               const Task& done) override {
    dismissalsAnimated += transition == Transition::dismissal ? 1 : 0;
    if (holding) {
      held_.push_back(done);
    }
    return holding;
  }

  std::vector<Task> held_;
};

}  // namespace orlix
