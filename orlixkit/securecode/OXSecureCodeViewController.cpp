// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/securecode/OXSecureCodeViewController.h"

#include <chrono>
#include <utility>

#include <fmt/format.h>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/host/Host.h"
#include "orlixkit/securecode/IssuerPage.h"
#include "orlixkit/securecode/PageReading.h"

namespace orlix {

namespace {

constexpr std::chrono::seconds kReadingLimit{10};
constexpr const char* kNoAnswer = "no answer within 10 seconds";
constexpr const char* kPleaseWait = "Please wait";

}  // namespace

OXSecureCodeViewController::OXSecureCodeViewController()
    : Payment(*this, kPleaseWait, RequestQueue::globalHigh),
      secureCodewebView_(outlet<WebPageView>("secureCodewebView")),
      cancelButton_(button("cancelButton", "CANCEL", "cancelButton")) {
  action("cancelButton", [this] { cancelTransaction(); });
  action("cancelAction", [this] { cancelTransaction(); });
}

std::shared_ptr<OXSecureCodeViewController> OXSecureCodeViewController::self() {
  return std::static_pointer_cast<OXSecureCodeViewController>(shared_from_this());
}

void OXSecureCodeViewController::viewDidLoad() {
  OrlixViewController::viewDidLoad();
  takePaymentOf(*session());
  loadSecureCodeInfo();
}

void OXSecureCodeViewController::takePaymentOf(OXSession& session) {
  purchaseRequest_.code = session.codeInfo ? session.codeInfo->code : std::nullopt;
  purchaseRequest_.amount = session.amount;
  purchaseRequest_.cardId = session.cardId;
  // Moved, not copied: the session outlives the flow, this screen does not.
  purchaseRequest_.cvv = std::exchange(session.cvv, std::nullopt);
  mustValidateCard_ = session.mustValidateCard;
}

void OXSecureCodeViewController::viewDidAppear() {
  showProgress(kPleaseWait);
  OrlixViewController::viewDidAppear();
  appeared_ = true;
  if (isLive()) {
    addWebView();
    pageRequestEnded();
  }
}

void OXSecureCodeViewController::addWebView() {
  const auto& webViews = Host::current().ports().webViews;
  if (webViews) {
    secureCodewebView_->setPage(webViews->newWebView());
    secureCodewebView_->setFrame(view()->frame());
  }
}

void OXSecureCodeViewController::loadSecureCodeInfo() {
  pageState_ = PageState::asking;
  answered_ = false;
  pageShown_ = false;
  const unsigned turn = ++turn_;
  if (const auto& page = secureCodewebView_->page()) {
    page->stopLoading();
  }
  if (appeared_) {
    showProgress(kPleaseWait);
  }
  const auto screen = self();
  const auto ended = [screen, turn](std::optional<MTSecureCodeURLResponse> info) {
    if (screen->turn_ == turn) {
      screen->answered_ = true;
      screen->secureCodeInfo_ = std::move(info);
      screen->pageRequestEnded();
    }
  };
  send<MTSecureCodeURLResponse>({.kind = "page",
                                 .queue = RequestQueue::globalHigh,
                                 .ask = pageRequest(),
                                 .answered = ended,
                                 .failed = [ended] { ended(std::nullopt); }});
}

OXSecureCodeViewController::PageRequest OXSecureCodeViewController::pageRequest() const {
  return [cardId = purchaseRequest_.cardId, code = purchaseRequest_.code,
          amount = purchaseRequest_.amount](KCVelloConnection& connection) {
    return connection.getSecureCodeUrl(cardId, code, amount);
  };
}

/// The page is asked for on loading, the web view made on appearing; the later of the two goes on.
void OXSecureCodeViewController::pageRequestEnded() {
  if (!appeared_ || !std::exchange(answered_, false)) {
    return;
  }
  if (secureCodeInfo_) {
    secureCodeInfoLoaded();
  } else {
    offerPageRetry();
  }
}

void OXSecureCodeViewController::secureCodeInfoLoaded() {
  if (secureCodeInfo_->hasError) {
    endWithWarning("An error occured. " + secureCodeInfo_->error.value_or("(null)"));
  } else if (!secureCodeInfo_->cardSupported) {
    endWith([](OXSession& session) { session.returnError(6); });
  } else if (IssuerPage::isMissing(*secureCodeInfo_)) {
    endWithWarning("The issuer sent no page.");
  } else if (!secureCodewebView_->page()) {
    log("OrlixKit: Unable to show the issuer's page because the host has no web view.");
    endWithWarning("This device cannot show the page of the card's issuer.");
  } else {
    loadPage();
  }
}

void OXSecureCodeViewController::endWithWarning(const std::string& message) {
  pageState_ = PageState::over;
  if (!hideProgress()) {
    return;
  }
  const Task cancel = [screen = self()] { screen->cancelTransaction(); };
  const auto alert = std::make_shared<AlertController>("Warning", message);
  alert->addAction({"Ok", AlertActionStyle::cancel, cancel});
  alert->onLost = cancel;
  OXUtil::styleAlertController(*alert);
  session()->keepTrackOf(alert);
  present(alert, true);
}

void OXSecureCodeViewController::loadPage() {
  pageState_ = PageState::showing;
  const std::shared_ptr<WebView> page = secureCodewebView_->page();
  page->setNavigationDelegate(self());
  const std::string html = IssuerPage::pageFor(*secureCodeInfo_, OXUtil::velloUrl());
  log(html);
  page->loadHtmlString(html);
}

bool OXSecureCodeViewController::showsPage() const {
  return pageState_ == PageState::showing && isLive();
}

// Only a page that has been loaded whole is read. A page whose own script leaves it before is never
// reported, by no web engine, and so would a termination page be that did so: nothing is paid then,
// and the user leaves by CANCEL. The wallet server's page does no such thing; to read pages half
// loaded instead could take a PaRes that has been cut short.
void OXSecureCodeViewController::didFinishNavigation() {
  if (!showsPage()) {
    return;
  }
  // Another page may have finished, and been read by a call of its own, or the user may have
  // cancelled or asked for another page.
  const auto isOvertaken = [this, turn = ++turn_] { return !showsPage() || turn != turn_; };
  session()->connectionAlerts().dropUnwanted();  // the one of a page that failed before
  static_cast<void>(hideProgress());
  if (isOvertaken()) {
    return;
  }
  const ScriptResult read =
      readPage("document.documentElement.outerHTML", secureCodewebView_->page());
  if (isOvertaken()) {
    return;
  }
  if (!read.value) {
    pageShown_ = pageShown_ || read.error == kNoAnswer;  // busy, but there
  } else if (IssuerPage::isTerminationPage(read.value->text())) {
    terminationPageSeen(read.value->text());
  } else {
    pageShown_ = pageShown_ || !IssuerPage::isLaunchForm(read.value->text());
  }
}

void OXSecureCodeViewController::terminationPageSeen(std::string_view markup) {
  pageState_ = PageState::over;
  secureCodeData_.PaRes = IssuerPage::parsePaRes(markup);
  secureCodeData_.secureCodeId = secureCodeInfo_->secureCodeId;
  log(secureCodeData_.PaRes->text());
  purchaseRequest_.location = OXUtil::getLocation();
  makePayment();
}

void OXSecureCodeViewController::didFailNavigation(const std::string& description) {
  if (showsPage()) {
    log("OrlixKit: The issuer's page could not be loaded: " + description);
    offerPageRetry();
  }
}

void OXSecureCodeViewController::webContentProcessDidTerminate() {
  if (showsPage()) {
    log("OrlixKit: The process behind the issuer's page has died.");
    pageState_ = PageState::asking;  // until the user retries
    pageShown_ = false;
    secureCodewebView_->setPage(nullptr);
    addWebView();
    offerPageRetry();
  }
}

void OXSecureCodeViewController::offerPageRetry() {
  offerRetryOf([screen = self()] { screen->loadSecureCodeInfo(); });
}

/// One at a time. Cancel leaves a page that is shown to the user. An alert that is lost offers
/// nothing any more; the user leaves by CANCEL.
ConnectionAlert OXSecureCodeViewController::failureAlert() {
  const auto screen = self();
  return {.cancel =
              [screen] {
                if (screen->pageState_ == PageState::over || !screen->pageShown_) {
                  screen->cancelTransaction();
                }
              },
          .lost = [] {},
          .isWanted =
              [screen, turn = turn_, pageState = pageState_] {
                return screen->turn_ == turn && screen->pageState_ == pageState;
              },
          .source = identifier()};
}

std::optional<SecretString> OXSecureCodeViewController::stringByEvaluatingJavaScriptFromString(
    const std::string& script, const std::shared_ptr<WebView>& webView) {
  return readPage(script, webView).value;
}

ScriptResult OXSecureCodeViewController::readPage(const std::string& script,
                                                  const std::shared_ptr<WebView>& webView) {
  ScriptResult result = evaluateAndWait(webView, script, kReadingLimit, [this] {
                          return !isLive();
                        }).value_or(ScriptResult{std::nullopt, kNoAnswer});
  if (!result.value && isLive()) {
    log("evaluateJavaScript error : " + result.error);
  }
  return result;
}

OXSecureCodeViewController::PurchaseCall OXSecureCodeViewController::purchaseCall() const {
  return [request = purchaseRequest_, data = secureCodeData_](KCVelloConnection& connection) {
    return connection.purchaseSecureCode(request, data);
  };
}

void OXSecureCodeViewController::makePayment() {
  pay(purchaseCall(), [screen = self()] { screen->makePayment(); });
}

void OXSecureCodeViewController::purchaseAnswered() {
  purchaseRequest_.cvv.reset();
  secureCodeData_.PaRes.reset();
}

/// Reports nothing: whether the payment went through is not known, and the user leaves by CANCEL.
void OXSecureCodeViewController::receiptTimedOut() { static_cast<void>(hideProgress()); }

void OXSecureCodeViewController::validateCard(Task done, Task failed) {
  requestInBackground<MTCardValidateResponse>(
      RequestQueue::globalHigh,
      [cardId = purchaseRequest_.cardId](KCVelloConnection& connection) {
        return connection.validateCard(true, cardId, "");
      },
      [done = std::move(done)](const MTCardValidateResponse&) { done(); }, std::move(failed));
}

void OXSecureCodeViewController::succeeded(const std::string& reference) {
  const Task report = [screen = self(), reference] { screen->Payment::succeeded(reference); };
  if (!mustValidateCard_) {
    report();
    return;
  }
  paidReference_ = reference;
  validateCard(report, [report] {
    log("Ignoring exception on validateCard");
    report();
  });
}

void OXSecureCodeViewController::cancelTransaction() {
  if (!hideProgress()) {
    return;
  }
  const auto current = session();
  if (paidReference_) {
    current->returnPaymentSucceededWithTransactionReference(*paidReference_);
    return;
  }
  purchaseRequest_.cvv.reset();
  if (const auto& page = secureCodewebView_->page()) {
    page->stopLoading();
  }
  current->returnUserDidCancel();
}

}  // namespace orlix
