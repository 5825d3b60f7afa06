#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryHost.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

/// Writes down what it hears, with the second at which it came.
struct TimedDelegate : UrlConnectionDelegate {
  explicit TimedDelegate(VirtualClock& time) : clock(time) {}
  bool canAuthenticateAgainstProtectionSpace(AuthenticationMethod method) override {
    note(method == AuthenticationMethod::serverTrust ? "server trust?" : "other method?");
    return method == AuthenticationMethod::serverTrust;
  }
  void didReceiveAuthenticationChallenge(AuthenticationChallenge& challenge) override {
    std::string error;
    ServerTrust* trust = challenge.serverTrust();
    if (trust == nullptr) {
      note("no trust");
      challenge.cancel();
      return;
    }
    trust->setAnchorCertificates({{1, 2, 3}});
    trust->setAnchorCertificatesOnly(false);
    if (trust->evaluate(error)) {
      challenge.useCredentialForTrust();
    } else {
      note(error);
      challenge.cancel();
    }
  }
  void didReceiveResponse(std::int64_t status) override { note(std::to_string(status)); }
  void didReceiveData(std::span<const std::uint8_t> data) override {
    note(std::string(data.begin(), data.end()));
  }
  void didFinishLoading() override { note("finish"); }
  void didFailWithError(const std::string& description) override { note(description); }

  void note(const std::string& what) {
    const auto at = std::chrono::floor<std::chrono::seconds>(clock.steadyNow() - start);
    heard.push_back(std::to_string(at.count()) + " " + what);
  }

  VirtualClock& clock;
  SteadyTime start = clock.steadyNow();
  std::vector<std::string> heard;
};

std::vector<std::string> exchange(MemoryHost& host) {
  const auto delegate = std::make_shared<TimedDelegate>(host.clock());
  UrlRequest request;
  request.url = "https://server.example/vello/pay";
  request.method = "POST";
  request.headers = {{"Content-Type", "application/json"}, {"x-session-token1", "T1"}};
  request.body = SecretBytes(toBytes("{}"));
  const auto connection = host.connections().newConnection(request, delegate);
  connection->setDelegateQueue(host.backgroundQueues().newOperationQueue());
  connection->start();
  host.runFor(10min);
  return delegate->heard;
}

}  // namespace

TEST(ScriptedConnections, AnswerInTimeStepByStep) {
  const auto trusted = std::make_shared<ScriptedTrust>();
  const auto refused = std::make_shared<ScriptedTrust>();
  refused->verdict = [](const ScriptedTrust&, std::string& error) {
    error = "unknown issuer";
    return false;
  };
  const auto missing = std::make_shared<ScriptedTrust>();
  missing->missing = true;
  const auto otherMethod = std::make_shared<ScriptedTrust>();
  otherMethod->method = AuthenticationMethod::other;
  const std::string timedOut = "The request timed out.";
  const std::string untrusted = "0 The server's certificates were refused.";
  struct Row {
    std::string name;
    ServerReply reply;
    std::vector<std::string> heard;
  };
  const Row rows[] = {
      {"pauses add up",
       ServerReply().after(3s).status(200).body("a").after(2s).body("b"),
       {"3 200", "3 a", "5 b", "5 finish"}},
      {"silence before the header", ServerReply().silence(), {"60 " + timedOut}},
      {"silence behind the header",
       ServerReply().after(5s).status(200).silence(),
       {"5 200", "65 " + timedOut}},
      {"every byte starts the time-out anew",
       ServerReply().after(50s).status(200).after(50s).body("a").after(60s).body("b"),
       {"50 200", "100 a", "160 b", "160 finish"}},
      {"pauses without a byte between them count together",
       ServerReply().after(50s).after(50s).status(200),
       {"60 " + timedOut}},
      {"failure behind the header", ServerReply().status(200).fail("reset"), {"0 200", "0 reset"}},
      {"a chain that passes",
       ServerReply().challenge(trusted).status(200),
       {"0 server trust?", "0 200", "0 finish"}},
      {"a chain that does not pass",
       ServerReply().challenge(refused).status(200),
       {"0 server trust?", "0 unknown issuer", untrusted}},
      {"no chain",
       ServerReply().challenge(missing).status(200),
       {"0 server trust?", "0 no trust", untrusted}},
      {"another method is left to the platform",
       ServerReply().challenge(otherMethod).status(200),
       {"0 other method?", "0 200", "0 finish"}},
  };
  for (const Row& row : rows) {
    MemoryHost host;
    host.connections().on("/vello", row.reply);
    EXPECT_EQ(exchange(host), row.heard) << row.name;
    EXPECT_EQ(host.connections().underWay(), 0u) << row.name;
  }
  EXPECT_EQ(trusted->anchors(), (std::vector<Bytes>{{1, 2, 3}}));
  EXPECT_FALSE(trusted->anchorsOnly());
  EXPECT_EQ(otherMethod->evaluations(), 1);
}

TEST(ScriptedConnections, ShowTheScriptWhatWasSentAndFailWithoutOne) {
  MemoryHost host;
  EXPECT_EQ(exchange(host),
            (std::vector<std::string>{"0 ScriptedConnections: there is no script for "
                                      "https://server.example/vello/pay"}));
  host.connections().setLatency(2s);
  host.connections().on("", ServerReply::of(500));
  host.connections().on("/pay", [](const RecordedRequest& request) {
    return ServerReply::of(200, *request.header("x-session-token1") + *request.body);
  });
  host.connections().on("/other", ServerReply::of(404));
  EXPECT_EQ(exchange(host), (std::vector<std::string>{"2 200", "2 T1{}", "2 finish"}));
  EXPECT_EQ(host.requests().size(), 2u);
  EXPECT_EQ(host.connections().requestsTo("/pay").size(), 2u);
  EXPECT_TRUE(host.connections().requestsTo("/other").empty());
  EXPECT_EQ(host.requests()[1].header("x-session-token2"), std::nullopt);
}

TEST(ScriptedConnections, KeepTheTokensFromAnotherHost) {
  MemoryHost host;
  host.connections().on("/vello/pay", [](const RecordedRequest& request) {
    const bool home = request.url.starts_with("https://server.example/");
    return home ? ServerReply().status(307).redirect("https://elsewhere.example/vello/pay")
                : ServerReply::of(200);
  });
  EXPECT_EQ(exchange(host), (std::vector<std::string>{"0 307", "0 200", "0 finish"}));
  ASSERT_EQ(host.requests().size(), 2u);
  EXPECT_EQ(
      host.requests()[1].headers,
      (std::vector<std::pair<std::string, std::string>>{{"Content-Type", "application/json"}}));
  EXPECT_EQ(host.requests()[1].body, "{}");
}

}  // namespace orlix
