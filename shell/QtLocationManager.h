// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QGeoPositionInfoSource>
#include <QObject>
#include <memory>

#include "orlixkit/ports/LocationManager.h"

namespace orlix::shell {

/// The position source provided by Qt. Without one, or when it refuses, each start reports one
/// error. No callback is made while it is stopped. A start while it runs has no effect. Main
/// thread.
class QtLocationManager : public QObject, public LocationManager {
 public:
  /// `source` may be null.
  explicit QtLocationManager(std::unique_ptr<QGeoPositionInfoSource> source);
  /// Uses the platform's default source.
  QtLocationManager();

  void start(const LocationOptions& options, LocationManagerDelegate& delegate) override;
  void stop() override;

 private:
  void updated(const QGeoPositionInfo& info);
  void failed(QGeoPositionInfoSource::Error error);
  /// Reports the error asynchronously: `start` makes no callback before it returns.
  void failLater(const std::string& description);

  std::unique_ptr<QGeoPositionInfoSource> source_;
  double distanceFilter_ = 0;
  bool running_ = false;
  std::shared_ptr<LocationManagerDelegate*> updates_;  ///< from start to stop
  QGeoCoordinate last_;                                ///< the last reported fix
};

}  // namespace orlix::shell
