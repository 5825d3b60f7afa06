// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "orlixkit/ports/MainQueue.h"
#include "orlixkit/ports/WebView.h"

namespace orlix::shell {

/// Types and clicks in the displayed web page; elements are named by CSS selectors. Main thread;
/// each call runs the main queue until it has finished. Throws std::runtime_error with the reason
/// when a user could not do it (no such element, hidden, covered, disabled).
class PageInput {
 public:
  /// The displayed page; null between two pages.
  using ShownPage = std::function<std::shared_ptr<WebView>()>;

  PageInput(std::shared_ptr<MainQueue> mainQueue, ShownPage shownPage)
      : mainQueue_(std::move(mainQueue)), shownPage_(std::move(shownPage)) {}

  /// Touches the element and types at the end of its text, one character at a time.
  void type(const std::string& selector, const std::string& text);
  void click(const std::string& selector);
  /// Returns when the page displayed at that time has such an element and has been drawn.
  void wait(const std::string& selector,
            std::chrono::milliseconds limit = std::chrono::seconds(90));

 private:
  void touch(const std::string& selector, const std::string& doing);

  std::shared_ptr<MainQueue> mainQueue_;
  ShownPage shownPage_;
};

}  // namespace orlix::shell
