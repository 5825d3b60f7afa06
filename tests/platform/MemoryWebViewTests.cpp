#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/PageAddress.h"
#include "orlixkit/platform/memory/MemoryHost.h"

namespace orlix {

namespace {

const std::string kMarkup = "document.documentElement.outerHTML";

struct Reader : WebViewDelegate {
  void didFinishNavigation() override { heard.emplace_back("finished"); }
  void didFailNavigation(const std::string& description) override { heard.push_back(description); }
  void webContentProcessDidTerminate() override { heard.emplace_back("died"); }
  std::vector<std::string> heard;
};

struct Page {
  Page() { view->setNavigationDelegate(reader); }
  void ask(const std::string& script) {
    view->evaluateJavaScript(script, [this](const ScriptResult& result) {
      results.push_back(result.value.value_or("failed: " + result.error));
    });
  }
  std::vector<std::string> answers() {
    host.runUntilIdle();
    std::vector<std::string> all;
    all.swap(results);
    return all;
  }
  std::vector<std::string> heard() {
    host.runUntilIdle();
    std::vector<std::string> all;
    all.swap(reader->heard);
    return all;
  }

  MemoryHost host;
  std::shared_ptr<Reader> reader = std::make_shared<Reader>();
  std::shared_ptr<WebView> view = host.webViews().newWebView();
  FakeWebView& fake = *host.webViews().last();
  std::vector<std::string> results;
};

}  // namespace

TEST(FakeWebView, PlaysASiteThatReactsToEveryLoad) {
  Page page;
  page.host.webViews().onLoad = [](FakeWebView& view) {
    view.finishNavigation(view.html().empty() ? "<p>terms</p>" : "<p>issuer</p>");
  };
  page.view->loadHtmlString("<form>");
  EXPECT_TRUE(page.reader->heard.empty()) << "never from inside the call";
  EXPECT_EQ(page.heard(), (std::vector<std::string>{"finished"}));
  page.ask(kMarkup);
  EXPECT_EQ(page.answers(), (std::vector<std::string>{"<p>issuer</p>"}));
  page.view->loadRequest("https://www.example/terms/tavlo.html");
  EXPECT_EQ(page.fake.html(), "");
  EXPECT_EQ(page.heard(), (std::vector<std::string>{"finished"}));
  page.ask(kMarkup);
  EXPECT_EQ(page.answers(), (std::vector<std::string>{"<p>terms</p>"}));
  EXPECT_EQ(page.fake.loads(), 2);
}

TEST(FakeWebView, TellsNothingOfALoadThatWasStoppedOrReplaced) {
  Page page;
  page.view->loadHtmlString("<form>");
  page.fake.finishNavigation("<p>");
  page.view->stopLoading();
  EXPECT_TRUE(page.heard().empty());
  page.fake.failNavigation("no host");
  page.view->loadHtmlString("<form>");
  page.fake.finishNavigation("<p>");
  EXPECT_EQ(page.heard(), (std::vector<std::string>{"finished"}));
}

TEST(FakeWebView, LoadsSecureAndLoopbackAddressesOnly) {
  Page page;
  page.view->loadRequest("https://127.0.0.1:4433/vello/secure_code.jsp");
  page.view->loadRequest("http://localhost:8080/");
  EXPECT_TRUE(page.heard().empty());
  EXPECT_EQ(page.fake.loads(), 2);
  page.view->loadRequest("http://issuer.example/");
  page.view->loadRequest("file:///etc/passwd");
  EXPECT_EQ(page.heard().size(), 2u);
  EXPECT_EQ(page.fake.loads(), 2);
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

TEST(FakeWebView, OwesEveryScriptAnAnswer) {
  Page page;
  page.fake.onScript = [](const std::string& script) {
    return script == "broken" ? ScriptResult{std::nullopt, "syntax"} : ScriptResult{"2", {}};
  };
  page.ask("1 + 1");
  page.ask("broken");
  EXPECT_EQ(page.answers(), (std::vector<std::string>{"2", "failed: syntax"}));

  page.fake.holdScripts();
  page.ask("1 + 1");
  EXPECT_TRUE(page.answers().empty());
  page.fake.releaseScripts();
  EXPECT_EQ(page.answers(), (std::vector<std::string>{"2"}));

  page.fake.holdScripts();
  page.ask(kMarkup);
  page.fake.killProcess();
  EXPECT_EQ(page.answers(), (std::vector<std::string>{"failed: The page's process has ended."}));
  EXPECT_EQ(page.heard(), (std::vector<std::string>{"died"}));
  page.ask(kMarkup);
  page.view->stopLoading();
  EXPECT_EQ(page.answers(), (std::vector<std::string>{"failed: Loading was stopped."}));
  page.ask(kMarkup);
  page.view.reset();
  EXPECT_EQ(page.answers(), (std::vector<std::string>{"failed: The page view was released."}));
  EXPECT_EQ(page.host.webViews().living(), 0u);
}

}  // namespace orlix
