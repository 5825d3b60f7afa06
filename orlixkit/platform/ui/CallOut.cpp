#include "orlixkit/platform/ui/CallOut.h"

#include <exception>
#include <new>
#include <string>

#include "orlixkit/platform/Host.h"
#include "orlixkit/platform/MainQueue.h"

namespace orlix {

namespace {

void logThrown(const char* where, const char* what) noexcept {
  try {
    logFailure(std::string("the main thread, in ") + where, what);
  } catch (const std::bad_alloc&) {
    return;
  }
}

void endTheFlowLater() noexcept {
  try {
    if (Host::isInstalled()) {
      Host::current().ports().mainQueue->async([] { memoryRanOut(); });
    }
  } catch (const std::bad_alloc&) {
    logThrown("the screen model", "no memory to end the flow");
  }
}

}  // namespace

void callOutTask(const char* where, const Task& code) noexcept {
  try {
    code();
  } catch (const std::bad_alloc&) {
    logThrown(where, "memory ran out");
    endTheFlowLater();
  } catch (const std::exception& failure) {
    logThrown(where, failure.what());
  } catch (...) {
    logThrown(where, "something that is no exception");
  }
}

}  // namespace orlix
