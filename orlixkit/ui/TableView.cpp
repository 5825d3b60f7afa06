// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/TableView.h"

#include <stdexcept>

namespace orlix {

std::string TableView::shownText() const {
  std::string lines;
  for (std::size_t row = 0; row < rowCount(); ++row) {
    lines += (row == 0 ? "" : "\n") + cell(row).text;
  }
  return lines;
}

std::size_t TableView::rowCount() const { return source_ == nullptr ? 0 : source_->numberOfRows(); }

TableCell TableView::cell(std::size_t row) const {
  if (row >= rowCount()) {
    throw std::out_of_range("TableView: no row " + std::to_string(row));
  }
  return source_->cellForRow(row);
}

void TableView::select(std::size_t row) {
  if (row >= rowCount()) {
    throw std::out_of_range("TableView: no row " + std::to_string(row));
  }
  source_->didSelectRow(row);
}

}  // namespace orlix
