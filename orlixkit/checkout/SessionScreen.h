// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/WalletRequest.h"
#include "orlixkit/ui/ProgressIndicator.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// A screen of the checkout that was in progress when the screen was made. It is inert once that
/// checkout is over, and once the user has left it: answers to its requests are discarded, its
/// alerts are not shown, its progress indicator is dismissed.
class SessionScreen : public ViewController {
 public:
  SessionScreen();

  /// True when the screen shows the session's cards or code information.
  virtual bool showsSessionData() const { return false; }
  /// Called when these were replaced while the screen is shown.
  virtual void sessionDataChanged() {}

  /// True when the screen is no longer presented, or is being dismissed.
  bool wasLeft() const;

 protected:
  friend class Payment;  // a part of its screen

  /// The screen's session; null when it was replaced or has ended. Never null in an action or a
  /// retry of the screen.
  std::shared_ptr<OXSession> session() const;

  bool isLive() const { return session() != nullptr; }
  /// True when the flow is live and the user has not left the screen. A host that removes the
  /// screens leaves the flow live, but its screens send nothing.
  bool isInUse() const { return isLive() && !wasLeft(); }

  /// Registers an action that runs only while the screen is in use, and receives its session.
  void action(const std::string& name, std::function<void(OXSession&)> operation);
  void action(const std::string& name, Task operation);

  /// Does nothing on a screen that is no longer in use.
  void showProgress(const std::string& status, ProgressMask mask = ProgressMask::none,
                    ProgressStyle style = ProgressStyle::activity);
  /// Dismisses the progress indicator if this screen shows it. False when the flow is over
  /// afterwards: the indicator's observer is the host's code and may end or replace it.
  [[nodiscard]] bool hideProgress();
  /// Shows the alert "Warning", unless the user has left the screen, because `hideProgress` runs
  /// the host's code, or a segue has covered it.
  void warn(const std::string& message);
  /// The connection alert for a request of this screen that has failed.
  void offerRetry(const std::string& kind, Task retry);
  /// Dismisses the indicator, then offers the retry.
  void failed(const std::string& kind, Task retry);

  /// A request whose answer only this screen uses.
  template <class Answer>
  struct Request {
    std::string kind;  ///< which of the screen's requests it is
    RequestQueue queue = RequestQueue::newOperationQueue;
    std::function<Answer(KCVelloConnection&)> ask;
    std::function<void(Answer)> answered;
    Task failed;
    /// Runs instead of `answered` once the user has left the screen. May update the session's data;
    /// must not change screens.
    Task answeredLate = {};
    /// Discard the answer if a later request of the same kind (a lookup, for example) was answered
    /// first. Leave it off for requests that change something on the server.
    bool latestCounts = false;
    /// Send only if no request of this kind is pending: the host's code can trigger an action
    /// although touches are masked.
    bool alone = false;
  };

  /// See `requestInBackground`. Does nothing once the screen's flow is over.
  template <class Answer>
  void send(Request<Answer> request) {
    const std::shared_ptr<OXSession> own = session();
    if (!own || !mayAsk(request.kind, request.alone)) {
      return;
    }
    const auto self = std::static_pointer_cast<SessionScreen>(shared_from_this());
    const Asked asked{request.kind, ++asked_, request.latestCounts};
    requestInBackground<Answer>(
        request.queue, std::move(request.ask),
        [self, asked, answered = std::move(request.answered),
         late = std::move(request.answeredLate)](Answer answer) {
          if (self->takes(asked, late)) {
            answered(std::move(answer));
          }
        },
        [self, asked, failed = std::move(request.failed)] {
          if (self->takes(asked, {})) {
            failed();
          }
        },
        own);
  }

 private:
  /// A request in progress.
  struct Asked {
    std::string kind;
    std::uint64_t number;
    bool latestCounts;
  };

  /// False while another request of this kind must end first.
  bool mayAsk(const std::string& kind, bool alone);
  /// Called when the request has ended. False when its answer is discarded: the user has left the
  /// screen, in which case `late` runs if there is any, or a later request of this kind has been
  /// answered already.
  bool takes(const Asked& asked, const Task& late);

  std::weak_ptr<OXSession> session_;
  std::uint64_t asked_ = 0;
  std::map<std::string, std::uint64_t> taken_;
  std::set<std::string> underWay_;
};

}  // namespace orlix
