// SPDX-License-Identifier: Apache-2.0

// The memory ports keep the ports' rules.

#include "orlixkit/testing/MemoryHost.h"
#include "tests/ports/BackgroundQueuesContract.h"
#include "tests/ports/BundleContract.h"
#include "tests/ports/ClockContract.h"
#include "tests/ports/DeviceContract.h"
#include "tests/ports/HttpClientContract.h"
#include "tests/ports/LocationManagerContract.h"
#include "tests/ports/MainQueueContract.h"
#include "tests/ports/SystemLogContract.h"
#include "tests/ports/UserDefaultsContract.h"
#include "tests/ports/WebViewContract.h"

namespace orlix {

namespace {

ServerReply replyFor(const ScriptedAnswer& answer) {
  ServerReply reply;
  if (answer.end != AnswerEnd::beforeHeader && answer.end != AnswerEnd::mute) {
    reply.status(answer.status);
    if (!answer.body.empty()) {
      reply.body(answer.body);
    }
    if (!answer.location.empty()) {
      reply.redirect(answer.location);
    }
  }
  if (answer.end == AnswerEnd::beforeHeader || answer.end == AnswerEnd::insideBody) {
    reply.fail("The connection was lost.");
  } else if (answer.end != AnswerEnd::complete) {
    reply.silence();
  }
  return reply;
}

struct MemoryPlatform {
  MemoryHost host;
  MainQueue& mainQueue() { return host.mainQueue(); }
  BackgroundQueues& backgroundQueues() { return host.backgroundQueues(); }
  Clock& clock() { return host.clock(); }
  UserDefaults& userDefaults() { return *host.userDefaults(); }
  HttpClient& httpClient() { return host.connections(); }
  std::vector<std::string> logged() { return host.log().lines(); }
  SystemLog& log() { return host.log(); }
  Device& device() { return host.device(); }
  LocationManager& locationManager() { return host.locationManager(); }
  void bringFix() { host.locationManager().sendFixes({LocationFix{}}); }
  Bundle& bundle() {
    host.bundle().add("a", "cer", toBytes("one"));
    host.bundle().add("a", "plist", toBytes("two"));
    host.bundle().add("b", "cer", {});
    return host.bundle();
  }

  void script(const std::string& path, const ScriptedAnswer& answer) {
    host.connections().on(path, replyFor(answer));
  }
  std::vector<SeenRequest> seen() {
    std::vector<SeenRequest> all;
    for (const RecordedRequest& request : host.requests()) {
      all.push_back({request.method, request.path(), request.headers, request.body.value_or("")});
    }
    return all;
  }
  std::string address(const std::string& path) { return "https://server.example" + path; }
  std::string foreign(const std::string& path) { return "https://elsewhere.example" + path; }
};

/// Web views whose site shows what it was asked for.
class MemoryPages : public WebViewUser {
 public:
  MemoryPages() {
    host_.webViews().onLoad = [this](FakeWebView& view) {
      if (view.address() == deadAddress()) {
        view.failNavigation("no route");
      } else {
        view.finishNavigation(view.html() + view.address());
      }
    };
  }
  void runUntil(const std::function<bool()>& done) override { host_.mainQueue().runUntil(done); }
  void settle() { host_.runUntilIdle(); }
  std::shared_ptr<WebView> newView() {
    auto view = host_.webViews().newWebView();
    view->setNavigationDelegate(reader);
    return view;
  }
  std::string address(const std::string& path) { return "https://server.example" + path; }
  std::string deadAddress() { return "https://unreachable.example/"; }
  std::string endlessScript(WebView& view) {
    static_cast<FakeWebView&>(view).holdScripts();
    return "for (;;);";
  }
  void leave(WebView& view) { static_cast<FakeWebView&>(view).finishNavigation("<p>next"); }
  void kill(WebView& view) { static_cast<FakeWebView&>(view).killProcess(); }

 private:
  MemoryHost host_;
};

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, MainQueueContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, BackgroundQueuesContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, ClockContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, UserDefaultsContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, LocationManagerContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, BundleContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, DeviceContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, SystemLogContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, HttpClientContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, WebViewContract, MemoryPages);

}  // namespace orlix
