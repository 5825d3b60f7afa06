// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/WalletVisit.h"

#include "examples/shop/ShownScreen.h"
#include "orlixkit/host/Host.h"

namespace orlix::shop {

namespace {

const std::string kFirstScreen = "Waiting";

}  // namespace

std::shared_ptr<OXOrlix> WalletVisit::begin(const std::string& code) {
  code_ = code;
  obstacle_ = VisitEnd::Obstacle::none;
  stopNotice_.reset();
  facade_ = OXOrlix::make();
  return facade_;
}

void WalletVisit::end(const std::optional<Outcome>& outcome) {
  VisitEnd end{outcome, code_, {}, obstacle_};
  if (const std::shared_ptr<OXOrlix> facade = std::exchange(facade_, {})) {
    end.purchase = facade->purchaseStatus();
  }
  const Notice notice = noticeFor(end);
  events_.notice(notice.title, notice.detail, end.purchase);
  if (onEnd) {
    onEnd(notice);
  }
}

void WalletVisit::leftAlone() {
  if (facade_) {
    end(std::nullopt);
  }
}

void WalletVisit::didPresent(const std::shared_ptr<ViewController>& controller) {
  const auto alert = std::dynamic_pointer_cast<AlertController>(controller);
  const bool waits = ShownScreen::identifier() == kFirstScreen;
  if (!waits) {
    obstacle_ = VisitEnd::Obstacle::none;
  } else if (alert && alert->title() == "Connection problem") {
    obstacle_ = VisitEnd::Obstacle::noSession;
  } else if (alert && alert->title() == "Error") {
    obstacle_ = VisitEnd::Obstacle::versionStopped;
    stopNotice_ = alert;
  }
}

/// The library makes no callback for a version that the server has stopped, and leaves its waiting
/// screen to the host: the shop takes it away when the user has read why.
void WalletVisit::didDismiss(const std::shared_ptr<ViewController>& controller) {
  if (const auto notice = stopNotice_.lock(); notice && notice == controller) {
    stopNotice_.reset();
    Host::current().ports().mainQueue->async([this, facade = std::weak_ptr(facade_)] {
      if (facade.lock() && facade.lock() == facade_) {
        hostScreen_->dismiss(true, [this] { leftAlone(); });
      }
    });
  }
}

}  // namespace orlix::shop
