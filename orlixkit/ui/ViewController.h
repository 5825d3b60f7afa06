// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ui/ScreenDeclaration.h"
#include "orlixkit/ui/View.h"

namespace orlix {

class Application;
class NavigationController;
class ModalPresentation;
class PresentationController;
class Storyboard;
class TabBarController;
class TransitioningDelegate;
class ViewController;
class Window;

enum class ModalPresentationStyle { fullScreen, custom };

/// State of a controller's presentation over its presenter. `idle`: not presented.
/// `waiting`: an alert or screen whose place is still taken.
enum class PresentationState { idle, waiting, presenting, presented, dismissing };

/// Supplies the presentation of a controller that is presented in the custom style.
class TransitioningDelegate {
 public:
  virtual ~TransitioningDelegate() = default;
  virtual std::shared_ptr<PresentationController> presentationControllerFor(
      const std::shared_ptr<ViewController>& presented,
      const std::shared_ptr<ViewController>& presenting,
      const std::shared_ptr<ViewController>& source) = 0;
};

/// One screen: what it shows (outlets) and what a user can do on it (actions), both reached by name
/// from a shell, a script or a test; and its place among the screens that present one another.
///
/// Main thread only. Presented controllers are held by the one that presents them; work in flight
/// keeps its controller alive by `shared_from_this`.
class ViewController : public std::enable_shared_from_this<ViewController> {
 public:
  ViewController();
  virtual ~ViewController();
  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;

  /// Storyboard identifier or, for a screen that a segue opened, the segue's name. Empty for
  /// controllers that come from elsewhere (the host's own, alerts).
  const std::string& identifier() const { return identifier_; }
  void setIdentifier(std::string identifier) { identifier_ = std::move(identifier); }

  const std::shared_ptr<View>& view() const { return view_; }
  void loadViewIfNeeded();
  bool isViewLoaded() const { return loaded_; }

  virtual void viewDidLoad() {}
  virtual void viewWillAppear() {}
  virtual void viewDidAppear() {}
  virtual void viewWillDisappear() {}
  virtual bool shouldAutorotate() const { return true; }

  /// Names in the order of their registration.
  const std::vector<std::string>& outletNames() const { return outletNames_; }
  const std::vector<std::string>& actionNames() const { return actionNames_; }
  /// None when there is no outlet of this name.
  std::shared_ptr<View> outletNamed(const std::string& name) const;
  bool hasAction(const std::string& name) const { return actions_.contains(name); }
  /// True for the outlets and actions that can be touched although the progress indicator holds
  /// touches back: the way out of something that may never come.
  bool isReachableUnderMask(const std::string& name) const { return underMask_.contains(name); }
  /// Its alerts and segues, and when its outlets are hidden.
  const ScreenDeclaration& declaration() const { return declaration_; }
  /// Throws std::out_of_range for an unknown name.
  void performAction(const std::string& name);

  /// The application that it belongs to: since it was put into a window, presented, or made by the
  /// storyboard. None before, and when the application is no more.
  std::shared_ptr<Application> application() const;

  // A controller inside a container presents, and is presented, as the container.
  std::shared_ptr<ViewController> presentedViewController() const;
  std::shared_ptr<ViewController> presentingViewController() const;
  PresentationState presentationState() const;
  /// On its way out, by itself or with a controller below it.
  bool isBeingDismissed() const { return presentationState() == PresentationState::dismissing; }
  /// From `viewDidAppear` to `viewWillDisappear`.
  bool hasAppeared() const { return appeared_; }
  std::shared_ptr<PresentationController> presentationController() const;

  ModalPresentationStyle modalPresentationStyle = ModalPresentationStyle::fullScreen;
  /// Not owned.
  std::weak_ptr<TransitioningDelegate> transitioningDelegate;

