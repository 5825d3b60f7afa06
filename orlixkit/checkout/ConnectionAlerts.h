// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ui/AlertController.h"

namespace orlix {

/// The choices in the "Connection problem" alert of one failed request.
struct ConnectionAlert {
  Task retry{};
  /// Runs on "Cancel"; empty: the alert only closes.
  Task cancel{};
  /// Runs when the alert disappears without a button press, because the window or the host removed
  /// it. Empty: the same as "Cancel".
  Task lost{};
  /// Checked before the alert is shown and before a button's task runs: false once the user has
  /// left the screen that made the request. Empty: true as long as the flow is live.
  std::function<bool()> isWanted{};
  /// True for a request of the payment itself. Other alerts wait until no payment is in progress.
  bool ofPayment = false;
  /// The kind of request. A source has at most one alert at a time, because a second failure of the
  /// same kind offers the same choices. Empty: always an alert of its own.
  std::string source{};
};

/// The queue of connection alerts of one flow. Requests that fail at the same time must not show
/// two alerts over each other, and no alert may be lost.
///
/// Main thread. Each alert is shown when the progress indicator is gone.
class ConnectionAlerts : public std::enable_shared_from_this<ConnectionAlerts> {
 public:
  void add(ConnectionAlert alert);
  /// Removes the alerts that are no longer wanted, including the one on screen.
  void dropUnwanted();
  /// Removes the alert on screen and discards the waiting ones. None of their tasks runs
  /// afterwards.
  void close();

 private:
  void showNext();
  void present(const std::shared_ptr<ConnectionAlert>& alert);
  std::shared_ptr<AlertController> controllerFor(const std::shared_ptr<ConnectionAlert>& alert);
  /// Runs `task` of the alert once it has closed, then shows the next alert.
  Task whenOver(const std::shared_ptr<ConnectionAlert>& alert, Task ConnectionAlert::*task);

  std::deque<std::shared_ptr<ConnectionAlert>> waiting_;
  std::shared_ptr<ConnectionAlert> shown_;  ///< also while the indicator goes before it
  std::weak_ptr<AlertController> controller_;
  bool closed_ = false;
};

}  // namespace orlix
