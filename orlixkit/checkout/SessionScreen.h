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

/// A screen that belongs to the checkout that was in progress when it was made, and that can do
/// nothing any more once that checkout is over. Once it was left it changes nothing either: the
/// answers to its requests are dropped, its alerts are not shown, its progress indicator goes.
class SessionScreen : public ViewController {
 public:
  SessionScreen() : session_(OXSession::currentSession()) {}

  /// Shows the session's cards or its code information.
  virtual bool showsSessionData() const { return false; }
  /// These have been replaced while this screen is shown.
  virtual void sessionDataChanged() {}

  /// No longer presented, or being dismissed.
  bool wasLeft() const { return !presentingViewController() || isBeingDismissed(); }

 protected:
  friend class Payment;  // a part of its screen

  /// The screen's session; none when it has been replaced or has ended. The action of a screen, and
  /// the retry that it offers, find it present.
  std::shared_ptr<OXSession> session() const {
    const std::shared_ptr<OXSession> held = session_.lock();
    return held && held->isLive() ? held : nullptr;
  }

  bool isLive() const { return session() != nullptr; }
  /// Its flow is live and it has not been left: a host that removes the screens leaves the flow
  /// live, but they ask nothing any more.
  bool isInUse() const { return isLive() && !wasLeft(); }

  /// Registers an action that runs only while the screen is in use, and receives its session.
  void action(const std::string& name, std::function<void(OXSession&)> operation) {
    ViewController::action(name, [this, operation = std::move(operation)] {
      if (isInUse()) {
        operation(*session());
      }
    });
  }
  void action(const std::string& name, Task operation) {
    action(name, [operation = std::move(operation)](OXSession&) { operation(); });
  }

  /// Does nothing on a screen that is no longer in use.
  void showProgress(const std::string& status, ProgressMask mask = ProgressMask::none,
                    ProgressStyle style = ProgressStyle::activity);
  /// Dismisses the progress indicator if this screen shows it. False when the flow is over
  /// afterwards: the indicator's observer is the host's code, and may have ended or replaced it.
  [[nodiscard]] bool hideProgress();
  /// The connection alert for a request of this screen that has failed.
  void offerRetry(const std::string& kind, Task retry);
  /// Dismisses the indicator, then offers the retry.
  void failed(const std::string& kind, Task retry);

  /// A request that only this screen waits for.
  template <class Answer>
  struct Request {
    std::string kind;  ///< which of the screen's requests it is
    RequestQueue queue = RequestQueue::newOperationQueue;
    std::function<Answer(KCVelloConnection&)> ask;
    std::function<void(Answer)> answered;
    Task failed;
    /// Runs in the place of `answered` once the screen has been left. It may bring the session's
    /// data up to date; it must not change the screens.
    Task answeredLate = {};
    /// The answer is dropped when one of the same kind that was asked for later has been taken: a
    /// lookup, say. Requests that change something count each for itself.
    bool latestCounts = false;
    /// Not sent while one of this kind is under way: a screen that holds touches back meanwhile may
    /// still be touched by the host's code.
    bool alone = false;
  };

  /// See `requestInBackground`. Does nothing once the screen's flow is over.
  template <class Answer>
  void send(Request<Answer> request) {
    const std::shared_ptr<OXSession> own = session();
    if (!own) {
      return;
    }
    if (request.alone && !underWay_.insert(request.kind).second) {
      return;
    }
    const auto self = std::static_pointer_cast<SessionScreen>(shared_from_this());
    const std::uint64_t number = ++asked_;
    const auto isOvertaken = [self, kind = request.kind, number,
                              latestCounts = request.latestCounts] {
      return latestCounts && !self->take(kind, number);
    };
    requestInBackground<Answer>(
        request.queue, std::move(request.ask),
        [self, isOvertaken, kind = request.kind, answered = std::move(request.answered),
         late = std::move(request.answeredLate)](Answer answer) {
          self->underWay_.erase(kind);
          if (!self->wasLeft()) {
            if (!isOvertaken()) {
              answered(std::move(answer));
            }
          } else if (late) {
            late();
          }
        },
        [self, isOvertaken, kind = request.kind, failed = std::move(request.failed)] {
          self->underWay_.erase(kind);
          if (!self->wasLeft() && !isOvertaken()) {
            failed();
          }
        },
        own);
  }

 private:
  /// False when an answer of this kind that was asked for later has been taken already.
  bool take(const std::string& kind, std::uint64_t number);

  std::weak_ptr<OXSession> session_;
  std::uint64_t asked_ = 0;
  std::map<std::string, std::uint64_t> taken_;
  std::set<std::string> underWay_;
};

}  // namespace orlix
