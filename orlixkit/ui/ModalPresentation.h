// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <vector>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// One presentation of a controller over another, from the call of `present` until it has gone. A
/// later presentation of the same controller is another object.
///
/// Held by the controller it is presented on, and by each of its steps. Every call of a screen, of
/// the observer or of a completion may do anything, dismiss what is being presented included. So a
/// step holds what it needs, and asks `state` again after every such call.
class ModalPresentation : public std::enable_shared_from_this<ModalPresentation> {
 public:
  /// From the top down.
  using Stack = std::vector<std::shared_ptr<ModalPresentation>>;

  void begin();
  /// Once its place is free.
  void wait();
  /// Withdraws it while it waits.
  void stopWaiting();
  /// With everything that is presented on the controller; `stack` is made before anything changes.
  void beginDismissal(Stack stack);
  /// Nothing when another step has ended it.
  void endDismissal();
  /// What is presented on the controller is presented on the one below from now on.
  void stepOut();
  /// The presenter is no more, its window gone perhaps; the controller may be held by others.
  void leaveWithoutPresenter();
  void unlink();
  Stack stackFromTheTop();

  /// Each that still waits gets its turn: on `place`, without one on top of the active window.
  static void presentWaiting(const Stack& waiting, const std::shared_ptr<ViewController>& place);

  std::shared_ptr<ViewController> controller;
  std::weak_ptr<ViewController> presenter;  ///< or the one on which it waits
  PresentationState state = PresentationState::idle;
  bool animated = false;
  Task whenPresented;
  std::vector<Task> whenGone;
  std::shared_ptr<PresentationController> presentationController;

 private:
  void layOut(const std::shared_ptr<ViewController>& below);
  void arrive();
  static void finish(const Stack& all);

  Stack orphans_;  ///< what waited on the controller when it went
};

}  // namespace orlix
