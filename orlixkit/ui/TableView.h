// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orlixkit/ui/View.h"

namespace orlix {

/// One row as it is shown.
struct TableCell {
  std::string identifier;  ///< the cell's name in the storyboard
  std::string text;
  std::string imageName;  ///< empty for none
  bool checkmark = false;
  std::shared_ptr<Button> button;  ///< a button inside the row, none for most
};

class TableViewDataSource {
 public:
  virtual ~TableViewDataSource() = default;
  virtual std::size_t numberOfRows() = 0;
  /// `row` is below `numberOfRows()`.
  virtual TableCell cellForRow(std::size_t row) = 0;
  virtual void didSelectRow(std::size_t row) = 0;
};

/// A list of one section. Rows are asked for whenever they are shown.
class TableView : public View {
 public:
  std::string kind() const override { return "table"; }
  std::string shownText() const override;

  /// Not owned; usually the screen that holds the table.
  void setDataSource(TableViewDataSource* source) { source_ = source; }
  bool separators() const { return separators_; }
  void setSeparators(bool separators) { set(separators_, separators); }
  bool editing() const { return editing_; }
  void setEditing(bool editing) { set(editing_, editing); }

  std::size_t rowCount() const;
  /// Throws std::out_of_range for a row that is not there.
  TableCell cell(std::size_t row) const;
  /// A user's tap on a row. Throws std::out_of_range for a row that is not there.
  void select(std::size_t row);
  void reloadData() { changed(); }

 private:
  TableViewDataSource* source_ = nullptr;
  bool separators_ = true;
  bool editing_ = false;
};

}  // namespace orlix
