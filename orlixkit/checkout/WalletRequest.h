// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/protocol/KCVelloConnection.h"

namespace orlix {

/// Where a request of a flow runs.
enum class RequestQueue { newOperationQueue, globalBackground, globalHigh };

/// Runs `work` on that queue of the installed host, then `then` on the main queue. Both are made
/// before the work is done, so that its result does not get lost for want of memory. What they
/// share is to be released by `then`: screens die on the main thread. When no thread can be had for
/// the work, `then` runs without it.
void runInBackground(RequestQueue queue, Task work, const Task& then);

/// Writes why a request failed, unless the protocol client has done so.
void logFailureOfRequest(const std::exception& failure);

/// One request of a flow, passed from the main thread to the background and back.
template <class Answer>
struct WalletRequest {
  std::shared_ptr<OXSession> session;
  std::optional<KCVelloConnection> connection;
  std::function<Answer(KCVelloConnection&)> ask;
  std::function<void(Answer)> answered;
  Task failed;
  std::optional<Answer> answer = std::nullopt;

  /// Off the main thread. What was asked is released at once.
  void run() {
    try {
      if (connection && session->isLive()) {
        answer.emplace(ask(*connection));
      }
    } catch (const std::exception& failure) {
      // Every failure of a request looks alike to the user: the connection alert offers a retry.
      answer.reset();
      logFailureOfRequest(failure);
    } catch (...) {
      answer.reset();
    }
    ask = {};
    connection.reset();
  }

  /// Back on the main thread, where the captured screen is released.
  void finish() {
    const auto whenAnswered = std::exchange(answered, {});
    const auto whenFailed = std::exchange(failed, {});
    if (!std::exchange(session, {})->isLive()) {
      return;
    }
    if (answer) {
      whenAnswered(std::move(*answer));
    } else {
      whenFailed();
    }
  }
};

/// One request of the current flow: asked off the main thread, answered on it.
///
/// `ask` runs in the background with the client of the flow, which sends nothing, first or again,
/// once the flow is over. Then, on the main queue, either `answered` or, when `ask` threw anything,
/// there is no client yet, or no thread can be had, `failed` runs: both only while the flow is
/// live. Capture the screen by `shared_from_this` in those two, never in `ask`.
///
/// A screen that has run host code since it looked at its session, the indicator's observer say,
/// gives the session itself, so that nothing is asked in the name of the next flow.
///
/// For what belongs to the flow whatever the user does meanwhile: its lookups and its payment. A
/// request that only its screen waits for goes through `SessionScreen::request`.
template <class Answer>
void requestInBackground(RequestQueue queue, std::function<Answer(KCVelloConnection&)> ask,
                         std::function<void(Answer)> answered, Task failed,
                         std::shared_ptr<OXSession> session = OXSession::currentSession()) {
  const auto request = std::make_shared<WalletRequest<Answer>>();
  request->session = std::move(session);
  request->connection = request->session->connection();
  request->ask = std::move(ask);
  request->answered = std::move(answered);
  request->failed = std::move(failed);
  runInBackground(
      queue, [request] { request->run(); }, [request] { request->finish(); });
}

}  // namespace orlix
