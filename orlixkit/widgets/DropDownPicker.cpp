// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/widgets/DropDownPicker.h"

#include <algorithm>
#include <stdexcept>

namespace orlix {

std::shared_ptr<DropDownPicker> DropDownPicker::attach(const std::shared_ptr<TextField>& field,
                                                       std::vector<std::string> entries) {
  if (const auto former = of(*field)) {
    former->detach();
  }
  auto picker = std::make_shared<DropDownPicker>(std::move(entries));
  picker->field_ = field;
  field->addSubview(picker);
  field->setDelegate(picker.get());
  return picker;
}

std::shared_ptr<DropDownPicker> DropDownPicker::of(const View& field) {
  for (const auto& view : field.subviews()) {
    if (auto picker = std::dynamic_pointer_cast<DropDownPicker>(view)) {
      return picker;
    }
  }
  return nullptr;
}

DropDownPicker::~DropDownPicker() {
  if (const auto field = field_.lock()) {
    field->setDelegate(nullptr);
  }
}

void DropDownPicker::detach() {
  if (const auto field = field_.lock()) {
    field->setDelegate(nullptr);
  }
  field_.reset();
  removeFromSuperview();
}

std::string DropDownPicker::shownText() const {
  const auto field = field_.lock();
  return field ? field->text() : std::string();
}

void DropDownPicker::pick(std::size_t index) {
  if (index >= entries_.size()) {
    throw std::out_of_range("DropDownPicker: no entry " + std::to_string(index));
  }
  if (const auto field = field_.lock()) {
    field->setText(entries_[index]);
    field->endEditing();
  }
}

void DropDownPicker::pick(std::string_view entry) {
  const auto found = std::find(entries_.begin(), entries_.end(), entry);
  if (found == entries_.end()) {
    throw std::out_of_range("DropDownPicker: no entry \"" + std::string(entry) + "\"");
  }
  pick(static_cast<std::size_t>(found - entries_.begin()));
}

}  // namespace orlix
