// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ui/TextField.h"

namespace orlix::shell {

/// Exposes the drop-down of a field to QML: open while the field is being edited. Main thread.
class PickerAdapter : public QObject {
  Q_OBJECT
  Q_PROPERTY(QStringList entries READ entries NOTIFY changed)
  Q_PROPERTY(int current READ current NOTIFY changed)
  Q_PROPERTY(bool open READ open NOTIFY changed)

 public:
  /// `touch` runs a user's action if a touch has an effect now.
  PickerAdapter(std::shared_ptr<TextField> field, std::function<void(const Task&)> touch);
  void detach() { field_.reset(); }

  QStringList entries() const;
  /// Index of the entry shown in the field; -1 for none.
  int current() const;
  bool open() const { return field_ && field_->editing(); }

  Q_INVOKABLE void choose(int index);
  Q_INVOKABLE void toggle();

 Q_SIGNALS:
  void changed();

 private:
  std::shared_ptr<TextField> field_;
  std::function<void(const Task&)> touch_;
};

}  // namespace orlix::shell
