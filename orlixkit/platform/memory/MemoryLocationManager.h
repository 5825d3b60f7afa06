#pragma once

#include <string>
#include <vector>

#include "orlixkit/platform/LocationManager.h"

namespace orlix {

/// A position source that knows what a test tells it, while updates are on. Main thread.
class MemoryLocationManager : public LocationManager {
 public:
  /// Nobody hears of it while updates are off.
  void sendFixes(const std::vector<LocationFix>& fixes);
  void sendError(const std::string& description);

  bool updating() const { return delegate_ != nullptr; }
  /// Those of the last start.
  const LocationOptions& options() const { return options_; }

  void start(const LocationOptions& options, LocationManagerDelegate& delegate) override;
  void stop() override { delegate_ = nullptr; }

 private:
  LocationOptions options_;
  LocationManagerDelegate* delegate_ = nullptr;  ///< while updates are on
};

}  // namespace orlix
