#include "orlixkit/platform/MainQueue.h"

#include <exception>

#include "orlixkit/platform/Host.h"

namespace orlix {

void runLogged(const Task& task) {
  try {
    task();
  } catch (const std::exception& failure) {
    log(std::string("OrlixKit: uncaught on the main thread: ") + failure.what());
  } catch (...) {
    log("OrlixKit: uncaught on the main thread: something that is no exception");
  }
}

}  // namespace orlix
