// SPDX-License-Identifier: Apache-2.0

// The shop's own window: use without a mouse, and the message at the end.

#include "examples/shop/window/DrawnShop.h"
#include "examples/shop/window/Finger.h"
#include "examples/shop/window/Warnings.h"
#include "orlixkit/ports/MainQueue.h"
#include "shell/FindItem.h"
#include "tests/shell/Contrast.h"
#include "tests/shell/Focus.h"
#include "tests/shop/Story.h"

namespace orlix::shop {
namespace {

class Buyer {
 public:
  explicit Buyer(std::optional<bool> darkColors = {}) : dark(darkColors) { finger.bringUpToDate(); }
  void runUntil(const std::function<bool()>& done) {
    Host::current().ports().mainQueue->runUntil(done);
    finger.bringUpToDate();
  }
  void runUntilScreen(const std::string& identifier) {
    runUntil([&] {
      const auto* top = shop.presenter().top();
      return top != nullptr && top->controller()->identifier() == identifier &&
             top->controller()->hasAppeared();
    });
  }
  /// Presses Tab until the item of this name has the focus.
  void tabTo(const std::string& name) {
    for (int step = 0; step < 30 && shell::focusIn(shop.window()) != name; ++step) {
      finger.press(Qt::Key_Tab, "\t");
    }
    ASSERT_EQ(shell::focusIn(shop.window()), name);
  }
  /// What the item of this name shows; nothing when it is not drawn.
  std::string text(const char* name) {
    const QQuickItem* item = shell::findItem(*shop.window().contentItem(), QString(name));
    return item != nullptr && item->isVisible() ? item->property("text").toString().toStdString()
                                                : "";
  }

  const std::optional<bool> dark;
  test::TemporaryFolder folder;
  Server server{true};
  ShopOptions options = [this] {
    ShopOptions made = optionsOf("", server, folder.path() / "state");
    made.darkColors = dark;
    made.messages = (folder.path() / "messages").string();
    std::ofstream(*made.messages) << "Your code is 12345\nYour code is 67890\n";
    return made;
  }();
  std::ostringstream lines;
  Warnings warnings;
  DrawnShop shop{options, lines, lines};
  Finger finger{shop.window()};
};

TEST(ShopWindow, ABuyerNeedsNoMouseAndReadsHowItEnded) {
  Buyer buyer;
  buyer.tabTo("pay0");
  buyer.finger.press(Qt::Key_Return);
  buyer.runUntilScreen("Product");
  buyer.tabTo("pinField");
  for (const int digit : {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4}) {
    buyer.finger.press(digit, QString(QChar(digit)));
  }
  buyer.finger.press(Qt::Key_Return);
  buyer.runUntil([&] { return buyer.text("outcomeTitle") != ""; });
  EXPECT_EQ(buyer.text("outcomeTitle"), "Thank you, it is paid");
  EXPECT_EQ(buyer.text("outcomeDetail"), "Reference 7000000001");
  for (int tabs = 0; tabs < 3; ++tabs) {
    EXPECT_EQ(shell::focusIn(buyer.shop.window()), "outcomeOk");
    buyer.finger.press(Qt::Key_Tab, "\t");
  }
  buyer.finger.press(Qt::Key_Return);
  buyer.finger.bringUpToDate();
  EXPECT_EQ(buyer.text("outcomeTitle"), "");

  buyer.tabTo("wallet");
  buyer.finger.press(Qt::Key_Space, " ");
  buyer.runUntilScreen("WalletManagement");
  buyer.finger.press(Qt::Key_Escape);
  buyer.runUntil([&] { return buyer.text("outcomeTitle") != ""; });
  EXPECT_EQ(buyer.text("outcomeTitle"), "Wallet closed");
  EXPECT_EQ(buyer.warnings.texts().join("\n").toStdString(), "");
}

TEST(ShopWindow, SaysWhatIsKnownOfAPaymentAndLeavesAStoppedVersionsWaitingScreen) {
  struct Case {
    std::string script, title, detail;
  };
  const std::string pay = "wait screen Product\ntype pinField 1234\ntap proceedAction\n";
  for (const Case& row : std::vector<Case>{
           {"checkout FIXED-25\nwait screen Product\ntype pinField 9999\ntap proceedAction\n"
            "wait outcome orlixError 2",
            "This could not be paid",
            "Your card's bank did not accept the PIN, and nothing was taken. Please check the PIN, "
            "or use another card."},
           {"checkout SERVER-ERROR\n" + pay +
                "wait alert \"Connection problem\"\nbutton Cancel\ntap cancelAction\nwait outcome",
            "We don't know yet whether the payment went through",
            "Please ask the shop before you pay again, and give this code.\nCode SERVER-ERROR"},
           {"checkout NEXT-REFUSED\nwait screen Product\ntap cancelAction\nwait outcome\n"
            "checkout FIXED-25\nwait alert Error\nbutton Ok\nwait idle",
            "This version can no longer be used",
            "The wallet has stopped this version of the app, and nothing was taken. Please update "
            "the app and try again."}}) {
    Buyer buyer;
    std::istringstream text(row.script);
    WholeScript script(text);
    buyer.shop.run(script);
    buyer.finger.bringUpToDate();
    EXPECT_EQ(buyer.text("outcomeTitle"), row.title);
    EXPECT_EQ(buyer.text("outcomeDetail"), row.detail);
    EXPECT_EQ(buyer.shop.presenter().top(), nullptr);
    buyer.finger.press(Qt::Key_Return);
    buyer.finger.bringUpToDate();
    buyer.tabTo("pay0");
    buyer.finger.press(Qt::Key_Return);
    buyer.runUntilScreen("Product");
  }
}

TEST(ShopWindow, CanBeReadAndShowsTheFocusInBothSchemes) {
  for (const bool dark : {false, true}) {
    SCOPED_TRACE(dark);
    Buyer buyer(dark);
    QQuickWindow& window = buyer.shop.window();
    buyer.finger.bringUpToDate();
    EXPECT_EQ(shell::textsTooFaint(window, *window.contentItem()), "");
    for (const char* const name : {"systemSwitch", "pay0", "register", "wallet"}) {
      buyer.tabTo(name);
      QQuickItem& focus = *window.activeFocusItem();
      const QImage with = window.grabWindow();
      focus.setFocus(false);
      EXPECT_GE(shell::clearChanges(with, window.grabWindow()), 2 * focus.width()) << name;
      focus.forceActiveFocus(Qt::TabFocusReason);
    }
    std::istringstream text(
        "checkout FIXED-25\nwait screen Product\ntap cancelAction\nwait outcome");
    WholeScript script(text);
    buyer.shop.run(script);
    EXPECT_EQ(shell::textsTooFaint(window, *window.contentItem()), "");
  }
}

TEST(ShopWindow, ShowsTheNewestMessage) {
  Buyer buyer;
  const auto shown = [&] {
    return shell::findItem(*buyer.shop.window().contentItem(), [](const QQuickItem& item) {
             return item.property("text").toString() == "Your code is 67890";
           }) != nullptr;
  };
  for (int round = 0; round < 100 && !shown(); ++round) {
    QCoreApplication::processEvents();
  }
  EXPECT_TRUE(shown());
}

}  // namespace
}  // namespace orlix::shop
