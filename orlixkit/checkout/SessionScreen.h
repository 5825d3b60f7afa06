#pragma once

#include <memory>
#include <string>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

/// A screen that belongs to the checkout that was in progress when it was made, and that can do
/// nothing any more once that checkout is over.
class SessionScreen : public ViewController {
 public:
  SessionScreen() : session_(OXSession::currentSession()) {}

 protected:
  /// The screen's session; none when it has been replaced or has ended. An action registered by
  /// `action` finds it present.
  std::shared_ptr<OXSession> session() const {
    const std::shared_ptr<OXSession> held = session_.lock();
    return held && held->isLive() ? held : nullptr;
  }

  /// Registers an action that runs only while the screen's session is live.
  void action(const std::string& name, Task operation) {
    ViewController::action(name, [this, operation = std::move(operation)] {
      if (session()) {
        operation();
      }
    });
  }

 private:
  std::weak_ptr<OXSession> session_;
};

}  // namespace orlix
