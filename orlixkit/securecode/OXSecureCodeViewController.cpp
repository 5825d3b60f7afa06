#include "orlixkit/securecode/OXSecureCodeViewController.h"

#include <utility>

#include <fmt/format.h>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/checkout/ReceiptPolling.h"
#include "orlixkit/checkout/WalletRequest.h"
#include "orlixkit/platform/Host.h"
#include "orlixkit/securecode/IssuerPage.h"

namespace orlix {

OXSecureCodeViewController::OXSecureCodeViewController()
    : secureCodewebView_(outlet<WebPageView>("secureCodewebView")),
      cancelButton_(button("cancelButton", "CANCEL", "cancelButton")) {
  action("cancelButton", [this] { cancelTransaction(); });
  action("cancelAction", [this] { cancelTransaction(); });
}

std::shared_ptr<OXSecureCodeViewController> OXSecureCodeViewController::self() {
  return std::static_pointer_cast<OXSecureCodeViewController>(shared_from_this());
}

void OXSecureCodeViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  // Taken, not copied: the session outlives the flow, this screen does not.
  if (const auto current = session()) {
    cvv_ = std::exchange(current->cvv, std::nullopt);
  }
  loadSecureCodeInfo();
}

void OXSecureCodeViewController::viewDidAppear() {
  if (!settled_) {
    OXUtil::indicator().show("Please wait");
  }
  OrlixViewController::viewDidAppear();
  appeared_ = true;
  addWebView();
  loadPageWhenReady();
}

void OXSecureCodeViewController::addWebView() {
  const auto& webViews = Host::current().ports().webViews;
  if (webViews && !secureCodewebView_->page()) {
    secureCodewebView_->setPage(webViews->newWebView());
    secureCodewebView_->setFrame(view()->frame());
  }
}

void OXSecureCodeViewController::offerRetry(void (OXSecureCodeViewController::*step)()) {
  OXUtil::indicator().dismiss();
  ConnectionAlert alert;
  alert.ofPayment = true;
  alert.retry = [screen = self(), step] { ((*screen).*step)(); };
  alert.cancel = [screen = self()] { screen->cancelTransaction(); };
  OXUtil::showConnectionAlert(std::move(alert));
}

void OXSecureCodeViewController::loadSecureCodeInfo() {
  if (!session()) {
    return;
  }
  requestInBackground<MTSecureCodeURLResponse>(
      RequestQueue::globalHigh, pageRequest(),
      [screen = self()](MTSecureCodeURLResponse info) {
        screen->secureCodeInfo_ = std::move(info);
        screen->secureCodeInfoLoaded();
      },
      [screen = self()] { screen->offerRetry(&OXSecureCodeViewController::loadSecureCodeInfo); });
}

OXSecureCodeViewController::PageRequest OXSecureCodeViewController::pageRequest() const {
  const auto current = session();
  return
      [cardId = current->cardId, code = current->codeInfo ? current->codeInfo->code : std::nullopt,
       amount = current->amount](KCVelloConnection& connection) {
        return connection.getSecureCodeUrl(cardId, code, amount);
      };
}

void OXSecureCodeViewController::secureCodeInfoLoaded() {
  if (secureCodeInfo_->hasError) {
    // Cancelled first, so that the alert stands over the host's screen and can be read: it would
    // otherwise go with the screen that it stood on.
    cancelTransaction();
    OXUtil::showAlertWithTitle(
        "Warning", fmt::format("An error occured. {}", secureCodeInfo_->error.value_or("(null)")));
    return;
  }
  if (!secureCodeInfo_->cardSupported) {
    OXUtil::indicator().dismiss();
    session()->returnError(6);
    return;
  }
  loadPageWhenReady();
}

/// The page is asked for on loading, the web view made on appearing; whichever comes second loads.
void OXSecureCodeViewController::loadPageWhenReady() {
  if (!appeared_ || !secureCodeInfo_ || !secureCodeInfo_->cardSupported || !session()) {
    return;
  }
  const std::shared_ptr<WebView>& webView = secureCodewebView_->page();
  if (!webView) {
    log("OrlixKit: Unable to show the issuer's page because the host has no web view.");
    cancelTransaction();
    OXUtil::showAlertWithTitle("Warning", "This device cannot show the page of the card's issuer.");
    return;
  }
  webView->setNavigationDelegate(self());
  const std::string page = IssuerPage::pageFor(*secureCodeInfo_, OXUtil::velloUrl());
  log(page);
  webView->loadHtmlString(page);
}

void OXSecureCodeViewController::didFinishNavigation() {
  if (returned_ || !session()) {
    return;
  }
  const unsigned thisLoad = ++navigations_;
  OXUtil::indicator().dismiss();
  const std::optional<std::string> markup = stringByEvaluatingJavaScriptFromString(
      "document.documentElement.outerHTML", secureCodewebView_->page());
  // Meanwhile another page may have finished, and been read by a call of its own, or the user may
  // have cancelled.
  const bool overtaken = returned_ || thisLoad != navigations_ || !session();
  if (overtaken || !markup || !IssuerPage::isTerminationPage(*markup)) {
    return;
  }
  returned_ = true;
  OXUtil::indicator().show("Please wait");
  paRes_ = IssuerPage::parsePaRes(*markup);
  log(paRes_);
  makePayment();
}

