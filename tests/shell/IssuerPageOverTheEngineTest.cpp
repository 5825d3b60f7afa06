// The 3-D Secure flow over the real web engine and a wallet server: what only the engine can show.

#include <csignal>

#include <boost/json.hpp>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/platform/memory/ScreenUser.h"
#include "orlixkit/platform/ui/WebPageView.h"
#include "sandbox/Sandbox.h"
#include "shell/PageFinger.h"
#include "shell/QtPorts.h"
#include "tests/TemporaryFolder.h"
#include "tests/phone/HostApp.h"
#include "tests/shell/WebStage.h"

namespace orlix::shell {
namespace {

using orlix::test::Heard;
using orlix::test::HostApp;

/// The engine's view, which lets something happen as soon as a page's markup is being read.
class WatchedView : public WebView {
 public:
  WatchedView(std::shared_ptr<WebView> view, std::shared_ptr<MainQueue> queue, Task& meanwhile)
      : drawn(std::static_pointer_cast<QtWebView>(std::move(view))),
        queue_(std::move(queue)),
        meanwhile_(meanwhile) {}
  void setNavigationDelegate(std::weak_ptr<WebViewDelegate> delegate) override {
    drawn->setNavigationDelegate(std::move(delegate));
  }
  void loadHtmlString(const std::string& html) override { drawn->loadHtmlString(html); }
  void loadRequest(const std::string& address) override { drawn->loadRequest(address); }
  void stopLoading() override { drawn->stopLoading(); }
  void evaluateJavaScript(const std::string& script,
                          std::function<void(const ScriptResult&)> completion) override {
    drawn->evaluateJavaScript(script, std::move(completion));
    if (meanwhile_ && script == "document.documentElement.outerHTML") {
      queue_->async(std::exchange(meanwhile_, {}));
    }
  }

  const std::shared_ptr<QtWebView> drawn;

 private:
  std::shared_ptr<MainQueue> queue_;
  Task& meanwhile_;
};

class WatchedViews : public WebViews {
 public:
  WatchedViews(Ports& ports, Task& meanwhile)
      : views_(ports.webViews), queue_(ports.mainQueue), meanwhile_(meanwhile) {}
  std::shared_ptr<WebView> newWebView() override {
    return std::make_shared<WatchedView>(views_->newWebView(), queue_, meanwhile_);
  }

