#pragma once

#include "orlixkit/platform/WebView.h"

class QQuickItem;

namespace orlix::shell {

/// A web view that has a place in the scene.
class DrawnWebView : public WebView {
 public:
  /// Owned by the view; whoever shows it puts it into its own items and fills it.
  virtual QQuickItem* item() = 0;
};

}  // namespace orlix::shell