  /// Shows `controller` over this one, now or when its place is free.
  ///
  /// It waits while the presented controller is being dismissed or is an alert. An alert
  /// is shown on what is on top of this one, after another alert; when this one leaves before, it
  /// is shown on top of the active window (`Application::showAlert`).
  ///
  /// Refused with a log line, `completion` then does not run: a controller that is shown or waits
  /// already; a screen, when this one presents another screen or is being dismissed, also when
  /// either happens while it waits. Throws std::logic_error when neither of them belongs to an
  /// application.
  void present(const std::shared_ptr<ViewController>& controller, bool animated,
               Task completion = {});

  /// Dismisses the presented controller and everything presented above it. Each receives
  /// `viewWillDisappear`, topmost first. Without anything presented `completion` runs at once;
  /// while a dismissal is under way it joins that one, and one that is not animated ends it at
  /// once. What waits to be presented here comes after the completions.
  void dismiss(bool animated, Task completion = {});

  /// Makes the segue's destination from the storyboard and presents it, animated.
  void performSegue(const std::string& name);
  virtual void prepareForSegue(const std::string& name,
                               const std::shared_ptr<ViewController>& destination);

  std::shared_ptr<NavigationController> navigationController() const;
  std::shared_ptr<TabBarController> tabBarController() const;
  /// The container that holds this controller, none for most.
  std::weak_ptr<ViewController> parent;

  /// What a container shows; none when the controller is no container.
  virtual std::shared_ptr<ViewController> visibleChild() { return nullptr; }
  virtual bool isAlert() const { return false; }

 protected:
  /// Makes the view of that outlet, adds it to this screen's view and registers it.
  template <class T>
  std::shared_ptr<T> outlet(const std::string& name);
  /// The same, inside another outlet.
  template <class T>
  std::shared_ptr<T> outlet(const std::string& name, const std::shared_ptr<View>& inside);
  void action(const std::string& name, Task operation);
  void declare(const ScreenDeclaration& declaration) { declaration_ = declaration; }
  void keepReachableUnderMask(std::set<std::string> names) { underMask_ = std::move(names); }

  virtual bool mayBePresented() const { return true; }
  /// Called after its dismissal, or the removal from a queue, and all callbacks of that.
  virtual void hasGone() {}
  /// Takes this controller away at once, or from where it waits; what is on it stays.
  void leaveAlone();

 private:
  friend class Application;
  friend class ModalPresentation;
  friend class Storyboard;
  friend class Window;
  void registerOutlet(const std::string& name, const std::shared_ptr<View>& view);
  std::string reasonNotToPresent(const ViewController& controller) const;
  /// Calls `hasGone` from the main queue.
  void loseLater();
  void appear();
  void disappear();
  template <class Code>
  void callOut(const char* where, const Code& code) noexcept;
  /// Releases everything presented, and what waits for it, without telling anyone.
  void abandonPresented();
  void releasePresented() noexcept;

  std::string identifier_;
  std::shared_ptr<View> view_;
  bool loaded_ = false;
  bool appeared_ = false;
  std::vector<std::string> outletNames_;
  std::map<std::string, std::shared_ptr<View>> outlets_;
  std::vector<std::string> actionNames_;
  std::map<std::string, Task> actions_;
  std::set<std::string> underMask_;
  ScreenDeclaration declaration_;

  std::weak_ptr<Application> application_;
  std::weak_ptr<ModalPresentation> presentation_;  ///< this one's own
  std::shared_ptr<ModalPresentation> presents_;    ///< of what it presents
  std::vector<std::shared_ptr<ModalPresentation>> waiting_;
};

template <class T>
std::shared_ptr<T> ViewController::outlet(const std::string& name) {
  return outlet<T>(name, view_);
}

template <class T>
std::shared_ptr<T> ViewController::outlet(const std::string& name,
                                          const std::shared_ptr<View>& inside) {
  auto made = std::make_shared<T>();
  inside->addSubview(made);
  registerOutlet(name, made);
  return made;
}

}  // namespace orlix
