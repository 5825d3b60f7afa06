// SPDX-License-Identifier: Apache-2.0

#include "shell/PickerAdapter.h"

#include <algorithm>

#include "orlixkit/widgets/DropDownPicker.h"

namespace orlix::shell {

PickerAdapter::PickerAdapter(std::shared_ptr<TextField> field,
                             std::function<void(const Task&)> touch)
    : field_(std::move(field)), touch_(std::move(touch)) {}

QStringList PickerAdapter::entries() const {
  QStringList shown;
  if (const auto picker = field_ ? DropDownPicker::of(*field_) : nullptr) {
    for (const std::string& entry : picker->entries()) {
      shown.append(QString::fromStdString(entry));
    }
  }
  return shown;
}

int PickerAdapter::current() const {
  return field_ ? static_cast<int>(entries().indexOf(QString::fromStdString(field_->text()))) : -1;
}

void PickerAdapter::choose(int index) {
  touch_([field = field_, index] {
    if (const auto picker = field ? DropDownPicker::of(*field) : nullptr; picker && index >= 0) {
      picker->pick(static_cast<std::size_t>(index));
    }
  });
}

void PickerAdapter::toggle() {
  touch_([field = field_] {
    if (field && field->editing()) {
      field->endEditing();
    } else if (field) {
      field->beginEditing();
    }
  });
}

}  // namespace orlix::shell
