// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "orlixkit/ports/WebView.h"

class QQuickItem;

namespace orlix::shell {

/// A web view with an item in the scene.
class DrawnWebView : public WebView {
 public:
  /// Owned by the view; the component that shows it reparents and resizes it.
  virtual QQuickItem* item() = 0;
};

}  // namespace orlix::shell
