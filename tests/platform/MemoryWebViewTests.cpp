#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "orlixkit/platform/PageAddress.h"
#include "orlixkit/platform/memory/MemoryHost.h"

namespace orlix {

namespace {

struct FakeWebViewTest : testing::Test, WebViewDelegate {
  void SetUp() override { view->setNavigationDelegate(self); }
  void didFinishNavigation() override { heard += "finished, "; }
  void didFailNavigation(const std::string&) override { heard += "failed, "; }
  void webContentProcessDidTerminate() override { heard += "died, "; }
  void ask(const std::string& script) {
    view->evaluateJavaScript(script, [this](const ScriptResult& result) {
      heard += result.value.value_or(result.error) + ", ";
    });
  }
  /// What came since the last call.
  std::string told() {
    host.runUntilIdle();
    return std::exchange(heard, {});
  }

  const std::shared_ptr<WebViewDelegate> self{this, [](WebViewDelegate*) {}};
  MemoryHost host;
  std::string heard;
  std::shared_ptr<WebView> view = host.webViews().newWebView();
  FakeWebView& fake = *host.webViews().last();
};

TEST_F(FakeWebViewTest, TellsOfEveryAllowedLoadThatWasNeitherStoppedNorReplaced) {
  view->loadRequest("http://localhost:8080/");
  view->loadRequest("http://issuer.example/");
  EXPECT_EQ(told(), "failed, ");
  EXPECT_EQ(fake.loads(), 1);
  view->loadHtmlString("<form>");
  fake.finishNavigation("<p>");
  EXPECT_EQ(heard, "") << "never from inside the call";
  view->stopLoading();
  EXPECT_EQ(told(), "");
  fake.failNavigation("no host");
  view->loadHtmlString("<form>");
  fake.finishNavigation("<p>issuer</p>");
  EXPECT_EQ(told(), "finished, ");
  ask("document.documentElement.outerHTML");
  EXPECT_EQ(told(), "<p>issuer</p>, ");
}

TEST_F(FakeWebViewTest, OwesEveryScriptAnAnswer) {
  fake.holdScripts();
  ask("first");
  EXPECT_EQ(told(), "");
  fake.killProcess();
  EXPECT_EQ(told(), "The page's process has ended., died, ");
  ask("second");
  view->stopLoading();
  EXPECT_EQ(told(), "Loading was stopped., ");
  ask("third");
  view.reset();
  EXPECT_EQ(told(), "The page view was released., ");
  EXPECT_EQ(host.webViews().living(), 0u);
}

TEST(PageAddress, IsEncryptedOrOfThisMachineHoweverItIsWritten) {
  for (const char* allowed :
       {"https://bank.example", "HTTPS://bank.example:8443/a?b#c", "wss://bank.example/push",
        "http://127.0.0.1:80/", "http://LocalHost", "http://[::1]:8080/x", "ws://localhost/"}) {
    EXPECT_TRUE(isPageAddressAllowed(allowed)) << allowed;
  }
  for (const char* refused :
       {"http://bank.example/", "http://127.0.0.1.bank.example/", "http://127.0.0.1@bank.example/",
        "http://bank.example\\@127.0.0.1/", "http://localhost:80@bank.example/", "http://[::1",
        "https://", "https:///path", "file:///etc/passwd", "ftp://127.0.0.1/", "data:text/html,x",
        "javascript:alert(1)", "chrome://version", "view-source:https://bank.example/", ""}) {
    EXPECT_FALSE(isPageAddressAllowed(refused)) << refused;
  }
}

}  // namespace

}  // namespace orlix
