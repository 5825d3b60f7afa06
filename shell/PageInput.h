#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "orlixkit/platform/MainQueue.h"
#include "orlixkit/platform/WebView.h"

namespace orlix::shell {

/// Typing and clicking in the displayed web page, whose elements are named by CSS selectors. Main
/// thread; each call runs the main queue until it is through. What a user could not do (no such
/// element, hidden, covered, disabled) throws std::runtime_error with the reason.
class PageInput {
 public:
  /// The page that is shown now; none between two.
  using ShownPage = std::function<std::shared_ptr<WebView>()>;

  PageInput(std::shared_ptr<MainQueue> mainQueue, ShownPage shownPage)
      : mainQueue_(std::move(mainQueue)), shownPage_(std::move(shownPage)) {}

  /// Touches the element and types the text behind what it holds, one character at a time.
  void type(const std::string& selector, const std::string& text);
  void click(const std::string& selector);
  /// Returns when the shown page, whichever it is by then, has such an element and has been drawn.
  void wait(const std::string& selector,
            std::chrono::milliseconds limit = std::chrono::seconds(90));

 private:
  void touch(const std::string& selector, const std::string& doing);

  std::shared_ptr<MainQueue> mainQueue_;
  ShownPage shownPage_;
};

}  // namespace orlix::shell
