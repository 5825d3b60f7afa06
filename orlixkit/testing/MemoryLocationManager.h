// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "orlixkit/ports/LocationManager.h"

namespace orlix {

/// A position source that reports the fixes and errors given by a test. Main thread.
class MemoryLocationManager : public LocationManager {
 public:
  /// Dropped while updates are off.
  void sendFixes(const std::vector<LocationFix>& fixes);
  void sendError(const std::string& description);

  bool updating() const { return delegate_ != nullptr; }
  /// Options of the last start.
  const LocationOptions& options() const { return options_; }

  void start(const LocationOptions& options, LocationManagerDelegate& delegate) override;
  void stop() override { delegate_ = nullptr; }

 private:
  LocationOptions options_;
  LocationManagerDelegate* delegate_ = nullptr;  ///< while updates are on
};

}  // namespace orlix
