// SPDX-License-Identifier: Apache-2.0

#include "shell/QtPorts.h"

#include "orlixkit/posix/FixedLocationManager.h"
#include "shell/QtLocationManager.h"
#include "shell/QtMainQueue.h"
#include "shell/WebEngineLoader.h"

namespace orlix::shell {

Ports makeQtPorts(const PosixOptions& options, QQmlEngine& engine) {
  Ports ports = makePosixPorts(options);
  ports.mainQueue = std::make_shared<QtMainQueue>(ports.log);
  if (options.location) {
    ports.locationManager = std::make_shared<FixedLocationManager>(
        options.location->first, options.location->second, ports.mainQueue, ports.clock);
  } else {
    ports.locationManager = std::make_shared<QtLocationManager>();
  }
  ports.webViews = makeWebViews(engine, ports);
  return ports;
}

}  // namespace orlix::shell
