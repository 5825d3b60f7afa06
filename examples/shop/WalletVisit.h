// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>

#include "examples/shop/EventLines.h"
#include "examples/shop/Notice.h"
#include "examples/shop/Outcomes.h"
#include "orlixkit/checkout/OXOrlix.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/Application.h"

namespace orlix::shop {

/// A user's visit to the wallet, from the shop's entry call to what the shop says at its end: keeps
/// the facade, and remembers from the alerts it observes what stopped a visit that has no outcome
/// of its own. One at a time. Main thread.
class WalletVisit : public UiObserver {
 public:
  WalletVisit(EventLines& events, std::shared_ptr<ViewController> hostScreen)
      : events_(events), hostScreen_(std::move(hostScreen)) {}

  /// Called with what the shop says; may be empty.
  std::function<void(const Notice&)> onEnd;

  /// A facade for the entry call that follows. `code`: what is to be paid for, if anything.
  std::shared_ptr<OXOrlix> begin(const std::string& code);
  void ended(const Outcome& outcome) { end(outcome); }
  /// The wallet is no longer on the screen, and its callbacks have been made. Does nothing after an
  /// outcome.
  void leftAlone();

  void didPresent(const std::shared_ptr<ViewController>& controller) override;
  void didDismiss(const std::shared_ptr<ViewController>& controller) override;

 private:
  void end(const std::optional<Outcome>& outcome);

  EventLines& events_;
  std::shared_ptr<ViewController> hostScreen_;
  std::shared_ptr<OXOrlix> facade_;  ///< none between two visits
  std::string code_;
  VisitEnd::Obstacle obstacle_ = VisitEnd::Obstacle::none;
  std::weak_ptr<AlertController> stopNotice_;  ///< that this version may not be used
};

}  // namespace orlix::shop
