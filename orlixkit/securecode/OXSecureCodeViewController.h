#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/checkout/OrlixViewController.h"
#include "orlixkit/platform/WebView.h"
#include "orlixkit/platform/ui/WebPageView.h"
#include "orlixkit/protocol/KCVelloConnection.h"
#include "orlixkit/records/MTPinResponse.h"
#include "orlixkit/records/MTReceipt.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"
#include "orlixkit/records/PurchaseRequest.h"
#include "orlixkit/records/VelloSecureCodeData.h"

namespace orlix {

/// Pays for the current checkout with a card that its issuer authenticates on a web page of its
/// own: asks for the page, shows it, lifts the PaRes out of the page that comes back, sends the
/// purchase and polls for the receipt.
///
/// Every way out of the page leads to one ending. Once the termination page has been seen, further
/// pages are left alone, so that a page that loads twice pays once.
class OXSecureCodeViewController : public OrlixViewController, public WebViewDelegate {
 public:
  OXSecureCodeViewController();

  void viewDidLoad() override;
  void viewDidAppear() override;

  void loadSecureCodeInfo();
  void makePayment();
  void pollForReceipt();
  /// Ends the checkout as cancelled by the user: the indicator goes, the page stops.
  void cancelTransaction();

  void didFinishNavigation() override;
  void didFailNavigation(const std::string& description) override;
  void webContentProcessDidTerminate() override;

  /// Evaluates the script and runs the main loop until its result is there. None after a failure,
  /// which is logged, and at the host's shutdown. Tasks of the main queue run meanwhile: whoever
  /// calls this looks again at all it knew before.
  std::optional<std::string> stringByEvaluatingJavaScriptFromString(
      const std::string& script, const std::shared_ptr<WebView>& webView);

 protected:
  bool isSecureScreen() const override { return true; }

  /// What differs between paying and authenticating. `page` and `purchase` return what to ask in
  /// the background, with all it needs copied; main thread.
  using PageRequest = std::function<MTSecureCodeURLResponse(KCVelloConnection&)>;
  using PurchaseCall = std::function<MTPinResponse(KCVelloConnection&)>;
  virtual PageRequest pageRequest() const;
  virtual PurchaseCall purchaseCall() const;
  /// The receipt says "SUCCESS".
  virtual void succeeded(const std::string& reference);

  VelloSecureCodeData secureCodeData() const;
  PurchaseRequest purchaseRequest() const;
  /// From here on the outcome is certain: cancel no longer ends the flow.
  void settle(bool settled) { settled_ = settled; }

 private:
  void addWebView();
  void secureCodeInfoLoaded();
  void loadPageWhenReady();
  void offerRetry(void (OXSecureCodeViewController::*step)());
  void receiptArrived(const MTReceipt& receipt);
  std::shared_ptr<OXSecureCodeViewController> self();

  std::shared_ptr<WebPageView> secureCodewebView_;
  std::shared_ptr<Button> cancelButton_;
  std::optional<MTSecureCodeURLResponse> secureCodeInfo_;
  std::optional<SecretString> cvv_;
  std::string paRes_;
  MTPinResponse pinResponse_;
  bool appeared_ = false;
  bool returned_ = false;
  bool settled_ = false;
  /// Number of page loads that have finished; tells a nested load from the one that began it.
  unsigned navigations_ = 0;
};

}  // namespace orlix
