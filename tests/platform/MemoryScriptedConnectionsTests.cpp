#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "tests/platform/UrlConnectionsContract.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

/// What a payment hears, with the second at which it came.
std::vector<std::string> exchange(MemoryHost& host) {
  struct Timed : RecordingDelegate {
    explicit Timed(MemoryHost& memory) : RecordingDelegate(memory.mainQueue()), host(memory) {}
    void didReceiveResponse(std::int64_t status) override { note(std::to_string(status)); }
    void didReceiveData(std::span<const std::uint8_t> data) override {
      note(std::string(data.begin(), data.end()));
    }
    void didFinishLoading() override { note("finish"); }
    void didFailWithError(const std::string& description) override { note(description); }
    void note(const std::string& what) {
      const auto at = std::chrono::floor<std::chrono::seconds>(host.clock().steadyNow() - start);
      events.push_back(std::to_string(at.count()) + " " + what);
    }
    MemoryHost& host;
    const SteadyTime start = host.clock().steadyNow();
  };
  const auto delegate = std::make_shared<Timed>(host);
  UrlRequest request;
  request.url = "https://server.example/vello/pay";
  request.method = "POST";
  request.headers = {{"Content-Type", "application/json"}, {"x-session-token1", "T1"}};
  request.body = SecretBytes(toBytes("{}"));
  const auto connection = host.connections().newConnection(request, delegate);
  connection->setDelegateQueue(host.backgroundQueues().newOperationQueue());
  connection->start();
  host.runFor(10min);
  return delegate->events;
}

TEST(ScriptedConnections, AnswerInTimeStepByStep) {
  const std::string timedOut = "The request timed out.";
  const std::pair<ServerReply, std::vector<std::string>> rows[] = {
      {ServerReply().after(3s).status(200).body("a").after(2s).body("b"),
       {"3 200", "3 a", "5 b", "5 finish"}},
      {ServerReply().silence(), {"60 " + timedOut}},
      {ServerReply().after(5s).status(200).silence(), {"5 200", "65 " + timedOut}},
      {ServerReply().after(50s).status(200).after(50s).body("a").after(60s).body("b"),
       {"50 200", "100 a", "160 b", "160 finish"}},
      {ServerReply().after(50s).after(50s).status(200), {"60 " + timedOut}},
  };
  for (const auto& [reply, heard] : rows) {
    MemoryHost host;
    host.connections().on("/vello", reply);
    EXPECT_EQ(exchange(host), heard);
    EXPECT_EQ(host.connections().underWay(), 0u);
  }
}

TEST(ScriptedConnections, FailWithoutAScriptAndKeepTheTokensFromAnotherHost) {
  MemoryHost host;
  EXPECT_EQ(exchange(host),
            (std::vector<std::string>{"0 ScriptedConnections: there is no script for "
                                      "https://server.example/vello/pay"}));
  host.connections().on("/vello/pay", [](const RecordedRequest& request) {
    return request.url.starts_with("https://server.example/")
               ? ServerReply().status(307).redirect("https://elsewhere.example/vello/pay")
               : ServerReply::of(200);
  });
  EXPECT_EQ(exchange(host), (std::vector<std::string>{"0 307", "0 200", "0 finish"}));
  const RecordedRequest& last = host.requests().back();
  EXPECT_EQ(last.headers, (Fields{{"Content-Type", "application/json"}}));
  EXPECT_EQ(last.body, "{}");
}

}  // namespace

}  // namespace orlix
