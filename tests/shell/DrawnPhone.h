// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAccessible>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "examples/shop/window/Finger.h"
#include "examples/shop/window/Warnings.h"
#include "orlixkit/resources/CompiledBundle.h"
#include "shell/FindItem.h"
#include "shell/ScreenPresenter.h"
#include "tests/phone/Phone.h"
#include "tests/shell/Focus.h"

namespace orlix::shell {

/// Every screen of the storyboard.
inline constexpr const char* kScreens[] = {
    "Waiting",          "Product",           "Activation",
    "CountryCode",      "ActivationCode",    "MsisdnRelink",
    "AddCard",          "CardValidation",    "Cards",
    "SecureCode",       "3DAuthSecureCode",  "TermsAndConditionChange",
    "WalletManagement", "TermsAndConditions"};

/// The phone in virtual time, its screens drawn in a window without a display. The host's own
/// window is white, with one field of its own.
class DrawnPhone {
 public:
  explicit DrawnPhone(QSize size = {375, 667},
                      DrawingTimes times = {.fade = {}, .appear = {}, .stay = {}}) {
    prepareEngine(engine_, std::make_shared<CompiledBundle>());
    window.resize(size);
    QQmlComponent host(&engine_);
    host.setData("import QtQuick\nTextInput { width: 80; height: 20; activeFocusOnTab: true }",
                 QUrl());
    hostField.reset(qobject_cast<QQuickItem*>(host.create()));
    hostField->setParentItem(window.contentItem());
    presenter_ = std::make_unique<ScreenPresenter>(engine_, window, times);
    phone.host.application().setObserver(presenter_.get());
    window.show();
    window.requestActivate();
    hostField->forceActiveFocus();
    settle();
  }
  ~DrawnPhone() {
    stopDrawing();
    EXPECT_EQ(warnings_.texts().join("\n").toStdString(), "");
  }
  DrawnPhone(const DrawnPhone&) = delete;
  DrawnPhone& operator=(const DrawnPhone&) = delete;

  void stopDrawing() {
    phone.host.application().setObserver(nullptr);
    presenter_.reset();
  }
  /// All that the toolkit and the library have to do.
  void settle() {
    for (int round = 0; round < 3; ++round) {
      QCoreApplication::processEvents();
      phone.host.runUntilIdle();
    }
    finger.bringUpToDate();
  }
  /// A session with two cards, the first of which asks for an amount, the CVV and the PIN.
  void startSession() {
    for (const char* path : {"/card/scUrl", "/card/get3dsValidateUrl"}) {
      phone.wallet.always(path, ServerReply().silence());
    }
    phone.wallet.codeInfo =
        R"({"code":"C-1","merchantName":"Household Goods and Gardening Supplies","currency":"ZAR",)"
        R"("amountString":"","amount":"1234567890.00"})";
    phone.wallet.cards = {cardJson(5, "4242", R"(,"method":"AMT","needCvv":true)"),
                          cardJson(6, "1111")};
    phone.showPaymentScreen();
    settle();
  }
  /// Presents this screen instead of what is presented, with all of its groups shown.
  std::shared_ptr<ViewController> open(const std::string& identifier) {
    phone.host.root()->dismiss(false);
    phone.indicator().dismiss();
    const auto made = phone.host.application().storyboard().make(identifier);
    phone.host.root()->present(made, false);
    const auto child = made->visibleChild();
    const auto screen = child ? child : made;
    for (const char* const group : {"cardAccountGroupView", "dobGroupView"}) {
      if (const auto view = screen->outletNamed(group)) {
        view->setHidden(false);
        view->setSubviewsHidden(false);
      }
    }
    settle();
    phone.indicator().dismiss();  // a page is still loading
    settle();
    return screen;
  }
  QQuickItem* content() const { return presenter_->top() ? presenter_->top()->content() : nullptr; }
  /// Identifier of the screen that is drawn on top.
  std::string screen() const { return presenter_->top()->controller()->identifier(); }
  ScreenPresenter& presenter() { return *presenter_; }
  QQuickItem& item(const char* name) const { return *findItem(*content(), QString(name)); }
  void touch(const char* name) {
    finger.touch(item(name), name);
    settle();
  }
  void key(int code, const char* text = "") {
    finger.press(code, text);
    settle();
  }
  void keys(const std::string& digits) {
    for (const char digit : digits) {
      key(digit, std::string(1, digit).c_str());
    }
  }
  /// Takes the keyboard away from whatever has it on the screen.
  void dropFocus() {
    for (QQuickItem* item = window.activeFocusItem(); item != nullptr && item != content();
         item = item->parentItem()) {
      item->setFocus(false);
    }
    settle();
  }
  std::string focus() const { return focusIn(window); }
  /// The plate of the progress indicator and the mask that holds touches back, as far as they are
  /// to be seen: from 0 to 1.
  double plate() const { return drawnOpacity("progressIndicator"); }
  double mask() const { return drawnOpacity("touchMask"); }

  test::Phone phone;

 private:
  double drawnOpacity(const char* name) const {
    const QQuickItem* const found = findItem(*window.contentItem(), QString(name));
    return found != nullptr && found->isVisible() ? found->opacity() : 0;
  }

  shop::Warnings warnings_;
  QQmlEngine engine_;

 public:
  QQuickWindow window;
  shop::Finger finger{window};
  std::unique_ptr<QQuickItem> hostField;

 private:
  std::unique_ptr<ScreenPresenter> presenter_;
};

}  // namespace orlix::shell
