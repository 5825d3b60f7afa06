#include "orlixkit/platform/BackgroundQueues.h"

#include <exception>

#include "orlixkit/platform/Host.h"

namespace orlix {

void runLoggedInBackground(const Task& task) {
  try {
    task();
  } catch (const std::exception& failure) {
    logFailure("the background", failure.what());
  } catch (...) {
    logFailure("the background", "something that is no exception");
  }
}

}  // namespace orlix
