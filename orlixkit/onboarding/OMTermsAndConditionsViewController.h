#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/platform/WebView.h"
#include "orlixkit/platform/ui/WebPageView.h"

namespace orlix {

/// Shows the page of the service's terms. Stands in a navigation container.
class OMTermsAndConditionsViewController : public OrlixViewController, public WebViewDelegate {
 public:
  OMTermsAndConditionsViewController();
  void viewDidLoad() override;
  void viewDidAppear() override;
  void backAction();

  void didFinishNavigation() override;
  /// Left unanswered, see didFailLoadWithError: the indicator stays up until the user goes back.
  void didFailNavigation(const std::string&) override {}
  void webContentProcessDidTerminate() override {}
  /// The handler that an older kind of web view called. Today's never does, and users know the
  /// page as one that they leave by themselves; so it stays, uncalled.
  void didFailLoadWithError(const std::string& description);

  // Carried for whoever opens the screen; it does not use them itself.
  std::optional<std::string> msisdn;
  std::optional<std::string> message;

 private:
  std::shared_ptr<WebPageView> webView_;
  std::shared_ptr<Button> backButton_;
  std::shared_ptr<WebView> tcWebView_;
  bool pageFinished_ = false;
};

}  // namespace orlix
