// The 3-D Secure flow over the real web engine and a wallet server: what only the engine can show.

#include <csignal>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/platform/memory/ScreenUser.h"
#include "orlixkit/platform/ui/WebPageView.h"
#include "shell/PageFinger.h"
#include "shell/QtPorts.h"
#include "tests/RealPhone.h"
#include "tests/phone/HostApp.h"
#include "tests/shell/WebStage.h"

namespace orlix::shell {
namespace {

using test::Heard;

/// Hears a page before its screen does, and lets something happen while the screen reads the page.
struct Meanwhile : WebViewDelegate {
  void didFinishNavigation() override {
    if (happens) {
      Host::current().ports().mainQueue->async(std::exchange(happens, {}));
    }
    screen->didFinishNavigation();
  }
  void didFailNavigation(const std::string& why) override { screen->didFailNavigation(why); }
  void webContentProcessDidTerminate() override { screen->webContentProcessDidTerminate(); }

  Task happens;
  std::shared_ptr<WebViewDelegate> screen;
};

/// A checkout that stands before an issuer's page, drawn in a window without the rest.
class IssuersPage : public test::RealPhone {
 public:
  explicit IssuersPage(const std::string& cardHint) {
    PosixOptions options;
    options.applicationName = "orlix-tests";
    options.stateDirectory = state.path();
    options.anchorFile = server.anchorPath();
    Ports ports = makeQtPorts(options, stage.engine);
    ports.log = log;
    installOrlixKit(
        std::make_shared<Host>(ports, Deployment{server.base(), server.base(), server.terms()}));
    Host::current().application().showMainWindow(root);
    facade->checkout(
        {.code = "FIXED-25", .apiKey = "key", .system = 1, .controller = root, .delegate = app});
    runUntil([this] { return user().topController()->identifier() == "Product"; });
    for (const CardOption& card : OXSession::currentSession()->cards) {
      if (card.cardHint == cardHint) {
        OXUtil::setLastUsedCardId(card.cardId);
      }
    }
    OXSession::currentSession()->showPurchaseScreen();
    user().tap("proceedButton");
    awaitForm();
  }
  /// Before the stage goes.
  ~IssuersPage() { Host::uninstall(); }

  ScreenUser user() { return ScreenUser(Host::current().application()); }
  std::shared_ptr<QtWebView> page() {
    const auto top = user().topController();
    const auto view = std::dynamic_pointer_cast<WebPageView>(top->outletNamed("secureCodewebView"));
    return view ? std::dynamic_pointer_cast<QtWebView>(view->page()) : nullptr;
  }
  PageFinger finger() {
    return {Host::current().ports().mainQueue, [this] { return page(); }};
  }
  void awaitForm() {
    runUntil([this] { return page() != nullptr; });
    stage.place(*page());
    finger().wait("#otp");
  }
  void sendCode(Task happensWhileItsPageIsRead = {}) {
    meanwhile->happens = std::move(happensWhileItsPageIsRead);
    meanwhile->screen = std::dynamic_pointer_cast<WebViewDelegate>(user().topController());
    page()->setNavigationDelegate(meanwhile);
    finger().type("#otp", "123456");
    finger().click("#submit");
  }
  void killPage() {
    ::kill(static_cast<pid_t>(page()->item()->property("renderProcessPid").toLongLong()), SIGKILL);
  }
  void answerAlert(const std::string& button) {
    runUntil([this] { return user().topAlert() && user().topAlert()->hasAppeared(); });
    EXPECT_EQ(app->heard, Heard{});
    EXPECT_EQ(user().topAlert()->title(), "Connection problem");
    user().pressAlert(button);
  }
  /// What the shop hears, and how many purchases came, when all has come to rest.
  std::pair<std::string, std::int64_t> end() {
    runUntil([this] { return !app->heard.empty(); });
    stage.settle();
    EXPECT_EQ(app->heard.size(), 1u);
    return {app->heard[0].substr(0, 9), counted("purchasesReceived")};
  }

  WebStage stage;
  std::shared_ptr<ViewController> root = std::make_shared<ViewController>();
  std::shared_ptr<test::HostApp> app = std::make_shared<test::HostApp>();
  std::shared_ptr<OXOrlix> facade = OXOrlix::make();
  std::shared_ptr<Meanwhile> meanwhile = std::make_shared<Meanwhile>();
};

const std::pair<std::string, std::int64_t> kPaidOnce{"succeeded", 1};
const std::pair<std::string, std::int64_t> kLeft{"cancelled", 0};

TEST(IssuersPageOverTheEngine, IsPaidOnceHoweverItComesBack) {
  const std::pair<const char*, const char*> rows[] = {
      {"its termination page loads twice", "0307"},
      {"its termination page has 5 MB", "0310"},
      {"it was sent as HTML, against its own word", "0305"}};
  for (const auto& [name, card] : rows) {
    SCOPED_TRACE(name);
    IssuersPage run(card);
    run.sendCode();
    EXPECT_EQ(run.end(), kPaidOnce);
  }
}

TEST(IssuersPageOverTheEngine, MayDieAndIsAskedForAnew) {
  IssuersPage run("0301");
  run.killPage();
  run.answerAlert("Retry");
  run.awaitForm();
  run.sendCode();
  EXPECT_EQ(run.end(), kPaidOnce);
}

TEST(IssuersPageOverTheEngine, MayBeLeftOrLostWhileItIsRead) {
  {
    IssuersPage run("0301");
    run.sendCode([&run] { run.user().tap("cancelButton"); });
    EXPECT_EQ(run.end(), kLeft);
  }
  {
    IssuersPage run("0301");
    run.sendCode([&run] { run.killPage(); });
    run.answerAlert("Cancel");
    EXPECT_EQ(run.end(), kLeft);
  }
  {
    IssuersPage run("0301");
    bool over = false;
    run.sendCode([&over] {
      Host::current().shutdown();
      over = true;
    });
    run.runUntil([&over] { return over; });
    EXPECT_TRUE(over);
    EXPECT_EQ(run.app->heard, Heard{});
    EXPECT_EQ(run.counted("purchasesReceived"), 0);
  }
}

}  // namespace
}  // namespace orlix::shell
