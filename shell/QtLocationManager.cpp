// SPDX-License-Identifier: Apache-2.0

#include "shell/QtLocationManager.h"

#include <QMetaObject>
#include <chrono>
#include <utility>

namespace orlix::shell {

namespace {

/// Above this accuracy a source may save power by using masts or wireless networks.
constexpr double kCoarseMetres = 500;

std::string describe(QGeoPositionInfoSource::Error error) {
  switch (error) {
    case QGeoPositionInfoSource::AccessError:
      return "access to the position is refused";
    case QGeoPositionInfoSource::ClosedError:
      return "the position source has closed";
    case QGeoPositionInfoSource::UpdateTimeoutError:
      return "no position was found in time";
    default:
      return "the position source failed";
  }
}

LocationFix fixFrom(const QGeoPositionInfo& info) {
  LocationFix fix;
  fix.latitude = info.coordinate().latitude();
  fix.longitude = info.coordinate().longitude();
  // A negative accuracy marks a fix as invalid, so do not use it for an unknown accuracy.
  if (info.hasAttribute(QGeoPositionInfo::HorizontalAccuracy)) {
    fix.horizontalAccuracy = info.attribute(QGeoPositionInfo::HorizontalAccuracy);
  }
  fix.timestamp = CalendarTime(std::chrono::duration_cast<CalendarTime::duration>(
      std::chrono::milliseconds(info.timestamp().toMSecsSinceEpoch())));
  return fix;
}

}  // namespace

QtLocationManager::QtLocationManager()
    : QtLocationManager(std::unique_ptr<QGeoPositionInfoSource>(
          QGeoPositionInfoSource::createDefaultSource(nullptr))) {}

QtLocationManager::QtLocationManager(std::unique_ptr<QGeoPositionInfoSource> source)
    : source_(std::move(source)) {
  if (source_) {
    connect(source_.get(), &QGeoPositionInfoSource::positionUpdated, this,
            &QtLocationManager::updated);
    connect(source_.get(), &QGeoPositionInfoSource::errorOccurred, this,
            &QtLocationManager::failed);
  }
}

void QtLocationManager::start(const LocationOptions& options, LocationManagerDelegate& delegate) {
  if (running_) {
    return;  // some sources report a second start as an error
  }
  updates_ = std::make_shared<LocationManagerDelegate*>(&delegate);
  distanceFilter_ = options.distanceFilter;
  last_ = {};
  if (!source_) {
    failLater("this device has no position source");
    return;
  }
  source_->setPreferredPositioningMethods(
      options.desiredAccuracy > kCoarseMetres
          ? QGeoPositionInfoSource::NonSatellitePositioningMethods
          : QGeoPositionInfoSource::AllPositioningMethods);
  running_ = true;
  source_->startUpdates();
}

void QtLocationManager::stop() {
  updates_.reset();
  // A failed source has stopped itself, and warns when it is stopped again.
  if (source_ && std::exchange(running_, false)) {
    source_->stopUpdates();
  }
}

void QtLocationManager::updated(const QGeoPositionInfo& info) {
  const bool moved = !last_.isValid() || last_.distanceTo(info.coordinate()) >= distanceFilter_;
  if (updates_ && info.isValid() && moved) {
    last_ = info.coordinate();
    (*updates_)->didUpdateLocations({fixFrom(info)});
  }
}

void QtLocationManager::failed(QGeoPositionInfoSource::Error error) {
  running_ = running_ && error == QGeoPositionInfoSource::UpdateTimeoutError;
  if (updates_ && error != QGeoPositionInfoSource::NoError) {
    failLater(describe(error));
  }
}

void QtLocationManager::failLater(const std::string& description) {
  QMetaObject::invokeMethod(
      this,
      [description, updates = std::weak_ptr(updates_)] {
        if (const auto current = updates.lock()) {
          (*current)->didFailWithError(description);
        }
      },
      Qt::QueuedConnection);
}

}  // namespace orlix::shell
