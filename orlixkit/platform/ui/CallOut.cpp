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
  // What the failed code had taken is free again, so the first attempt mostly finds enough.
  constexpr int mostAttempts = 10;
  for (int attempt = 0; Host::isInstalled() && attempt < mostAttempts; ++attempt) {
    try {
      Host::current().ports().mainQueue->async([] { endFlow(); });
      return;
    } catch (const std::bad_alloc&) {
      continue;
    }
  }
  endFlow();
}

}  // namespace

void callOutTask(const char* where, const Task& code) noexcept {
  try {
    code();
  } catch (const std::bad_alloc&) {
    logThrown(where, "memory ran out");
    endTheFlowLater();
  } catch (const StoreException& failure) {
    logThrown(where, failure.what());
    endTheFlowLater();
  } catch (const std::exception& failure) {
    logThrown(where, failure.what());
  } catch (...) {
    logThrown(where, "something that is no exception");
  }
}

}  // namespace orlix