 private:
  std::shared_ptr<WebViews> views_;
  std::shared_ptr<MainQueue> queue_;
  Task& meanwhile_;
};

/// A checkout that stands before an issuer's page, which is drawn in a window without the rest.
class IssuersPage {
 public:
  explicit IssuersPage(const std::string& cardHint) {
    server.start();
    Ports ports = makeQtPorts({.applicationName = "orlix-tests",
                               .stateDirectory = state.path(),
                               .anchorFile = server.anchorPath(),
                               .resourceDirectories = {},
                               .bundles = {},
                               .logTarget = LogTarget::stderrOnly,
                               .location = {{-33.92, 18.42}}},
                              engine);
    ports.log = log;
    queue = ports.mainQueue;
    ports.webViews = std::make_shared<WatchedViews>(ports, meanwhile);
    installOrlixKit(
        std::make_shared<Host>(ports, Deployment{server.base(), server.base(), server.terms()}));
    Host::current().application().showMainWindow(root);
    window.resize(300, 400);
    window.show();
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
  ~IssuersPage() { Host::uninstall(); }
  IssuersPage(const IssuersPage&) = delete;
  IssuersPage& operator=(const IssuersPage&) = delete;

  ScreenUser user() { return ScreenUser(Host::current().application()); }
  std::shared_ptr<QtWebView> page() {
    const auto top = user().topController();
    const auto view =
        top ? std::dynamic_pointer_cast<WebPageView>(top->outletNamed("secureCodewebView"))
            : nullptr;
    const auto watched = view ? std::dynamic_pointer_cast<WatchedView>(view->page()) : nullptr;
    return watched ? watched->drawn : nullptr;
  }
  void runUntil(const std::function<bool()>& done) { queue->runUntil(done); }
  PageFinger finger() {
    return {queue, [this] { return page(); }};
  }
  void awaitForm() {
    runUntil([this] { return page() != nullptr; });
    page()->item()->setParentItem(window.contentItem());
    page()->item()->setSize(window.size());
    finger().wait("#otp");
  }
  void sendCode() {
    finger().type("#otp", "123456");
    finger().click("#submit");
  }
  void killPage() {
    ::kill(static_cast<pid_t>(page()->item()->property("renderProcessPid").toLongLong()), SIGKILL);
  }
  void runUntilAlert() {
    runUntil([this] { return user().topAlert() && user().topAlert()->hasAppeared(); });
    EXPECT_EQ(user().topAlert()->title(), "Connection problem");
  }
  /// Until the shop has heard, and a second payment would have been under way for as long.
  Heard heardInTheEnd() {
    runUntil([this] { return !app->heard.empty(); });
    settle();
    return app->heard;
  }
  void settle() {
    const auto beside = Host::current().ports().webViews->newWebView();
    const auto ear = std::make_shared<Reader>();
    beside->setNavigationDelegate(ear);
    beside->loadRequest(server.terms());
    runUntil([&] { return !ear->heard.empty(); });
  }
  std::int64_t purchases() {
    return boost::json::parse(server.control("GET", "/control/purchases"))
        .at("received")
        .to_number<std::int64_t>();
  }

  sandbox::Sandbox server{{.enrolled = true}};
  orlix::test::TemporaryFolder state;
  std::shared_ptr<MemoryLog> log = std::make_shared<MemoryLog>();
  QQmlEngine engine;
  QQuickWindow window;
  std::shared_ptr<MainQueue> queue;
  std::shared_ptr<ViewController> root = std::make_shared<ViewController>();
  std::shared_ptr<HostApp> app = std::make_shared<HostApp>();
  std::shared_ptr<OXOrlix> facade = OXOrlix::make();
  Task meanwhile;
};

TEST(IssuersPageOverTheEngine, IsPaidOnceHoweverItComesBack) {
  struct Row {
    const char* name;
    const char* card;
  };
  for (const Row& row : {Row{"its termination page loads twice", "0307"},
                         Row{"its termination page has 5 MB", "0310"},
                         Row{"it was sent as HTML, against its own word", "0305"}}) {
    SCOPED_TRACE(row.name);
    IssuersPage run(row.card);
    run.sendCode();
    const Heard heard = run.heardInTheEnd();
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].substr(0, 10), "succeeded ");
    EXPECT_EQ(run.purchases(), 1);
  }
}

TEST(IssuersPageOverTheEngine, IsAskedForAnewWhenItsProcessDies) {
  IssuersPage run("0301");
  run.killPage();
  run.runUntilAlert();
  run.user().pressAlert("Retry");
  run.awaitForm();
  run.sendCode();
  EXPECT_EQ(run.heardInTheEnd().size(), 1u);
  EXPECT_EQ(run.purchases(), 1);
}

TEST(IssuersPageOverTheEngine, MayBeLeftOrLostWhileItIsRead) {
  {
    IssuersPage run("0301");
    run.meanwhile = [&run] { run.user().tap("cancelButton"); };
    run.sendCode();
    EXPECT_EQ(run.heardInTheEnd(), Heard{"cancelled"});
    EXPECT_EQ(run.purchases(), 0);
  }
  {
    IssuersPage run("0301");
    run.meanwhile = [&run] { run.killPage(); };
    run.sendCode();
    run.runUntilAlert();
    EXPECT_EQ(run.app->heard, Heard{});
    run.user().pressAlert("Cancel");
    EXPECT_EQ(run.heardInTheEnd(), Heard{"cancelled"});
    EXPECT_EQ(run.purchases(), 0);
  }
  {
    IssuersPage run("0301");
    bool over = false;
    run.meanwhile = [&] {
      Host::current().shutdown();
      over = true;
    };
    run.sendCode();
    run.runUntil([&] { return over; });
    EXPECT_TRUE(over);
    EXPECT_EQ(run.app->heard, Heard{});
    EXPECT_EQ(run.purchases(), 0);
  }
}

TEST(PageFinger, DoesWhatAFingerCanAndSaysWhatItCannot) {
  IssuersPage run("0301");
  PageFinger finger = run.finger();
  const auto refusal = [](const std::function<void()>& doing) -> std::string {
    try {
      doing();
      return "done";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  };
  run.page()->evaluateJavaScript(
      "document.body.innerHTML = `<input id=t maxlength=4><input id=r readonly><button id=d "
      "disabled>"
      "d</button><p id=\"q'\" onclick='this.remove()'>q</p><p hidden id=h>h</p>`; heard = '';"
      "document.getElementById('t').addEventListener('input', function(e) { heard += e.data; })",
      {});
  const auto asked = [&](const std::string& script) {
    std::string answer = "none";
    run.page()->evaluateJavaScript(script, [&answer](const ScriptResult& result) {
      answer = result.value.value_or(result.error);
    });
    run.runUntil([&] { return answer != "none"; });
    return answer;
  };
  finger.type("#t", "a\"b");
  finger.type("#t", "\xC3\xA9z");
  EXPECT_EQ(asked("document.getElementById('t').value + heard"),
            "a\"b\xC3\xA9"
            "a\"b\xC3\xA9");
  finger.click("[id=\"q'\"]");
  EXPECT_EQ(refusal([&] { finger.click("[id=\"q'\"]"); }), "[id=\"q'\"] is not on the page");
  EXPECT_EQ(refusal([&] { finger.type("#r", "x"); }), "#r takes no text");
  EXPECT_EQ(refusal([&] { finger.click("#d"); }), "#d is disabled");
  EXPECT_EQ(refusal([&] { finger.click("#h"); }), "#h cannot be seen");
  EXPECT_EQ(refusal([&] { finger.click("#["); }).substr(0, 28), "the page refuses #[: SyntaxE");
  EXPECT_EQ(refusal([&] { finger.wait("#["); }).substr(0, 28), "the page refuses #[: SyntaxE");
  EXPECT_EQ(refusal([&] { finger.wait("#none", std::chrono::milliseconds(60)); }),
            "#none has not come");
}

}  // namespace
}  // namespace orlix::shell
