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

/// Runs `work` on that queue of the installed host, then `then` on the main queue. Both tasks are
/// allocated first, so that a result is not lost for lack of memory. `then` releases what they
/// share, because screens are destroyed on the main thread. When no thread can be created for the
/// work, only `then` runs.
void runInBackground(RequestQueue queue, Task work, const Task& then);

/// Logs why a request failed, unless the protocol client has done so.
void logFailureOfRequest(const std::exception& failure);

/// One request of a flow, which travels from the main thread to the background and back.
template <class Answer>
struct WalletRequest {
  std::shared_ptr<OXSession> session;
  std::optional<KCVelloConnection> connection;
  std::function<Answer(KCVelloConnection&)> ask;
  std::function<void(Answer)> answered;
  Task failed;
  std::optional<Answer> answer = std::nullopt;

  /// Background. Releases `ask` at once.
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

  /// Main thread. Releases the captured screen.
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

/// Sends one request of the current flow in the background and delivers the answer on the main
/// queue.
///
/// `ask` runs in the background with the flow's client, which sends nothing once the flow is over.
/// Then `answered` runs on the main queue; or `failed`, when `ask` threw, there is no client yet,
/// or no thread can be created. Both run only while the flow is live. Capture the screen by
/// `shared_from_this` in these two, never in `ask`.
///
/// A screen that has called host code (for example the indicator's observer) since it looked up its
/// session passes that session, so that no request is made for the next flow by mistake.
///
/// For the flow's own requests, its lookups and its payment. A request whose answer only one screen
/// uses goes through `SessionScreen::request`.
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
