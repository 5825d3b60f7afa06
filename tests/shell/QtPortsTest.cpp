// SPDX-License-Identifier: Apache-2.0

// The ports that Qt gives.

#include <QCoreApplication>
#include <QGeoPositionInfoSource>

#include "orlixkit/posix/PosixBackgroundQueues.h"
#include "orlixkit/testing/MemoryLog.h"
#include "shell/QtLocationManager.h"
#include "shell/QtMainQueue.h"
#include "tests/ports/LocationManagerContract.h"
#include "tests/ports/MainQueueContract.h"

namespace orlix {
namespace {

class QtPlatform {
 public:
  MainQueue& mainQueue() { return mainQueue_; }
  BackgroundQueues& backgroundQueues() { return backgroundQueues_; }
  std::vector<std::string> logged() const { return log_->lines(); }

 private:
  std::shared_ptr<MemoryLog> log_ = std::make_shared<MemoryLog>();
  std::stop_source shutdown_;
  shell::QtMainQueue mainQueue_{log_};
  PosixBackgroundQueues backgroundQueues_{shutdown_};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, MainQueueContract, QtPlatform);

/// A source that does what the test says.
class Source : public QGeoPositionInfoSource {
 public:
  Source() : QGeoPositionInfoSource(nullptr) {}
  QGeoPositionInfo lastKnownPosition(bool) const override { return {}; }
  PositioningMethods supportedPositioningMethods() const override { return AllPositioningMethods; }
  int minimumUpdateInterval() const override { return 0; }
  Error error() const override { return NoError; }
  void startUpdates() override {
    ++starts;
    if (refuses) {
      Q_EMIT errorOccurred(AccessError);
    }
  }
  void stopUpdates() override {}
  void requestUpdate(int) override {}
  bool refuses = false;
  int starts = 0;
};

/// Qt's positions out of such a source.
class QtPositions {
 public:
  LocationManager& locationManager() { return manager_; }
  void bringFix() {
    QCoreApplication::processEvents();
    Q_EMIT source_->positionUpdated(
        QGeoPositionInfo(QGeoCoordinate(59.91, 10.75), QDateTime::currentDateTime()));
  }

 private:
  std::unique_ptr<Source> made_ = std::make_unique<Source>();
  Source* const source_ = made_.get();
  shell::QtLocationManager manager_{std::move(made_)};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, LocationManagerContract, QtPositions);

struct Listener : LocationManagerDelegate {
  void didUpdateLocations(const std::vector<LocationFix>& fixes) override {
    heard += std::to_string(static_cast<int>(fixes.back().latitude)) + " ";
  }
  void didFailWithError(const std::string& description) override { heard += description + " "; }
  std::string heard;
};

TEST(QtLocationManager, TellsOnceThatThereIsNoPositionAndNeverFromInsideTheStart) {
  for (const bool hasSource : {false, true}) {
    auto source = hasSource ? std::make_unique<Source>() : nullptr;
    if (source) {
      source->refuses = true;
    }
    shell::QtLocationManager manager(std::move(source));
    Listener listener;
    manager.start({}, listener);
    EXPECT_EQ(listener.heard, "");
    QCoreApplication::processEvents();
    EXPECT_EQ(listener.heard, hasSource ? "access to the position is refused "
                                        : "this device has no position source ");
    listener.heard.clear();
    manager.start({}, listener);
    manager.stop();
    QCoreApplication::processEvents();
    EXPECT_EQ(listener.heard, "") << "stopped meanwhile";
  }
}

TEST(QtLocationManager, LeavesOutStepsBelowTheDistanceFilterAndInvalidFixes) {
  auto made = std::make_unique<Source>();
  Source& source = *made;
  shell::QtLocationManager manager(std::move(made));
  Listener listener;
  manager.start({.desiredAccuracy = 10, .distanceFilter = 100, .purpose = ""}, listener);
  const auto moveTo = [&](double latitude) {
    Q_EMIT source.positionUpdated(
        QGeoPositionInfo(QGeoCoordinate(latitude, 18), QDateTime::currentDateTime()));
  };
  moveTo(33);
  moveTo(33.0001);
  Q_EMIT source.positionUpdated(QGeoPositionInfo());
  moveTo(34);
  manager.start({}, listener);
  moveTo(34);
  EXPECT_EQ(source.starts, 1) << "it runs already, and knows where it was";
  manager.stop();
  moveTo(35);
  EXPECT_EQ(listener.heard, "33 34 ");
  manager.start({}, listener);
  EXPECT_EQ(source.starts, 2);
}

}  // namespace
}  // namespace orlix
