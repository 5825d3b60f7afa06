#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <utility>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/platform/Host.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/OMVello.h"

namespace orlix {

/// Where a request of a screen runs.
enum class RequestQueue { newOperationQueue, globalBackground, globalHigh };

/// Adds the task to that queue of the installed host.
void runOn(RequestQueue queue, Task task);

/// Runs the task on the main queue, if the session is live then.
void runOnMainWhileLive(std::shared_ptr<OXSession> session, Task task);

/// One request of a screen, on its way from the main thread to the background and back.
template <class Answer>
struct WalletRequest {
  std::shared_ptr<OXSession> session = OXSession::currentSession();
  std::shared_ptr<KCVelloConnection> connection = OMVello::sharedOMVello().connection();
  std::function<Answer(KCVelloConnection&)> ask;
  std::function<void(Answer)> answered;
  Task failed;

  /// Off the main thread. Leaves nothing behind here: the captured screen goes back to the main
  /// queue, so that it never dies on a background thread, and what was asked is released at once.
  void run() {
    // Held by a shared pointer: a task must be copyable, an answer need not be.
    std::shared_ptr<Answer> answer;
    try {
      if (connection) {
        answer = std::make_shared<Answer>(ask(*connection));
      }
    } catch (const std::exception&) {
      // Every failure of a request looks alike to the user: the connection alert offers a retry.
      answer.reset();
    }
    ask = {};
    runOnMainWhileLive(std::move(session),
                       [answer = std::move(answer), whenAnswered = std::move(answered),
                        whenFailed = std::move(failed)] {
                         if (answer) {
                           whenAnswered(std::move(*answer));
                         } else {
                           whenFailed();
                         }
                       });
  }
};

/// One request of a screen: asked off the main thread, answered on it.
///
/// `ask` runs in the background with the client that was current at the call. Then, on the main
/// queue, either `answered` or, when `ask` threw anything or there is no client yet, `failed` runs:
/// both only while the session that was current at the call is still live, so that a late answer
/// finds no other flow. Capture the screen by `shared_from_this` in those two, never in `ask`.
template <class Answer>
void requestInBackground(RequestQueue queue, std::function<Answer(KCVelloConnection&)> ask,
                         std::function<void(Answer)> answered, Task failed) {
  const auto request = std::make_shared<WalletRequest<Answer>>();
  request->ask = std::move(ask);
  request->answered = std::move(answered);
  request->failed = std::move(failed);
  runOn(queue, [request] { request->run(); });
}

}  // namespace orlix
