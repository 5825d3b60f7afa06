#pragma once

#include <functional>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

void callOutTask(const char* where, const Task& code) noexcept;

/// Runs code that is not the screen model's own: the host's observer, what a screen does when it
/// appears, a completion. What that throws is logged with `where`, and the step that called it goes
/// on. When it was memory that ran out, the flow ends as failed in a main-queue task of its own:
/// the step may belong to an entry call, during which no host callback is made. Main thread.
template <class Code>
void callOut(const char* where, const Code& code) noexcept {
  callOutTask(where, std::cref(code));
}

}  // namespace orlix
