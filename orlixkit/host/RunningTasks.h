// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/SystemLog.h"

namespace orlix {

/// Runs a fire-and-forget task on the main thread: a main-queue task, a user's tap. Exceptions are
/// logged, and the application continues. After std::bad_alloc or StoreException the step may be
/// incomplete, so the installed host's `endFlow` ends the flow.
void runLogged(const Task& task);
/// Overload that writes to the given log instead of the host's.
void runLogged(const Task& task, SystemLog& log);

/// For implementations of the queues: runs one background task and logs what it throws.
void runLoggedInBackground(const Task& task);

/// Runs code that is not the caller's own, in the middle of a step: the host's observer, what a
/// screen does when it appears, a completion. What it throws is logged with `where`, and the step
/// continues. After std::bad_alloc or StoreException the flow ends as failed in a main-queue task
/// of its own: the step may belong to an entry call, during which no host callback is made. Main
/// thread.
void runCallOut(const char* where, const Task& code) noexcept;

/// Posts a result from a background thread to the main queue of the installed host. Retries for
/// some seconds when memory is short, since a background task has no caller to report the failure
/// to.
void deliverToMainQueue(const Task& task);

}  // namespace orlix
