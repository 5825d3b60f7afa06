#pragma once

#include <ostream>

#include "examples/shop/ShopOptions.h"

namespace orlix::shop {

/// Runs the shop in a window: by the script when the options name one, else until its user closes
/// it. Without a display it is drawn all the same, and nobody sees it. A script fails also by a
/// warning of the drawing language. Throws UsageError or ScriptError. Main thread; once in a
/// process.
void runDrawn(const ShopOptions& options, std::ostream& out, std::ostream& err);

}  // namespace orlix::shop
