// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/ports/WebView.h"
#include "orlixkit/ui/View.h"

namespace orlix {

/// The part of a screen that a web page is shown in.
class WebPageView : public View {
 public:
  std::string kind() const override { return "web"; }
  /// None until the screen has made its page view.
  const std::shared_ptr<WebView>& page() const { return page_; }
  void setPage(std::shared_ptr<WebView> page) { set(page_, std::move(page)); }

 private:
  std::shared_ptr<WebView> page_;
};

}  // namespace orlix
