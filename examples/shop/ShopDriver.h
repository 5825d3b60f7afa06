// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>

#include "examples/shop/Script.h"

namespace orlix::shop {

/// Delivers a script's taps and keys to the screens. One implementation calls what a touch would
/// call; the one for the drawn shell sends real events to the drawn items.
///
/// Main thread only. Nothing is moving on the screen when an operation is called. An operation that
/// a user could not do throws ScriptError with the reason. Exceptions of an action are handled like
/// those of main-queue tasks.
class ShopDriver {
 public:
  virtual ~ShopDriver() = default;

  /// Touches the field and types the text, one character a key.
  virtual void type(const std::string& outlet, const std::string& text) = 0;
  /// Touches the field and presses the delete key so many times.
  virtual void erase(const std::string& outlet, std::size_t count) = 0;
  /// Puts the text into the field without asking the field's delegate.
  virtual void set(const std::string& outlet, const std::string& text) = 0;
  /// A button, a view that listens to taps, a field, or an action by its name.
  virtual void tap(const std::string& name) = 0;
  virtual void selectRow(const std::string& table, const RowChoice& row) = 0;
  virtual void pressRowButton(const std::string& table, std::size_t row) = 0;
  virtual void pressAlertButton(const std::string& title) = 0;
  /// Chooses an entry of the drop-down that belongs to the field.
  virtual void pick(const std::string& outlet, const std::string& text) = 0;

  virtual void pageType(const std::string& selector, const std::string& text) = 0;
  virtual void pageClick(const std::string& selector) = 0;
  /// Returns when the shown page has an element that the selector names.
  virtual void pageWait(const std::string& selector) = 0;
  /// Saves a picture of the window under this name.
  virtual void snapshot(const std::string& name) = 0;

  /// True while an animation runs or something drawn is not up to date.
  virtual bool isBusy() const = 0;
};

}  // namespace orlix::shop