void OXSecureCodeViewController::didFailNavigation(const std::string& description) {
  if (!returned_ && session()) {
    log("OrlixKit: The issuer's page could not be loaded: " + description);
    offerRetry(&OXSecureCodeViewController::loadSecureCodeInfo);
  }
}

void OXSecureCodeViewController::webContentProcessDidTerminate() {
  if (!returned_ && session()) {
    log("OrlixKit: The process behind the issuer's page has died.");
    secureCodewebView_->setPage(nullptr);
    addWebView();
    offerRetry(&OXSecureCodeViewController::loadSecureCodeInfo);
  }
}

std::optional<std::string> OXSecureCodeViewController::stringByEvaluatingJavaScriptFromString(
    const std::string& script, const std::shared_ptr<WebView>& webView) {
  // Shared with the completion, which may come when nobody waits any more.
  const auto result = std::make_shared<std::optional<ScriptResult>>();
  webView->evaluateJavaScript(script, [result](const ScriptResult& given) { *result = given; });
  // Nor is the result of use, should it ever come, to a checkout that has ended.
  Host::current().ports().mainQueue->runUntil(
      [this, result] { return result->has_value() || !session(); });
  if (!result->has_value()) {
    return std::nullopt;
  }
  if (!(*result)->value) {
    log("evaluateJavaScript error : " + (*result)->error);
  }
  return (*result)->value;
}

VelloSecureCodeData OXSecureCodeViewController::secureCodeData() const {
  VelloSecureCodeData data;
  data.PaRes = paRes_;
  data.secureCodeId = secureCodeInfo_->secureCodeId;
  return data;
}

PurchaseRequest OXSecureCodeViewController::purchaseRequest() const {
  const auto current = session();
  PurchaseRequest request;
  request.code = current->codeInfo ? current->codeInfo->code : std::nullopt;
  request.amount = current->amount;
  request.cardId = current->cardId;
  request.cvv = cvv_;
  request.location = OXUtil::getLocation();
  return request;
}

OXSecureCodeViewController::PurchaseCall OXSecureCodeViewController::purchaseCall() const {
  return [request = purchaseRequest(), data = secureCodeData()](KCVelloConnection& connection) {
    return connection.purchaseSecureCode(request, data);
  };
}

void OXSecureCodeViewController::makePayment() {
  if (!session()) {
    return;
  }
  requestInBackground<MTPinResponse>(
      RequestQueue::globalHigh, purchaseCall(),
      [screen = self()](MTPinResponse response) {
        screen->pinResponse_ = std::move(response);
        if (screen->pinResponse_.status != PinResponseStatus::success) {
          OXUtil::indicator().dismiss();
          screen->session()->returnError(2);
          return;
        }
        screen->pollForReceipt();
      },
      [screen = self()] { screen->offerRetry(&OXSecureCodeViewController::makePayment); });
}

void OXSecureCodeViewController::pollForReceipt() {
  ReceiptPollingEnds ends;
  ends.answered = [screen = self()](const MTReceipt& receipt) { screen->receiptArrived(receipt); };
  // The time-out reports nothing: whether the payment went through is not known, and the user
  // leaves by cancel.
  ends.timedOut = [] { OXUtil::indicator().dismiss(); };
  ends.failed = [screen = self()] {
    screen->offerRetry(&OXSecureCodeViewController::pollForReceipt);
  };
  orlix::pollForReceipt(pinResponse_.transactionId, std::move(ends));
}

void OXSecureCodeViewController::receiptArrived(const MTReceipt& receipt) {
  OXUtil::indicator().dismiss();
  const std::string reference = std::to_string(pinResponse_.transactionId);
  if (receipt.status == "SUCCESS") {
    succeeded(reference);
  } else {
    session()->returnPaymentFailedWithTransactionReference(reference);
  }
}

void OXSecureCodeViewController::succeeded(const std::string& reference) {
  if (!session()->mustValidateCard) {
    session()->returnPaymentSucceededWithTransactionReference(reference);
    return;
  }
  settle(true);
  const auto report = [screen = self(), reference] {
    screen->session()->returnPaymentSucceededWithTransactionReference(reference);
  };
  requestInBackground<MTCardValidateResponse>(
      RequestQueue::globalHigh,
      [cardId = session()->cardId](KCVelloConnection& connection) {
        return connection.validateCard(true, cardId, "");
      },
      [report](const MTCardValidateResponse&) { report(); },
      [report] {
        log("Ignoring exception on validateCard");
        report();
      });
}

void OXSecureCodeViewController::cancelTransaction() {
  if (settled_ || !session()) {
    return;
  }
  OXUtil::indicator().dismiss();
  if (secureCodewebView_->page()) {
    secureCodewebView_->page()->stopLoading();
  }
  session()->returnUserDidCancel();
}

}  // namespace orlix
