// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/ui/TableView.h"

namespace orlix {

/// A screen that consists of a table.
class OrlixTableViewController : public OrlixViewController, public TableViewDataSource {
 public:
  OrlixTableViewController() : tableView_(outlet<TableView>("tableView")) {
    tableView_->setDataSource(this);
  }
  ~OrlixTableViewController() override { tableView_->setDataSource(nullptr); }
  OrlixTableViewController(const OrlixTableViewController&) = delete;
  OrlixTableViewController& operator=(const OrlixTableViewController&) = delete;

 private:
  std::shared_ptr<TableView> tableView_;
};

}  // namespace orlix
