// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "orlixkit/ui/Geometry.h"
#include "orlixkit/ui/ProgressIndicator.h"
#include "orlixkit/ui/Storyboard.h"
#include "orlixkit/ui/UiServices.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

class Application;

class Window {
 public:
  /// `application` is not held.
  explicit Window(Application& application);

  const std::shared_ptr<ViewController>& rootViewController() const { return root_; }
  /// The controller, and what it presents from now on, belongs to the window's application.
  void setRootViewController(const std::shared_ptr<ViewController>& root);

  bool key = false;
  bool hidden = false;
  double alpha = 1;
  bool normalLevel = true;

 private:
  std::weak_ptr<Application> application_;
  std::shared_ptr<ViewController> root_;
};

enum class SceneState { foregroundActive, foregroundInactive, background, unattached };

/// One connected scene of the application. Only window scenes have windows.
struct Scene {
  bool isWindowScene = true;
  SceneState state = SceneState::foregroundActive;
  std::vector<std::shared_ptr<Window>> windows;
};

enum class Orientation { portrait, landscape };
enum class Transition { presentation, dismissal, progress };

/// Watches the user interface from outside: the shell that draws it, the script that reports it.
///
/// It may do anything at any call: present, dismiss, press, run the main queue, shut the host down.
/// What it throws is logged and the step that called it goes on; an `animate` that throws counts as
/// one that plays none.
class UiObserver {
 public:
  virtual ~UiObserver() = default;
  /// A controller (screen or alert) has appeared / has been dismissed.
  virtual void didPresent(const std::shared_ptr<ViewController>&) {}
  virtual void didDismiss(const std::shared_ptr<ViewController>&) {}
  /// It has been shown, perhaps in the place of another one or of one that was fading out, or it
  /// has gone, its fade included.
  virtual void progressChanged(const ProgressIndicator&) {}
  /// Plays an animation and calls `done` on the main thread when it has ended. False: this observer
  /// plays none, and `done` is left to the caller. `controller` is none for the progress indicator.
  virtual bool animate(const std::shared_ptr<ViewController>&, Transition, const Task&) {
    return false;
  }
};

/// The application's user interface: its scenes and windows, the screen's size and orientation, the
/// progress indicator and the storyboard. The host application fills in what it shows; the library
/// reads it. Held by the host, and by each step under way. Main thread only.
class Application : public std::enable_shared_from_this<Application> {
 public:
  explicit Application(UiServices services);
  ~Application();

  /// In the order in which they connected.
  std::vector<Scene> connectedScenes;
  /// What older platforms know: the key window, and the window of the application's delegate.
  std::shared_ptr<Window> keyWindow;
  std::shared_ptr<Window> delegateWindow;
  /// Major version of the platform; scenes exist from 13 on.
  int platformVersion = 17;

  /// None when there is no main screen (its size then counts as 0 by 0).
  std::optional<Size> mainScreen = Size{375, 667};
  Size mainScreenSize() const { return mainScreen.value_or(Size{}); }
  Orientation statusBarOrientation = Orientation::portrait;

  /// All of the above, each once.
  std::vector<std::shared_ptr<Window>> windows() const;

  /// Puts one window with this root controller on the screen, as the key window of a new scene.
  void showMainWindow(const std::shared_ptr<ViewController>& root);

  ProgressIndicator& progressIndicator() { return progressIndicator_; }
  const ProgressIndicator& progressIndicator() const { return progressIndicator_; }
  Storyboard& storyboard() { return storyboard_; }

  /// Not owned; none to stop.
  void setObserver(UiObserver* observer) { observer_ = observer; }

  void didPresent(const std::shared_ptr<ViewController>& controller);
  void didDismiss(const std::shared_ptr<ViewController>& controller);
  void progressChanged();
  /// Lets the observer play the animation, then runs `done` on the main queue. Never at once: what
  /// is animated ends after the caller has returned.
  void animate(const std::shared_ptr<ViewController>& controller, Transition transition,
               const Task& done);

  /// Presents the alert in its place, else on what is on top of the active window, now or when it
  /// can be. Without either it is dropped with a log line, and counts as lost.
  void showAlert(const std::shared_ptr<ViewController>& alert, bool animated,
                 const Task& completion = {});

  MainQueue& mainQueue() { return *services_.mainQueue; }
  /// Writes one line to the log; without memory it is dropped.
  void log(std::string_view line);
  /// Runs code that is not the screen model's own, such as the observer or a completion: it may do
  /// anything, and throws nothing.
  template <class Code>
  void callOut(const char* where, const Code& code) noexcept {
    services_.runCallOut(where, std::cref(code));
  }

  /// Releases every window, and with it all that is presented, without telling anyone. Nothing is
  /// called back afterwards.
  void clear();
  bool isCleared() const { return cleared_; }

 private:
  UiServices services_;
  ProgressIndicator progressIndicator_;
  Storyboard storyboard_;
  bool cleared_ = false;
  UiObserver* observer_ = nullptr;
};

}  // namespace orlix
