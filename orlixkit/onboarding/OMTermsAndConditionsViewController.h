// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/ports/WebView.h"
#include "orlixkit/ui/WebPageView.h"

namespace orlix {

/// Shows the page of the service's terms. Shown in a navigation container.
class OMTermsAndConditionsViewController : public OrlixViewController, public WebViewDelegate {
 public:
  OMTermsAndConditionsViewController();
  void viewDidLoad() override;
  void viewDidAppear() override;
  void backAction();

  void didFinishNavigation() override;
  /// Not handled, see didFailLoadWithError: the indicator stays shown until the user goes back.
  void didFailNavigation(const std::string&) override {}
  void webContentProcessDidTerminate() override {}
  /// Called by an older kind of web view only, never by the present one. Kept but unused: users
  /// expect to leave the page themselves.
  void didFailLoadWithError(const std::string& description);

  // For the caller that opens the screen; not used by it.
  std::optional<std::string> msisdn;
  std::optional<std::string> message;

 private:
  std::shared_ptr<WebPageView> webView_;
  std::shared_ptr<Button> backButton_;
  std::shared_ptr<WebView> tcWebView_;
  bool pageFinished_ = false;
};

}  // namespace orlix
