// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "LineInput.h"
#include "orlixkit/ui/AlertController.h"
#include "orlixkit/ui/Application.h"
#include "orlixkit/ui/TableView.h"
#include "orlixkit/ui/TextField.h"

/// Shows the library's top screen as text with a numbered list of what the user can do there: fill
/// a field, choose a row, press a button. It knows no screen by name, only kinds of outlets. Main
/// thread.
class ScreenMenu {
 public:
  ScreenMenu(orlix::Application& application, LineInput& input)
      : application_(application), input_(input) {}

  /// Whether there is something to choose from, and nothing is moving or being waited for.
  bool isReady();
  /// Shows the screen, asks for a number and does it. Returns without an answer when the screen
  /// changes before there is one. False at the end of the input.
  bool ask();

 private:
  struct Choice {
    std::string text;
    std::function<bool()> take;  ///< false at the end of the input
  };

  void read();
  void readAlert(const std::shared_ptr<orlix::AlertController>& alert);
  void readOutlet(const std::string& name, const std::shared_ptr<orlix::View>& view);
  void readField(const std::string& label, const std::shared_ptr<orlix::TextField>& field);
  void readTable(const std::shared_ptr<orlix::TableView>& table);
  void offerTap(const std::string& name, const std::string& text);
  bool fill(const std::string& label, orlix::TextField& field) const;

  std::string shown() const;

  orlix::Application& application_;
  LineInput& input_;
  std::shared_ptr<orlix::ViewController> screen_;
  std::string heading_;
  std::vector<std::string> texts_;
  std::vector<Choice> choices_;
};
