#pragma once

#include <QGeoPositionInfoSource>
#include <QObject>
#include <memory>

#include "orlixkit/platform/LocationManager.h"

namespace orlix::shell {

/// The position source of the platform that Qt runs on. Without one, and with one that refuses,
/// each start brings one error; the delegate hears nothing while it is stopped. A start while the
/// source runs changes nothing. Main thread.
class QtLocationManager : public QObject, public LocationManager {
 public:
  /// `source` may be none.
  explicit QtLocationManager(std::unique_ptr<QGeoPositionInfoSource> source);
  /// On the platform's default source.
  QtLocationManager();

  void start(const LocationOptions& options, LocationManagerDelegate& delegate) override;
  void stop() override;

 private:
  void updated(const QGeoPositionInfo& info);
  void failed(QGeoPositionInfoSource::Error error);
  /// Tells it later: whoever starts the updates is not called back before that has returned.
  void failLater(const std::string& description);

  std::unique_ptr<QGeoPositionInfoSource> source_;
  double distanceFilter_ = 0;
  bool running_ = false;
  std::shared_ptr<LocationManagerDelegate*> updates_;  ///< from start to stop
  QGeoCoordinate last_;                                ///< the last fix that was told
};

}  // namespace orlix::shell
