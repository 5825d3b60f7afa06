// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ports/WebView.h"

namespace orlix {

inline const std::string kMarkup = "document.documentElement.outerHTML";

/// Records a view's callbacks.
struct PageReader : WebViewDelegate {
  void didFinishNavigation() override {
    heard.emplace_back("finished");
    if (const auto run = std::exchange(onceFinished, {})) {
      run();
    }
  }
  void didFailNavigation(const std::string& why) override { heard.push_back("failed: " + why); }
  void webContentProcessDidTerminate() override { heard.emplace_back("died"); }
  std::vector<std::string> heard;
  std::function<void()> onceFinished;
};

/// Makes web views, and waits for what they tell. Main thread.
class WebViewUser {
 public:
  virtual ~WebViewUser() = default;
  /// Runs until `done` holds, or it has taken too long.
  virtual void runUntil(const std::function<bool()>& done) = 0;
  /// What is heard next of a load that ends some way.
  std::string heardNext() {
    runUntil([this] { return !reader->heard.empty(); });
    if (reader->heard.empty()) {
      return "nothing";
    }
    std::string first = reader->heard.front();
    reader->heard.erase(reader->heard.begin());
    return first;
  }
  /// The script's text, or "failed: " and why.
  std::string ask(WebView& view, const std::string& script) {
    const auto answer = std::make_shared<std::string>("no answer");
    view.evaluateJavaScript(script, [answer](const ScriptResult& result) {
      *answer = result.value ? std::string(result.value->text()) : "failed: " + result.error;
    });
    runUntil([answer] { return *answer != "no answer"; });
    return *answer;
  }
  std::shared_ptr<PageReader> reader = std::make_shared<PageReader>();
};

/// Rules that every web view keeps. `Platform`, made for each test on its main thread, is a
/// WebViewUser that offers
///   std::shared_ptr<WebView> newView();              // its delegate is `reader`
///   std::string address(const std::string& path);    // a page of its site, which says the path
///   std::string deadAddress();                       // no server answers there
///   std::string endlessScript(WebView& view);
///   void kill(WebView& view);                        // ends the process behind the page
///   void leave(WebView& view);                       // the page goes on to another by itself
///   void settle();                                   // lets all that is under way come to rest
template <class Platform>
class WebViewContract : public testing::Test {
 protected:
  Platform platform;
  std::vector<std::string>& heard = platform.reader->heard;

  bool says(WebView& view, const std::string& text) {
    return platform.ask(view, kMarkup).find(text) != std::string::npos;
  }
};
TYPED_TEST_SUITE_P(WebViewContract);

TYPED_TEST_P(WebViewContract, TellsOfEveryLoadOnceAndAnswersForThePageThatStands) {
  auto& user = this->platform;
  const auto view = user.newView();
  EXPECT_EQ(user.ask(*view, kMarkup), "failed: There is no page.");
  view->loadHtmlString("<p>first</p>");
  EXPECT_TRUE(this->heard.empty()) << "never from inside the call";
  EXPECT_EQ(user.heardNext(), "finished");
  EXPECT_TRUE(this->says(*view, "first"));
  view->loadRequest(user.address("/second"));
  EXPECT_EQ(user.heardNext(), "finished");
  for (const char* address :
       {"file:///etc/passwd", "http://bank.example/", "http://127.0.0.1.bank.example/",
        "http://127.0.0.1@bank.example/", "http://bank.example\\@127.0.0.1/",
        "http://localhost:80@bank.example/", "http://[::1", "https://", "ftp://127.0.0.1/",
        "view-source:https://bank.example/", "javascript:1", "chrome://version", "data:text/html,x",
        "no address", ""}) {
    view->loadRequest(address);
    EXPECT_TRUE(this->heard.empty());
    EXPECT_EQ(user.heardNext(), "failed: The address " + std::string(address) + " is not secure.");
    EXPECT_TRUE(this->says(*view, "/second")) << "what it showed before";
  }
  view->loadRequest(user.deadAddress());
  EXPECT_EQ(user.heardNext().substr(0, 8), "failed: ");
  for (const char* address : {"http://LocalHost:1/", "http://127.0.0.1:1", "http://[::1]:1/x",
                              "HTTPS://127.0.0.1:1/a?b#c"}) {
    view->loadRequest(address);
    EXPECT_EQ(user.heardNext().find("is not secure"), std::string::npos) << address;
  }
  user.settle();
  EXPECT_TRUE(this->heard.empty());
}

TYPED_TEST_P(WebViewContract, TellsNothingOfALoadThatWasStoppedReplacedOrReleased) {
  auto& user = this->platform;
  auto view = user.newView();
  view->loadRequest(user.address("/stopped"));
  view->stopLoading();
  user.settle();
  view->loadRequest(user.address("/replaced"));
  view->loadRequest(user.address("/last"));
  EXPECT_EQ(user.heardNext(), "finished");
  EXPECT_TRUE(this->says(*view, "/last"));
  user.leave(*view);
  EXPECT_EQ(user.heardNext(), "finished");
  view->stopLoading();
  user.leave(*view);
  user.settle();
  EXPECT_TRUE(this->heard.empty()) << "of a page that goes on after the stop";
  view->loadRequest(user.address("/released"));
  view.reset();
  user.settle();
  EXPECT_TRUE(this->heard.empty());
}

TYPED_TEST_P(WebViewContract, AnswersForAScriptWhateverBecomesOfItsPage) {
  using Heard = std::vector<std::string>;
  auto& user = this->platform;
  struct Row {
    const char* name;
    std::function<void(std::shared_ptr<WebView>&)> end;
    std::string answer;
    Heard heard;
  };
  const Row rows[] = {
      {"released", [](auto& view) { view.reset(); }, "The page view was released.", {}},
      {"stopped", [](auto& view) { view->stopLoading(); }, "Loading was stopped.", {}},
      {"left",
       [&](auto& view) { view->loadRequest(user.address("/")); },
       "The page was left before it answered.",
       {"finished"}},
      {"its process died",
       [&](auto& view) { user.kill(*view); },
       "The page's process has ended.",
       {"died"}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    this->heard.clear();
    std::shared_ptr<WebView> view = user.newView();
    Heard answers;
    // From inside a callback, as a screen does that reads its page before it goes on.
    user.reader->onceFinished = [&] {
      this->heard.clear();
      view->evaluateJavaScript(user.endlessScript(*view), [&](const ScriptResult& result) {
        answers.push_back(result.value ? std::string(result.value->text()) : result.error);
      });
      row.end(view);
      EXPECT_TRUE(answers.empty()) << "never from inside the call";
      user.runUntil([&] { return !answers.empty() && this->heard.size() >= row.heard.size(); });
    };
    view->loadHtmlString("<p>");
    user.runUntil([&] { return !answers.empty(); });
    user.settle();
    EXPECT_EQ(answers, Heard{row.answer});
    EXPECT_EQ(this->heard, row.heard);
    if (row.heard == Heard{"died"}) {
      this->heard.clear();
      view->loadHtmlString("<p>");
      EXPECT_EQ(user.heardNext(), "finished") << "in a process of its own again";
    }
  }
}

REGISTER_TYPED_TEST_SUITE_P(WebViewContract, TellsOfEveryLoadOnceAndAnswersForThePageThatStands,
                            TellsNothingOfALoadThatWasStoppedReplacedOrReleased,
                            AnswersForAScriptWhateverBecomesOfItsPage);

}  // namespace orlix
