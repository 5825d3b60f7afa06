// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "examples/shop/ShopDriver.h"
#include "examples/shop/window/Finger.h"
#include "shell/PageInput.h"
#include "shell/ScreenPresenter.h"

namespace orlix::shop {

/// A script's input to the drawn shell: touches on the drawn items and key presses. It finds an
/// outlet's item by the outlet's name, and refuses what a user could not touch.
class QtDriver : public ShopDriver {
 public:
  /// `presenter` must outlive the driver; `snapshots` is where pictures go, made when it is
  /// missing.
  QtDriver(shell::ScreenPresenter& presenter, std::shared_ptr<MainQueue> mainQueue,
           std::optional<std::string> snapshots);

  void type(const std::string& outlet, const std::string& text) override;
  void erase(const std::string& outlet, std::size_t count) override;
  void set(const std::string& outlet, const std::string& text) override;
  void tap(const std::string& name) override;
  void selectRow(const std::string& table, const RowChoice& row) override;
  void pressRowButton(const std::string& table, std::size_t row) override;
  void pressAlertButton(const std::string& title) override;
  void pick(const std::string& outlet, const std::string& text) override;
  void pageType(const std::string& selector, const std::string& text) override;
  void pageClick(const std::string& selector) override;
  void pageWait(const std::string& selector) override;
  void snapshot(const std::string& name) override;
  bool isBusy() const override { return presenter_.isAnimating(); }

 private:
  /// The drawn item of this name on the screen or alert on top. Throws ScriptError without one.
  QQuickItem& item(const std::string& name) const;
  QQuickItem* find(const std::string& name) const;
  /// Scrolls it into sight, then touches it.
  void touch(QQuickItem& item, const std::string& name);
  /// Touches the field and brings the cursor to its end.
  void beginTyping(const std::string& outlet);
  QQuickItem& row(const std::string& table, std::size_t row) const;

  shell::ScreenPresenter& presenter_;
  Finger finger_;
  shell::PageInput page_;
  std::optional<std::string> snapshots_;
};

}  // namespace orlix::shop
