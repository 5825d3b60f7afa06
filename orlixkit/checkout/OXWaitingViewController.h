// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "orlixkit/ui/ViewController.h"

namespace orlix {

/// The screen shown while the session is opened.
class OXWaitingViewController : public ViewController {
 public:
  void viewDidLoad() override;
  void viewDidAppear() override;
  bool shouldAutorotate() const override { return false; }

 private:
  std::shared_ptr<ActivityIndicator> activityIndicator_ =
      outlet<ActivityIndicator>("activityIndicator");
};

}  // namespace orlix
