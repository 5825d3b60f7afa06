// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "sandbox/Authentications.h"
#include "sandbox/CardKinds.h"
#include "sandbox/Codes.h"
#include "sandbox/Database.h"
#include "sandbox/Devices.h"
#include "sandbox/Faults.h"
#include "sandbox/Messages.h"
#include "sandbox/Purchases.h"
#include "sandbox/SeenRequests.h"
#include "sandbox/Sessions.h"
#include "sandbox/Shutdown.h"
#include "sandbox/Wallets.h"

namespace orlix::sandbox {

/// All that the server remembers. Everything is read and changed under `mutex`.
struct State {
  explicit State(const std::string& databaseFile)
      : database(databaseFile), kinds(database), devices(database), wallets(database, kinds) {}

  /// Waits until the fault is cleared; false when the server ends first. `lock` is of `mutex`.
  bool awaitCleared(std::int64_t fault, std::unique_lock<std::mutex>& lock,
                    const Shutdown& shutdown) {
    changed.wait(lock, [&] { return shutdown.begun() || !faults.has(fault); });
    return !shutdown.begun();
  }

  /// Tells those who watch that something has changed. `mutex` is locked.
  void touch() {
    ++changes;
    watchers.notify_all();
  }

  std::mutex mutex;
  /// Signalled when terms are accepted, a fault is cleared, or the server ends: what an answer may
  /// be waiting for.
  std::condition_variable changed;

  Database database;
  CardKinds kinds;
  Devices devices;
  Wallets wallets;

  Sessions sessions;
  Purchases purchases;
  Authentications authentications;
  Faults faults;
  SeenRequests seen;
  Messages messages;
  Codes codes;

  std::int64_t changes = 0;  ///< Counts the calls of `touch`.
  std::condition_variable watchers;

  std::string origin;  ///< Scheme, host and port of the wallets' addresses.
  bool everyDeviceEnrolled = false;
  std::string sessionStart = "normal";  ///< What every session start is answered with; see Codes.
  std::string nextSessionStart;  ///< What the next one is answered with, once; empty: as ever.
  std::string sessionMessage = "A newer version is available.";
  std::int64_t termsWaitMs = 10'000;  ///< How long a lookup waits for changed terms to be accepted.
};

/// Whether a session start can be answered in this way.
bool isSessionStart(std::string_view start);

/// The complaint about one that is none, with those that there are.
std::string noSessionStart(std::string_view start);

}  // namespace orlix::sandbox
