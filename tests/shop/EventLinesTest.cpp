#include <sstream>

#include <gtest/gtest.h>

#include "examples/shop/EventLines.h"
#include "orlixkit/platform/ui/TextField.h"

namespace orlix::shop {
namespace {

class PaymentLikeScreen : public ViewController {
 public:
  PaymentLikeScreen() {
    merchant->setText("Café \"Zwei\"");
    pin->setSecure(true);
    pin->setText("1234");
    group->setHidden(true);
  }
  std::shared_ptr<Label> merchant = outlet<Label>("merchantView");
  std::shared_ptr<View> group = outlet<View>("pinGroupView");
  std::shared_ptr<TextField> pin = outlet<TextField>("pinField", group);
};

TEST(EventLines, AreOneJsonObjectALine) {
  std::ostringstream out;
  EventLines events(out);
  events.screen("Product");
  events.alert("Warning", "Enter ATM PIN", {"Ok"});
  events.progress("Making Payment...");
  events.progress(std::nullopt);
  events.outcome("orlixPaymentSucceededWithTransactionReference", std::string("9007199254740993"));
  events.outcome("orlixError", 4);
  events.outcome("orlixUserDidCancel", {});
  events.state(nullptr, "");
  EXPECT_EQ(out.str(),
            R"({"event":"screen","id":"Product"}
{"event":"alert","title":"Warning","message":"Enter ATM PIN","buttons":["Ok"]}
{"event":"progress","status":"Making Payment..."}
{"event":"progress","status":null}
{"event":"outcome","callback":"orlixPaymentSucceededWithTransactionReference","argument":"9007199254740993"}
{"event":"outcome","callback":"orlixError","argument":4}
{"event":"outcome","callback":"orlixUserDidCancel","argument":null}
{"event":"state","screen":null,"outlets":{}}
)");
}

TEST(EventLines, ShowASecureFieldAsBulletsAndWhatIsInsideSomethingHiddenAsHidden) {
  std::ostringstream out;
  const auto screen = std::make_shared<PaymentLikeScreen>();
  EventLines(out).state(screen.get(), "Product");
  EXPECT_EQ(out.str(), R"({"event":"state","screen":"Product","outlets":{)"
                       R"("merchantView":{"kind":"label","text":"Café \"Zwei\"","hidden":false},)"
                       R"("pinGroupView":{"kind":"view","text":"","hidden":true},)"
                       R"("pinField":{"kind":"field","text":"••••","hidden":true}}})"
                       "\n");
}

}  // namespace
}  // namespace orlix::shop
