// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/PosixPorts.h"

#include <stop_token>

#include "orlixkit/posix/AnchorBundle.h"
#include "orlixkit/posix/ChainedBundle.h"
#include "orlixkit/posix/CurlHttpClient.h"
#include "orlixkit/posix/DirectoryBundle.h"
#include "orlixkit/posix/FixedLocationManager.h"
#include "orlixkit/posix/PosixBackgroundQueues.h"
#include "orlixkit/posix/PosixClock.h"
#include "orlixkit/posix/PosixDevice.h"
#include "orlixkit/posix/PosixRunLoop.h"
#include "orlixkit/posix/SqliteUserDefaults.h"
#include "orlixkit/posix/StateFolder.h"
#include "orlixkit/resources/CompiledBundle.h"

namespace orlix {

namespace {

std::shared_ptr<Bundle> makeBundle(const PosixOptions& options) {
  std::vector<std::shared_ptr<const Bundle>> chain;
  if (options.anchorFile) {
    chain.push_back(std::make_shared<AnchorBundle>(*options.anchorFile));
  }
  for (const std::filesystem::path& directory : options.resourceDirectories) {
    chain.push_back(std::make_shared<DirectoryBundle>(directory));
  }
  chain.insert(chain.end(), options.bundles.begin(), options.bundles.end());
  return std::make_shared<ChainedBundle>(std::move(chain));
}

}  // namespace

std::vector<std::shared_ptr<const Bundle>> compiledInResources() {
  return {std::make_shared<CompiledBundle>()};
}

Ports makePosixPorts(const PosixOptions& options) {
  const std::stop_source shutdown;
  Ports ports;
  ports.log = std::make_shared<PosixSystemLog>(options.logTarget);
  ports.clock = std::make_shared<PosixClock>(shutdown.get_token());
  ports.httpClient = std::make_shared<CurlHttpClient>(ports.clock);
  ports.mainQueue = std::make_shared<PosixRunLoop>(ports.log);
  ports.backgroundQueues = std::make_shared<PosixBackgroundQueues>(shutdown);
  // Make the device before the store: a store without an identifier is one of an earlier release.
  ports.device = std::make_shared<PosixDevice>(
      IdentifierSources{options.applicationName, options.stateDirectory});
  ports.userDefaults =
      std::make_shared<SqliteUserDefaults>(options.stateDirectory / kStoreFileName);
  ports.bundle = makeBundle(options);
  if (options.location) {
    ports.locationManager = std::make_shared<FixedLocationManager>(
        options.location->first, options.location->second, ports.mainQueue, ports.clock);
  }
  return ports;
}

}  // namespace orlix
