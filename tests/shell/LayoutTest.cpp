// SPDX-License-Identifier: Apache-2.0

// What every screen must be like, upright and in landscape, with the longest texts in use.

#include <QQmlEngine>
#include <QQmlExpression>

#include <gtest/gtest.h>

#include "orlixkit/checkout/OXUtil.h"
#include "tests/shell/DrawnPhone.h"

namespace orlix::shell {
namespace {

QRectF inScene(const QQuickItem& item) {
  return item.mapRectToScene({0, 0, item.width(), item.height()});
}

/// All that can be seen of the item, itself included.
std::vector<QQuickItem*> seen(QQuickItem& root) {
  std::vector<QQuickItem*> found;
  findItem(root, [&found](const QQuickItem& item) {
    if (item.isVisible() && item.width() > 0 && item.height() > 0) {
      found.push_back(const_cast<QQuickItem*>(&item));
    }
    return false;
  });
  return found;
}

/// As a host with a keyboard of its own does; -1 for none.
void raiseKeyboard(QQuickItem& content, int height) {
  const QString script = "OxTheme.keyboardHeight = " + QString::number(height);
  QQmlExpression expression(qmlContext(&content), &content, script);
  expression.evaluate();
  ASSERT_FALSE(expression.hasError()) << expression.error().toString().toStdString();
}

/// A screen of the library, drawn, and what is wrong with it.
class Look {
 public:
  Look(DrawnPhone& phone, const ViewController& screen)
      : phone_(phone), screen_(screen), items_(seen(*phone.content())) {}

  std::string remarks() {
    texts();
    outlets();
    fields();
    return remarks_;
  }

 private:
  void remark(const std::string& text) { remarks_ += screen_.identifier() + ": " + text + "\n"; }

  void texts() {
    for (const QQuickItem* item : items_) {
      if (item->property("truncated").toBool()) {
        remark("cut off: " + item->property("text").toString().toStdString());
      }
    }
  }

  /// Each in the window, and none on another. Rows of a list are not outlets.
  void outlets() {
    std::vector<const QQuickItem*> drawn;
    for (const QQuickItem* item : items_) {
      const auto view = screen_.outletNamed(item->objectName().toStdString());
      if (view && (view->subviews().empty() || view->onTap)) {
        drawn.push_back(item);
      }
    }
    const QRectF window({0, 0}, QSizeF(phone_.window.size()));
    for (const QQuickItem* one : drawn) {
      if (!window.contains(inScene(*one))) {
        remark(nameOf(one) + " is not whole in the window");
      }
      for (const QQuickItem* other : drawn) {
        const bool apart = one == other || one->isAncestorOf(other) || other->isAncestorOf(one);
        if (!apart && inScene(*one).intersects(inScene(*other))) {
          remark(nameOf(one) + " lies on " + nameOf(other));
        }
      }
    }
  }

  /// The field in focus is above an on-screen keyboard of any height.
  void fields() {
    QQuickItem& content = *phone_.content();
    for (QQuickItem* item : items_) {
      if (!item->inherits("QQuickTextInput")) {
        continue;
      }
      for (int keyboard = 20; keyboard < phone_.window.height() - 60; keyboard += 20) {
        raiseKeyboard(content, keyboard);
        item->forceActiveFocus();
        phone_.finger.bringUpToDate();
        // Where it comes to stand, once the sheet has been lifted.
        const double top = item->mapToItem(&content, QPointF(0, 0)).y() + content.y() -
                           content.property("lift").toDouble();
        if (top < 0 || top + item->height() > phone_.window.height() - keyboard) {
          remark(nameOf(item) + " is covered by a keyboard of " + std::to_string(keyboard));
        }
        raiseKeyboard(content, -1);
        content.forceActiveFocus();
      }
    }
  }

  DrawnPhone& phone_;
  const ViewController& screen_;
  const std::vector<QQuickItem*> items_;
  std::string remarks_;
};

TEST(Layout, EveryScreenIsWholeAndItsFieldsStandAboveAKeyboardOfAnyHeight) {
  for (const QSize window : {QSize(375, 667), QSize(667, 320)}) {
    DrawnPhone drawn(window);
    ScriptedWallet& wallet = drawn.phone.wallet;
    wallet.codeInfo =
        R"({"code":"C-1","merchantName":"Household Goods and Gardening Supplies","currency":"ZAR",)"
        R"("amountString":"","amount":"1234567890.00"})";
    wallet.cards = {cardJson(5, "4242", R"(,"method":"AMT","needCvv":true)")};
    drawn.phone.showPaymentScreen();
    drawn.settle();
    ASSERT_NE(drawn.content(), nullptr);
    EXPECT_EQ(Look(drawn, *drawn.phone.host.topController()).remarks(), "") << window.width();
    for (const char* const identifier :
         {"Activation", "CountryCode", "ActivationCode", "MsisdnRelink", "AddCard",
          "CardValidation", "Cards", "WalletManagement", "TermsAndConditionChange"}) {
      drawn.phone.host.root()->dismiss(false);
      const auto made = drawn.phone.host.application().storyboard().make(identifier);
      drawn.phone.host.root()->present(made, false);
      const auto child = made->visibleChild();
      const auto& screen = child ? child : made;
      for (const char* const group : {"cardAccountGroupView", "dobGroupView"}) {
        if (const auto view = screen->outletNamed(group)) {
          view->setHidden(false);
          view->setSubviewsHidden(false);
        }
      }
      drawn.settle();
      ASSERT_NE(drawn.content(), nullptr) << identifier;
      EXPECT_EQ(Look(drawn, *screen).remarks(), "") << window.width() << " wide";
    }
    OXUtil::showAlertWithTitle("Warning", std::string(2000, 'x'));
    drawn.settle();
    const QRectF whole({0, 0}, QSizeF(window));
    EXPECT_TRUE(whole.contains(inScene(drawn.item("alert.button0")))) << window.width();
  }
}

}  // namespace
}  // namespace orlix::shell
