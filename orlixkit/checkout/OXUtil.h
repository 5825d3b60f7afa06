// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/checkout/ConnectionAlerts.h"
#include "orlixkit/ports/Bytes.h"
#include "orlixkit/records/CardOption.h"
#include "orlixkit/records/Location.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/ProgressIndicator.h"
#include "orlixkit/ui/View.h"
#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// Functions that the library's screens share: names of stored values, the server's address, the
/// last used card, standard alerts, appearance. Thread: main, unless stated otherwise.
class OXUtil {
 public:
  /// "live" or "test", a point, and the item. Any thread.
  static std::string storageKeyForItem(const std::string& item);
  /// Base address of the chosen server, without a trailing slash. Any thread.
  static std::string velloUrl();
  /// Any thread.
  static std::string deviceModel();

  /// The application's one progress indicator.
  static ProgressIndicator& indicator();
  /// An alert with one button "Ok".
  static void showAlertWithTitle(const std::string& title, const std::string& message);
  /// Shows an alert of the current flow: over the flow's screen, or in `AlertWindow` while there is
  /// none. It is removed when the flow ends.
  static void showAlert(const std::shared_ptr<AlertController>& alert);
  /// Shows the "Connection problem" alert of the current flow when the progress indicator has
  /// disappeared. The alert and its tasks are discarded when the flow ends. Any thread.
  static void showConnectionAlert(ConnectionAlert alert);
  /// The same: "Retry" runs `retry`, "Cancel" dismisses the indicator and runs `cancel`, if any.
  static void showNetworkErrorRetryObject(Task retry, Task cancel = {});
  static void showController(const std::shared_ptr<ViewController>& controller,
                             const std::shared_ptr<ViewController>& from);

  /// Counts at once, and is stored in the background (see `LastUsedCards`).
  static void setLastUsedCardId(std::int64_t cardId);
  /// Throws StoreException when the store cannot be read.
  static std::int64_t getLastUsedCardid();
  /// The stored card if the current session has it, else the session's first card, else none.
  /// Throws as above.
  static std::optional<CardOption> getLastUsedCard();
  /// Name of the image resource of a card brand.
  static std::string imageForCardType(const std::optional<std::string>& cardType);
  /// The last known position; an empty record, and a log line, when there is none.
  static Location getLocation();

  /// Adapts a screen that has appeared to a small device in landscape.
  static void checkOrientationHeight(ViewController& controller, bool isSecureScreen = false);
  static void styleButtonsForView(const std::shared_ptr<View>& view);
  static void styleButton(Button& button);
  static void styleAlertController(AlertController& alert);
  static void addOrlixLogoToNavigationItem(ViewController& controller);
  static Color primaryColor();
  static Color primaryDarkColor();
  static Color accentColor();
  static std::string regularFont();
  static std::string boldFont();
  static std::string lightFont();
};

}  // namespace orlix
