#include "orlixkit/platform/MainQueue.h"

#include <chrono>
#include <exception>
#include <new>

#include "orlixkit/platform/Host.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

constexpr int kMostAttempts = 50;

template <class Log>
void runAndTell(const Task& task, const Log& tell) {
  try {
    task();
  } catch (const std::bad_alloc&) {
    tell("memory ran out");
    endFlow();
  } catch (const StoreException& failure) {
    tell(failure.what());
    endFlow();
  } catch (const std::exception& failure) {
    tell(failure.what());
  } catch (...) {
    tell("something that is no exception");
  }
}

}  // namespace

void runLogged(const Task& task) {
  runAndTell(task, [](std::string_view what) { logFailure("the main thread", what); });
}

void runLogged(const Task& task, SystemLog& log) {
  runAndTell(task, [&log](std::string_view what) { logFailure("the main thread", what, &log); });
}

void handOver(const Task& task) {
  const Ports& ports = Host::current().ports();
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    try {
      ports.mainQueue->async(task);
      return;
    } catch (const std::bad_alloc&) {
      logFailure("the background", "no memory for a result");
    }
    try {
      if (!ports.clock->sleep(100ms)) {
        return;  // the host's shutdown
      }
    } catch (const std::bad_alloc&) {
      continue;  // without the pause
    }
  }
}

}  // namespace orlix
