#include "tests/phone/EveryOrder.h"

namespace orlix::test {

namespace {

const char* const kWithoutValidation = R"(,"method":"SECURE_CODE")";
const char* const kToBeValidated = R"(,"validated":false,"validationtype":"3DS")";

/// From the moment on at which the issuer's page is asked for, for such a card.
class IssuerFlow : public OrderedFlow {
 public:
  IssuerFlow(const MemoryHostSettings& settings, const std::string& card) : OrderedFlow(settings) {
    touch("SecureCode", "cancelAction", [this] { cancelled(); });
    touch("3DAuthSecureCode", "cancelAction", [this] { cancelled(); });
    const auto loaded = [this] { return page() && page()->hasDelegate() && page()->loads() > 0; };
    event("page returns", loaded, [this] {
      if (goesOn() && page() != returned_.lock()) {
        wantPurchase();
        returned_ = page();
      }
      page()->finishNavigation(R"(<script>Vello.handle("PARES")</script>)");
    });
    event("page fails", loaded, [this] {
      failure_ = "page";
      page()->failNavigation("no route");
    });
    if (card == kToBeValidated) {
      event("page dies", loaded, [this] {
        failure_ = "page";
        page()->killProcess();
      });
    }
    for (const char* path : {"/card/scUrl", "/card/get3dsValidateUrl"}) {
      phone_->wallet.always(path, R"({"cardSupported":true,"secureCodeId":31,"url":"u"})");
    }
    phone_->wallet.cards = {cardJson(5, "4242", card)};
    phone_->showPaymentScreen();
    begin();
    phone_->tap("proceedButton");
  }

 private:
  std::shared_ptr<FakeWebView> page() const { return phone_->host.webViews().last(); }
  void retried(const std::string& path) override {
    if (path.find("/purchase") != std::string::npos || path.find("/auth3Ds") != std::string::npos) {
      wantPurchase();
    }
  }
  void givenUp(const std::string&) override { cancelled(); }
  void replaced() override { returned_ = page(); }

  std::weak_ptr<FakeWebView> returned_;
};

BeginFlow payingWith(const char* card) {
  return [card](const MemoryHostSettings& settings) {
    return std::make_unique<IssuerFlow>(settings, card);
  };
}

}  // namespace

TEST(EveryOrder, OfA3DSecurePaymentPaysOnceForEachReturnOfThePageAndCallsEachHostOnceAtMost) {
  walkEveryOrder("3-D Secure payment", 6, payingWith(kWithoutValidation));
  walkEveryOrder("3-D Secure payment with a card to be validated", 5, payingWith(kToBeValidated));
}

}  // namespace orlix::test
