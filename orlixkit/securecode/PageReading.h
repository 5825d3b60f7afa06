// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Clock.h"
#include "orlixkit/ports/WebView.h"

namespace orlix {

/// Evaluates the script in the page and runs the main queue until its result is there. None when it
/// has not come within `limit`, and as soon as `abandoned` holds, which is asked after each task of
/// the main queue. Any of these tasks may have changed what the caller knew before. Main thread.
std::optional<ScriptResult> evaluateAndWait(const std::shared_ptr<WebView>& page,
                                            const std::string& script, Duration limit,
                                            const std::function<bool()>& abandoned);

}  // namespace orlix
