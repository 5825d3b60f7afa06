// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/checkout/OXUtil.h"

#include <algorithm>
#include <stdexcept>

#include "orlixkit/checkout/AlertWindow.h"
#include "orlixkit/checkout/LastUsedCards.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXTransitioningDelegate.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/protocol/LocationUtil.h"
#include "orlixkit/protocol/OMVello.h"
#include "orlixkit/ui/ActiveWindow.h"
#include "orlixkit/ui/Containers.h"

namespace orlix {

namespace {

constexpr int kTagOfUnstyledButtons = 9999;
constexpr double kHeightOfSmallScreen = 320;
constexpr double kHeightOfLogo = 46;

std::string lastUsedCardKey() { return OXUtil::storageKeyForItem("lastUsedCard"); }

/// The topmost screen of the flow that is shown there, when it has one.
std::shared_ptr<ViewController> screenOver(const std::shared_ptr<ViewController>& below) {
  const auto top = AlertWindow::ox_topViewControllerFrom(below);
  const bool isShown = top != below && isOnScreen(Host::current().application(), below);
  return isShown ? top : nullptr;
}

}  // namespace

std::string OXUtil::storageKeyForItem(const std::string& item) {
  return (OMVello::sharedOMVello().system() != 0 ? "test." : "live.") + item;
}

std::string OXUtil::velloUrl() {
  const Deployment& deployment = Host::current().deployment();
  return OMVello::sharedOMVello().system() != 0 ? deployment.testBase : deployment.liveBase;
}

ProgressIndicator& OXUtil::indicator() { return Host::current().application().progressIndicator(); }

std::string OXUtil::deviceModel() { return Host::current().ports().device->model(); }

void OXUtil::showAlertWithTitle(const std::string& title, const std::string& message) {
  const auto alert = std::make_shared<AlertController>(title, message);
  alert->addAction({"Ok", AlertActionStyle::cancel, {}});
  showAlert(alert);
}

void OXUtil::showAlert(const std::shared_ptr<AlertController>& alert) {
  styleAlertController(*alert);
  const std::shared_ptr<OXSession> session = OXSession::currentSession();
  if (session->isLive() && session->presentingController) {
    session->keepTrackOf(alert);
    // Over the flow's own screen, which need not be in the active window.
    alert->place = [below = std::weak_ptr(session->presentingController)] {
      return screenOver(below.lock());
    };
  }
  AlertWindow::show(alert);
}

void OXUtil::showConnectionAlert(ConnectionAlert alert) {
  const auto session = OXSession::currentSession();
  Host::current().ports().mainQueue->async([session, alert = std::move(alert)] {
    if (!session->isLive()) {
      log("OrlixKit: The checkout is over; ignoring a failed request.");
    } else if (alert.ofPayment) {
      session->connectionAlerts().add(alert);
    } else {
      session->whenNotPaying("alert " + alert.source, [alert](OXSession& current) {
        current.connectionAlerts().add(alert);
      });
    }
  });
}

void OXUtil::showNetworkErrorRetryObject(Task retry, Task cancel) {
  ConnectionAlert alert;
  alert.retry = std::move(retry);
  alert.cancel = std::move(cancel);
  showConnectionAlert(std::move(alert));
}

void OXUtil::showController(const std::shared_ptr<ViewController>& controller,
                            const std::shared_ptr<ViewController>& from) {
  // Held only while the presentation begins.
  const auto transitioningDelegate = presentAsCard(*controller);
  from->present(controller, true);
}

void OXUtil::setLastUsedCardId(std::int64_t cardId) {
  try {
    Host::current().shared<LastUsedCards>().set(lastUsedCardKey(), cardId);
  } catch (const std::exception& failure) {
    // No memory or no thread to write it with.
    log(std::string("OrlixKit: The last used card is not stored yet: ") + failure.what());
  }
}

std::int64_t OXUtil::getLastUsedCardid() {
  return Host::current().shared<LastUsedCards>().get(lastUsedCardKey());
}

std::optional<CardOption> OXUtil::getLastUsedCard() {
  const std::int64_t stored = getLastUsedCardid();
  const std::vector<CardOption>& cards = OXSession::currentSession()->cards;
  const auto found = std::find_if(cards.begin(), cards.end(), [stored](const CardOption& card) {
    return card.cardId == stored;
  });
  if (found != cards.end()) {
    return *found;
  }
  if (cards.empty()) {
    return std::nullopt;
  }
  // 0 and not the card's own id: the first card is shown for want of a choice, not chosen.
  setLastUsedCardId(0);
  return cards.front();
}

std::string OXUtil::imageForCardType(const std::optional<std::string>& cardType) {
  if (cardType == "amex") {
    return "america_express100";
  }
  return cardType == "orbis" || cardType == "visa" ? *cardType + "100" : "other100";
}

Location OXUtil::getLocation() {
  Location location;
  if (const auto& fix = LocationUtil::sharedLocationUtil().location()) {
    location.gpsLatitude = fix->latitude;
    location.gpsLongditude = fix->longitude;
  } else {
    log("WARNING: clLocation not available");
  }
  return location;
}

void OXUtil::checkOrientationHeight(ViewController& controller, bool isSecureScreen) {
  const Application& application = Host::current().application();
  if (isSecureScreen || application.statusBarOrientation == Orientation::portrait ||
      application.mainScreenSize().height > kHeightOfSmallScreen) {
    return;
  }
  const Rect frame = controller.view()->frame();
  controller.view()->setFrame({frame.x, frame.y + 25, 300, 350});
}

void OXUtil::styleButtonsForView(const std::shared_ptr<View>& view) {
  for (const auto& subview : view->subviews()) {
    const auto button = std::dynamic_pointer_cast<Button>(subview);
    if (button && button->tag() != kTagOfUnstyledButtons) {
      styleButton(*button);
    }
    styleButtonsForView(subview);
  }
}

void OXUtil::styleButton(Button& button) {
  button.setBackgroundColor(kClear);
  button.titleLabel()->setTextColor(kWhite);
  button.setCornerRadius(5);
  button.setBorder(1, kWhite);
}

void OXUtil::styleAlertController(AlertController& alert) {
  alert.view()->setBackgroundColor(primaryColor());
  alert.view()->setCornerRadius(5);
  alert.view()->setBorder(1, primaryDarkColor());
  alert.view()->setTintColor(kWhite);
  alert.titleFont = {boldFont(), 17};
  alert.messageFont = {regularFont(), 15};
  alert.textColor = primaryDarkColor();
}

void OXUtil::addOrlixLogoToNavigationItem(ViewController& controller) {
  const std::shared_ptr<NavigationController> container = controller.navigationController();
  const std::shared_ptr<View>& bar = container ? container->view() : controller.view();
  const auto logo = std::make_shared<ImageView>();
  logo->setImageName("header");
  logo->setFrame({0, 0, bar->frame().width, kHeightOfLogo});
  bar->addSubview(logo);
}

Color OXUtil::primaryColor() { return {0.106, 0.118, 0.149, 1}; }
Color OXUtil::primaryDarkColor() { return {0.439, 0.443, 0.455, 1}; }
Color OXUtil::accentColor() { return {0.18, 0.6, 0.95, 1}; }
std::string OXUtil::regularFont() { return "Inter-Regular"; }
std::string OXUtil::boldFont() { return "Inter-Bold"; }
std::string OXUtil::lightFont() { return "Inter-Light"; }

}  // namespace orlix
