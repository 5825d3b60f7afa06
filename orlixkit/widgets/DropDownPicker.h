#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/platform/ui/TextField.h"

namespace orlix {

/// The list that drops down from a text field. The chosen entry's text becomes the field's text;
/// the field itself takes no keys.
///
/// It is a subview of its field, which holds it; `of` finds it there for whoever draws the field or
/// chooses on the user's behalf.
class DropDownPicker : public View, public TextFieldDelegate {
 public:
  /// Puts a picker with these entries on the field, in place of the one that it may have. The
  /// field's text stays.
  static std::shared_ptr<DropDownPicker> attach(const std::shared_ptr<TextField>& field,
                                                std::vector<std::string> entries);
  /// The picker of a field; none when it has none.
  static std::shared_ptr<DropDownPicker> of(const View& field);

  explicit DropDownPicker(std::vector<std::string> entries) : entries_(std::move(entries)) {}
  ~DropDownPicker() override;
  DropDownPicker(const DropDownPicker&) = delete;
  DropDownPicker& operator=(const DropDownPicker&) = delete;

  std::string kind() const override { return "picker"; }
  /// What the field shows.
  std::string shownText() const override;
  const std::vector<std::string>& entries() const { return entries_; }

  /// A user's choice; ends the field's editing. Throws std::out_of_range for an entry that is not
  /// there.
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
