// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "orlixkit/protocol/OMVello.h"

namespace orlix {

/// Gives the session driver access to the utilities and the current checkout.
class OXVelloEnvironment : public OMVelloEnvironment {
 public:
  std::string velloUrl() override;
  std::string storageKeyForItem(const std::string& item) override;
  std::string deviceModel() override;
  std::shared_ptr<const Flow> currentFlow() override;
  void showAlertWithTitle(const std::string& title,
                          const std::optional<std::string>& message) override;
  void showNetworkErrorRetry(Task retry, Task cancel) override;
  void showTemsAndConditionChangeScreen() override;
  void returnUserDidCancel() override;
};

}  // namespace orlix
