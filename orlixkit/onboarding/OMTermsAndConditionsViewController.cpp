// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/OMTermsAndConditionsViewController.h"

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/onboarding/ScreenSetUp.h"

namespace orlix {

namespace {

/// Fits the page to the device's width and allows a zoom of up to ten times.
constexpr const char* kViewportScript =
    "var meta = document.createElement('meta');"
    "meta.setAttribute('name', 'viewport');"
    "meta.setAttribute('content', 'width=device-width, initial-scale=1.0, maximum-scale=10.0, "
    "user-scalable=yes');"
    "document.getElementsByTagName('head')[0].appendChild(meta);";

}  // namespace

OMTermsAndConditionsViewController::OMTermsAndConditionsViewController()
    : webView_(outlet<WebPageView>("webView")),
      backButton_(button("backButton", "BACK", "backAction")) {
  // When the page cannot be loaded, the indicator stays shown; the user can still go back.
  keepReachableUnderMask({"backButton", "backAction"});
  action("backAction", [this] { backAction(); });
  static constexpr AlertText kAlerts[] = {{"Error", "<why the page could not be loaded>"}};
  declare({.alerts = kAlerts});
}

void OMTermsAndConditionsViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  applyOnboardingLook(*this);
  OXUtil::addOrlixLogoToNavigationItem(*this);
  webView_->setBackgroundColor(view()->backgroundColor());
  const auto& webViews = Host::current().ports().webViews;
  tcWebView_ = webViews ? webViews->newWebView() : nullptr;
  if (!tcWebView_) {
    log("OrlixKit: Unable to show the terms because the host has no web view.");
    return;
  }
  tcWebView_->loadRequest(Host::current().deployment().termsAddress);
  webView_->setPage(tcWebView_);
  tcWebView_->setNavigationDelegate(
      std::static_pointer_cast<OMTermsAndConditionsViewController>(shared_from_this()));
}

void OMTermsAndConditionsViewController::viewDidAppear() {
  OrlixViewController::viewDidAppear();
  // Only while a page is loading: nothing else would hide the indicator.
  if (tcWebView_ && !pageFinished_) {
    showProgress("Please wait", ProgressMask::gradient);
  }
}

void OMTermsAndConditionsViewController::didFinishNavigation() {
  pageFinished_ = true;
  static_cast<void>(hideProgress());
  tcWebView_->evaluateJavaScript(kViewportScript, [](const ScriptResult&) {});
}

void OMTermsAndConditionsViewController::didFailLoadWithError(const std::string& description) {
  static_cast<void>(hideProgress());
  OXUtil::showAlertWithTitle("Error", description);
}

void OMTermsAndConditionsViewController::backAction() {
  static_cast<void>(hideProgress());
  closeScreen(*this);
}

}  // namespace orlix
