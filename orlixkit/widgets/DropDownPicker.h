// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/ui/TextField.h"

namespace orlix {

/// A list that drops down from a text field. The chosen entry's text becomes the field's text; the
/// field itself accepts no keys.
///
/// It is a subview of its field, which owns it; `of` finds it, for code that draws the field or
/// chooses an entry.
class DropDownPicker : public View, public TextFieldDelegate {
 public:
  /// Adds a picker with these entries to the field, replacing an earlier one. The field's text is
  /// unchanged.
  static std::shared_ptr<DropDownPicker> attach(const std::shared_ptr<TextField>& field,
                                                std::vector<std::string> entries);
  /// The picker of a field; null when it has none.
  static std::shared_ptr<DropDownPicker> of(const View& field);

  explicit DropDownPicker(std::vector<std::string> entries) : entries_(std::move(entries)) {}
  ~DropDownPicker() override;
  DropDownPicker(const DropDownPicker&) = delete;
  DropDownPicker& operator=(const DropDownPicker&) = delete;

  std::string kind() const override { return "picker"; }
  /// The field's text.
  std::string shownText() const override;
  const std::vector<std::string>& entries() const { return entries_; }

  /// Chooses an entry, as a user does; ends the field's editing. Throws std::out_of_range for an
  /// invalid index.
  void pick(std::size_t index);
  void pick(std::string_view entry);

  bool textFieldShouldChangeCharacters(TextField&, TextRange, const std::string&) override {
    return false;
  }

 private:
  void detach();

  std::vector<std::string> entries_;
  std::weak_ptr<TextField> field_;
};

}  // namespace orlix
