// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAbstractListModel>
#include <memory>
#include <vector>

#include "orlixkit/ui/TableView.h"

namespace orlix::shell {

/// Model of a table's rows as of its last change notification. Unchanged rows keep their items, so
/// that the list does not jump. Main thread.
class TableRows : public QAbstractListModel {
  Q_OBJECT

 public:
  enum Role {
    kText = Qt::UserRole,
    kImageSource,
    kCheckmark,
    kHasButton,
    kButtonImage,
  };

  explicit TableRows(std::shared_ptr<TableView> table);
  void detach() { table_.reset(); }
  void refresh();
  /// Index of the first row with a checkmark; -1 for none.
  int checkedRow() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

 private:
  std::shared_ptr<TableView> table_;
  std::vector<TableCell> cells_;
};

}  // namespace orlix::shell
