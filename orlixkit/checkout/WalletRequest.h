#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/platform/Host.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/OMVello.h"

namespace orlix {

/// Where a request of a screen runs.
enum class RequestQueue { newOperationQueue, globalBackground, globalHigh };

/// Runs `work` on that queue of the installed host, then `back` on the main queue. Both are made
/// before the work is done, so that what it brings does not get lost for want of memory. What they
/// share is to be let go of by `back`: screens die on the main thread.
void runThereAndBack(RequestQueue queue, Task work, const Task& back);

/// One request of a screen, on its way from the main thread to the background and back.
template <class Answer>
struct WalletRequest {
  std::shared_ptr<OXSession> session = OXSession::currentSession();
  std::shared_ptr<KCVelloConnection> connection = OMVello::sharedOMVello().connection();
  std::function<Answer(KCVelloConnection&)> ask;
  std::function<void(Answer)> answered;
  Task failed;
  std::optional<Answer> answer = std::nullopt;

  /// Off the main thread. What was asked is released at once.
  void run() {
    try {
      if (connection) {
        answer.emplace(ask(*connection));
      }
    } catch (...) {
      // Every failure of a request looks alike to the user: the connection alert offers a retry.
      answer.reset();
    }
    ask = {};
    connection.reset();
  }

  /// Back on the main thread, where the captured screen is let go of.
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
  runThereAndBack(
      queue, [request] { request->run(); }, [request] { request->finish(); });
}

}  // namespace orlix
