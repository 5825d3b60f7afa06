// The memory ports keep the ports' rules.

#include "orlixkit/platform/memory/MemoryHost.h"
#include "tests/platform/BackgroundQueuesContract.h"
#include "tests/platform/ClockContract.h"
#include "tests/platform/MainQueueContract.h"
#include "tests/platform/UrlConnectionsContract.h"
#include "tests/platform/UserDefaultsContract.h"

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
  UrlConnections& urlConnections() { return host.connections(); }
  std::vector<std::string> logged() { return host.log().lines(); }

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

}  // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, MainQueueContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, BackgroundQueuesContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, ClockContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, UserDefaultsContract, MemoryPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, UrlConnectionsContract, MemoryPlatform);

}  // namespace orlix
