// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/checkout/Payment.h"
#include "orlixkit/ports/WebView.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"
#include "orlixkit/records/VelloSecureCodeData.h"
#include "orlixkit/ui/WebPageView.h"

namespace orlix {

/// Pays with a card that its issuer authenticates on a web page: requests the page, shows it, reads
/// the PaRes from the termination page, sends the purchase and polls for the receipt.
///
/// The purchase is fixed when the screen loads. Only the most recently requested page information
/// is used, and none once the termination page was loaded, so that the PaRes is always sent with
/// the `secureCodeId` of its own page, and a termination page that loads twice pays once.
class OXSecureCodeViewController : public OrlixViewController,
                                   public Payment,
                                   public WebViewDelegate {
 public:
  OXSecureCodeViewController();

  void viewDidLoad() override;
  void viewDidAppear() override;

  /// Stops the shown page and requests a new one.
  void loadSecureCodeInfo();
  void makePayment();
  /// CANCEL. Ends the checkout as cancelled by the user, or as succeeded if the payment has
  /// succeeded and only the card's validation is pending.
  void cancelTransaction();

  void didFinishNavigation() override;
  void didFailNavigation(const std::string& description) override;
  void webContentProcessDidTerminate() override;

  /// Evaluates the script and runs the main loop until the result arrives, for at most 10 seconds.
  /// None after a failure, which is logged, and when the flow has ended. Tasks of the main queue
  /// run meanwhile: check any state again afterwards.
  std::optional<SecretString> stringByEvaluatingJavaScriptFromString(
      const std::string& script, const std::shared_ptr<WebView>& webView);

 protected:
  bool isSecureScreen() const override { return true; }

  /// The difference between paying and authenticating. `pageRequest` and `purchaseCall` return the
  /// request to make in the background, with its arguments copied. Main thread.
  using PageRequest = std::function<MTSecureCodeURLResponse(KCVelloConnection&)>;
  virtual PageRequest pageRequest() const;
  virtual PurchaseCall purchaseCall() const;
  void succeeded(const std::string& reference) override;

  /// Marks the card as validated on the server; runs one of the two tasks while the session is
  /// live.
  void validateCard(Task done, Task failed);

  VelloSecureCodeData secureCodeData_;

 private:
  /// `asking`: events of pages are ignored. `showing`: the page of `secureCodeInfo_` is in the web
  /// view. `over`: the termination page was loaded, or no page will be; pages and page information
  /// are ignored.
  enum class PageState { asking, showing, over };

  void takePaymentOf(OXSession& session);
  void addWebView();
  void pageRequestEnded();
  void secureCodeInfoLoaded();
  void loadPage();
  /// Shows an alert that says why there is no page. Ends the checkout as cancelled when the alert
  /// is closed or lost.
  void endWithWarning(const std::string& message);
  void offerPageRetry();
  ConnectionAlert failureAlert() override;
  ScriptResult readPage(const std::string& script, const std::shared_ptr<WebView>& webView);
  void terminationPageSeen(std::string_view markup);
  void purchaseAnswered() override;
  void receiptTimedOut() override;
  /// True while the issuer's page is in the web view and the flow is live.
  bool showsPage() const;
  std::shared_ptr<OXSecureCodeViewController> self();

  std::shared_ptr<WebPageView> secureCodewebView_;
  std::shared_ptr<Button> cancelButton_;
  PageState pageState_ = PageState::asking;
  /// Incremented by each page request and each loaded page. A pending task compares it to know
  /// whether it is outdated.
  unsigned turn_ = 0;
  bool appeared_ = false;
  bool answered_ = false;   ///< a page request has ended and waits for the screen to appear
  bool pageShown_ = false;  ///< a page of the issuer, not only the form that leads to it
  std::optional<MTSecureCodeURLResponse> secureCodeInfo_;  ///< none after a failed request
  bool mustValidateCard_ = false;
  std::optional<std::string> paidReference_;  ///< of a payment that has succeeded
};

}  // namespace orlix
