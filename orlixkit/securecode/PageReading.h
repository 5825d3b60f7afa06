// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/WebView.h"

namespace orlix {

/// Evaluates the script in the page and runs the main queue until the result arrives. None after
/// `limit`, and as soon as `abandoned` holds, which is checked after each task of the main queue.
/// These tasks may change any state of the caller. Main thread.
std::optional<ScriptResult> evaluateAndWait(const std::shared_ptr<WebView>& page,
                                            const std::string& script, Duration limit,
                                            const std::function<bool()>& abandoned);

}  // namespace orlix
