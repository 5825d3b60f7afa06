// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/host/RunningTasks.h"

#include <chrono>
#include <exception>
#include <new>
#include <string>

#include "orlixkit/host/Host.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

constexpr int kMostDeliveries = 50;
// The failed code has released its memory, so the first attempt usually succeeds.
constexpr int kMostAttempts = 10;

/// Runs the task and reports what it throws; `end` is called when the step may be incomplete.
template <class Report, class End>
void runReported(const Task& task, const Report& report, const End& end) {
  try {
    task();
  } catch (const std::bad_alloc&) {
    report("memory ran out");
    end();
  } catch (const StoreException& failure) {
    report(failure.what());
    end();
  } catch (const std::exception& failure) {
    report(failure.what());
  } catch (...) {
    report("something that is no exception");
  }
}

void endFlowLater() noexcept {
  for (int attempt = 0; Host::isInstalled() && attempt < kMostAttempts; ++attempt) {
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

void runLogged(const Task& task) {
  runReported(
      task, [](std::string_view what) { logFailure("the main thread", what); }, endFlow);
}

void runLogged(const Task& task, SystemLog& log) {
  runReported(
      task, [&log](std::string_view what) { logFailure("the main thread", what, &log); }, endFlow);
}

void runLoggedInBackground(const Task& task) {
  runReported(
      task, [](std::string_view what) { logFailure("the background", what); }, [] {});
}

void runCallOut(const char* where, const Task& code) noexcept {
  const auto report = [where](std::string_view what) noexcept {
    try {
      logFailure(std::string("the main thread, in ") + where, what);
    } catch (const std::bad_alloc&) {
      return;
    }
  };
  runReported(code, report, endFlowLater);
}

void deliverToMainQueue(const Task& task) {
  const Ports& ports = Host::current().ports();
  for (int attempt = 0; attempt < kMostDeliveries; ++attempt) {
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
