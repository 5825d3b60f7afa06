// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "orlixkit/ui/Application.h"

namespace orlix::shop {

/// Several observers in the place of one. The first that plays an animation plays it for all. Main
/// thread.
class UiObservers : public UiObserver {
 public:
  /// Not owned.
  explicit UiObservers(std::vector<UiObserver*> observers) : observers_(std::move(observers)) {}
  void set(std::vector<UiObserver*> observers) { observers_ = std::move(observers); }

  void didPresent(const std::shared_ptr<ViewController>& controller) override {
    for (UiObserver* one : observers_) {
      one->didPresent(controller);
    }
  }
  void didDismiss(const std::shared_ptr<ViewController>& controller) override {
    for (UiObserver* one : observers_) {
      one->didDismiss(controller);
    }
  }
  void progressChanged(const ProgressIndicator& indicator) override {
    for (UiObserver* one : observers_) {
      one->progressChanged(indicator);
    }
  }
  bool animate(const std::shared_ptr<ViewController>& controller, Transition transition,
               const Task& done) override {
    return std::any_of(observers_.begin(), observers_.end(),
                       [&](UiObserver* one) { return one->animate(controller, transition, done); });
  }

 private:
  std::vector<UiObserver*> observers_;
};

}  // namespace orlix::shop
