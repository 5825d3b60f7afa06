// SPDX-License-Identifier: Apache-2.0

#include "shell/TableRows.h"

#include <algorithm>

#include "shell/OutletAdapter.h"

namespace orlix::shell {

TableRows::TableRows(std::shared_ptr<TableView> table) : table_(std::move(table)) { refresh(); }

void TableRows::refresh() {
  if (!table_) {
    return;
  }
  std::vector<TableCell> cells;
  for (std::size_t row = 0; row < table_->rowCount(); ++row) {
    cells.push_back(table_->cell(row));
  }
  const int before = static_cast<int>(cells_.size());
  const int now = static_cast<int>(cells.size());
  if (now > before) {
    beginInsertRows({}, before, now - 1);
    cells_ = std::move(cells);
    endInsertRows();
  } else if (now < before) {
    beginRemoveRows({}, now, before - 1);
    cells_ = std::move(cells);
    endRemoveRows();
  } else {
    cells_ = std::move(cells);
  }
  if (now > 0) {
    Q_EMIT dataChanged(index(0), index(now - 1));
  }
}

int TableRows::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(cells_.size());
}

QVariant TableRows::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  if (!index.isValid() || row >= cells_.size()) {
    return {};
  }
  const TableCell& cell = cells_[row];
  switch (role) {
    case kText:
      return QString::fromStdString(cell.text);
    case kImageSource:
      return imageAddress(cell.imageName);
    case kCheckmark:
      return cell.checkmark;
    case kHasButton:
      return cell.button != nullptr;
    case kButtonImage:
      return imageAddress(cell.button ? cell.button->imageName() : "");
    default:
      return {};
  }
}

QHash<int, QByteArray> TableRows::roleNames() const {
  return {{kText, "text"},
          {kImageSource, "imageSource"},
          {kCheckmark, "checkmark"},
          {kHasButton, "hasButton"},
          {kButtonImage, "buttonImage"}};
}

int TableRows::checkedRow() const {
  const auto found = std::find_if(cells_.begin(), cells_.end(),
                                  [](const TableCell& cell) { return cell.checkmark; });
  return found == cells_.end() ? -1 : static_cast<int>(found - cells_.begin());
}

}  // namespace orlix::shell
