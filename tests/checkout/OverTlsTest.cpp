#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <boost/json.hpp>
#include <gmock/gmock.h>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/platform/memory/MemoryLog.h"
#include "orlixkit/platform/memory/ScreenUser.h"
#include "orlixkit/platform/posix/PosixPorts.h"
#include "sandbox/Sandbox.h"
#include "tests/checkout/Phone.h"

namespace orlix::test {

namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kPin = "987654321";

/// The real ports and a real server: TLS, threads, a database file.
class OverTls : public testing::Test {
 protected:
  OverTls() {
    std::string pattern = std::filesystem::temp_directory_path() / "orlix-checkout-XXXXXX";
    state_ = mkdtemp(pattern.data());
    sandbox_.start();
    Ports ports = makePosixPorts({.applicationName = "checkout-test",
                                  .stateDirectory = state_,
                                  .anchorFile = sandbox_.anchorPath(),
                                  .resourceDirectories = {},
                                  .bundles = {},
                                  .location = {}});
    ports.log = log_;
    installOrlixKit(std::make_shared<Host>(
        ports, Deployment{sandbox_.base(), sandbox_.base(), sandbox_.terms()}));
    Host::current().application().showMainWindow(root_);
    user_ = std::make_unique<ScreenUser>(Host::current().application());
  }
  ~OverTls() override {
    Host::uninstall();
    std::filesystem::remove_all(state_);
  }

  /// Shows the payment screen with the card whose number ends so.
  void choose(const std::string& code, const std::string& cardHint) {
    facade_->checkout({.code = code,
                       .apiKey = "key",
                       .system = kTestSystem,
                       .controller = root_,
                       .delegate = app_});
    runUntil([this] { return user_->topController()->identifier() == "Product"; });
    for (const CardOption& card : OXSession::currentSession()->cards) {
      if (card.cardHint == cardHint) {
        OXUtil::setLastUsedCardId(card.cardId);
      }
    }
    OXSession::currentSession()->showPurchaseScreen();
    ASSERT_THAT(user_->topController()->outletNamed("cardHintView")->shownText(),
                HasSubstr(cardHint));
  }
  void runUntil(const std::function<bool()>& done) {
    Host::current().ports().mainQueue->runUntil(done);
  }
  Heard pay() {
    user_->tap("proceedButton");
    runUntil([this] { return !app_->heard.empty() || user_->topAlert(); });
    return app_->heard;
  }
  boost::json::object control(const std::string& path) {
    return boost::json::parse(sandbox_.control("GET", path)).as_object();
  }
  std::string everyFileOfTheState() const {
    std::string all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(state_)) {
      std::ifstream file(entry.path(), std::ios::binary);
      all.append(std::istreambuf_iterator<char>(file), {});
    }
    return all;
  }

  std::filesystem::path state_;
  sandbox::Sandbox sandbox_{{.enrolled = true}};
  std::shared_ptr<MemoryLog> log_ = std::make_shared<MemoryLog>();
  std::shared_ptr<ViewController> root_ = std::make_shared<ViewController>();
  std::shared_ptr<HostApp> app_ = std::make_shared<HostApp>();
  std::shared_ptr<OXOrlix> facade_ = OXOrlix::make();
  std::unique_ptr<ScreenUser> user_;
};

}  // namespace

TEST_F(OverTls, APinCheckoutTakesOneHandshakeAndLeavesNoTraceOfThePin) {
  choose("BIG-REFERENCE", "7777");
  user_->type("pinField", kPin);
  EXPECT_THAT(pay(), testing::ElementsAre(HasSubstr("succeeded 90071992547409")));

  EXPECT_EQ(control("/control/state").at("handshakes"), 1);
  const std::string purchases = boost::json::serialize(control("/control/purchases"));
  EXPECT_THAT(purchases, HasSubstr("pinBlock"));
  EXPECT_THAT(purchases, Not(HasSubstr(kPin)));
  EXPECT_FALSE(log_->contains(kPin)) << log_->text();
  EXPECT_FALSE(everyFileOfTheState().empty());
  EXPECT_THAT(everyFileOfTheState(), Not(HasSubstr(kPin)));
}

TEST_F(OverTls, ACvvCheckoutPaysTheTypedAmount) {
  choose("OPEN", "3333");
  user_->type("inputAmountField", "1250");
  user_->type("cvvField", "1234");
  EXPECT_THAT(pay(), testing::ElementsAre(HasSubstr("succeeded ")));
  EXPECT_THAT(boost::json::serialize(control("/control/purchases")), HasSubstr("12.50"));
}

TEST_F(OverTls, AWrongPinAndADeclinedPaymentEndInError2) {
  choose("FIXED-25", "1111");
  user_->type("pinField", "9999");
  EXPECT_EQ(pay(), Heard{"error 2"});
}

TEST_F(OverTls, AForgottenSessionIsHealedWithOnePaidPurchase) {
  choose("FORGET", "1111");
  user_->type("pinField", "1234");
  EXPECT_THAT(pay(), testing::ElementsAre(HasSubstr("succeeded ")));
  EXPECT_EQ(control("/control/purchases").at("paid"), 1);
}

TEST_F(OverTls, AServerThatHangsUpOnThePurchaseIsNotAskedAgainBehindTheUsersBack) {
  choose("HANG-UP", "1111");
  user_->type("pinField", "1234");
  EXPECT_EQ(pay(), Heard{});
  EXPECT_EQ(user_->topAlert()->title(), "Connection problem");
  EXPECT_EQ(control("/control/purchases").at("received"), 1);
}

TEST_F(OverTls, TheHostsEndWhileAPurchaseIsUnderWayComesAtOnce) {
  choose("SILENCE", "1111");
  user_->type("pinField", "1234");
  user_->tap("proceedButton");
  const auto begun = std::chrono::steady_clock::now();
  Host::uninstall();
  // A tenth of a second on an idle machine.
  EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(2));
  EXPECT_TRUE(app_->heard.empty());
}

}  // namespace orlix::test
