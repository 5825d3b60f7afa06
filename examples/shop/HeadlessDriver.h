// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "examples/shop/ShopDriver.h"
#include "orlixkit/ports/Bytes.h"

namespace orlix::shop {

/// Drives the screens without a display: calls what a touch would call, and refuses what a touch
/// could not reach.
class HeadlessDriver : public ShopDriver {
 public:
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
  bool isBusy() const override { return false; }
};

}  // namespace orlix::shop
