#pragma once

#include <exception>
#include <functional>
#include <memory>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/platform/Host.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/protocol/OMVello.h"

namespace orlix {

/// Where a request of a screen runs.
enum class RequestQueue { newOperationQueue, globalBackground, globalHigh };

/// Adds the task to that queue of the installed host.
void runOn(RequestQueue queue, Task task);

/// One request of a screen: asked off the main thread, answered on it.
///
/// `ask` runs in the background with the client that was current at the call. Then, on the main
/// queue, either `answered` or, when `ask` threw anything, `failed` runs: both only while the
/// session that was current at the call is still live, so that a late answer finds no other flow.
/// Capture the screen by `shared_from_this` in both.
template <class Answer>
void requestInBackground(RequestQueue queue, std::function<Answer(KCVelloConnection&)> ask,
                         std::function<void(Answer)> answered, Task failed) {
  runOn(queue,
        [session = OXSession::currentSession(), connection = OMVello::sharedOMVello().connection(),
         ask = std::move(ask), answered = std::move(answered), failed = std::move(failed)] {
          Task onMain = failed;
          try {
            if (connection) {
              // Held by a shared pointer: a task must be copyable, an answer need not be.
              auto answer = std::make_shared<Answer>(ask(*connection));
              onMain = [answered, answer] { answered(std::move(*answer)); };
            }
          } catch (const std::exception&) {
            // Every failure of a request looks alike to the user: the connection alert offers a
            // retry.
            onMain = failed;
          }
          Host::current().ports().mainQueue->async([session, onMain] {
            if (session->isLive()) {
              onMain();
            }
          });
        });
}

}  // namespace orlix
