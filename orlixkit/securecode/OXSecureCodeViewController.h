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

/// Pays for the current checkout with a card that its issuer authenticates on a web page of its
/// own: asks for the page, shows it, reads the PaRes from the page that comes back, sends the
/// purchase and polls for the receipt.
///
/// What is paid is fixed when the screen loads. Only the page information asked for last counts,
/// and none once the termination page has been seen; so the PaRes is always sent with the
/// `secureCodeId` of the page that led to it, and a termination page that loads twice pays once.
class OXSecureCodeViewController : public OrlixViewController,
                                   public Payment,
                                   public WebViewDelegate {
 public:
  OXSecureCodeViewController();

  void viewDidLoad() override;
  void viewDidAppear() override;

  /// Stops the page that is shown, and asks for another.
  void loadSecureCodeInfo();
  void makePayment();
  /// CANCEL. Ends the checkout as cancelled by the user; as succeeded when the payment has already
  /// succeeded and only the card's validation is still under way.
  void cancelTransaction();

  void didFinishNavigation() override;
  void didFailNavigation(const std::string& description) override;
  void webContentProcessDidTerminate() override;

  /// Evaluates the script and runs the main loop until its result is there, for 10 seconds at most.
  /// None after a failure, which is logged, and when the flow has ended meanwhile. Tasks of the
  /// main queue run meanwhile: the caller checks again all it knew before.
  std::optional<SecretString> stringByEvaluatingJavaScriptFromString(
      const std::string& script, const std::shared_ptr<WebView>& webView);

 protected:
  bool isSecureScreen() const override { return true; }

  /// What differs between paying and authenticating. `page` and `purchase` return what to ask in
  /// the background, with all it needs copied; main thread.
  using PageRequest = std::function<MTSecureCodeURLResponse(KCVelloConnection&)>;
  virtual PageRequest pageRequest() const;
  virtual PurchaseCall purchaseCall() const;
  void succeeded(const std::string& reference) override;

  /// Marks the card as validated at the server; one of the two tasks runs while the session lives.
  void validateCard(Task done, Task failed);

  VelloSecureCodeData secureCodeData_;

 private:
  /// `asking`: no page counts. `showing`: the page of `secureCodeInfo_` is in the web view. `over`:
  /// the termination page has been seen, or no page will come; neither pages nor page information
  /// count any more.
  enum class PageState { asking, showing, over };

  void takePaymentOf(OXSession& session);
  void addWebView();
  void pageRequestEnded();
  void secureCodeInfoLoaded();
  void loadPage();
  /// Tells the user why there is no page. Ends the checkout as cancelled once they know, or when
  /// the alert is lost.
  void endWithWarning(const std::string& message);
  void offerPageRetry();
  ConnectionAlert failureAlert() override;
  ScriptResult readPage(const std::string& script, const std::shared_ptr<WebView>& webView);
  void terminationPageSeen(std::string_view markup);
  void purchaseAnswered() override;
  void receiptTimedOut() override;
  /// The issuer's page is in the web view, and the flow is live.
  bool showsPage() const;
  std::shared_ptr<OXSecureCodeViewController> self();

  std::shared_ptr<WebPageView> secureCodewebView_;
  std::shared_ptr<Button> cancelButton_;
  PageState pageState_ = PageState::asking;
  /// Counts the requests for a page and the pages that have finished. Whoever waits for something
  /// compares it to know whether another has come first.
  unsigned turn_ = 0;
  bool appeared_ = false;
  bool answered_ = false;   ///< a page request has ended and waits for the screen to appear
  bool pageShown_ = false;  ///< a page of the issuer, not only the form that leads to it
  std::optional<MTSecureCodeURLResponse> secureCodeInfo_;  ///< none after a failed request
  bool mustValidateCard_ = false;
  std::optional<std::string> paidReference_;  ///< of a payment that has succeeded
};

}  // namespace orlix
