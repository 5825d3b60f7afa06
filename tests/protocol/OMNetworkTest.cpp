// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "tests/protocol/ClientAndServer.h"

namespace orlix::test {

namespace {

const std::string kTimedOut =
    "OMNetwork request timed out after 60 seconds: https://live.example/vello/x";

struct Posted {
  std::int64_t code = -1;
  std::optional<std::string> body;
  Duration took{};
};

/// Posts "{}" with these tokens and waits for the end.
Posted post(MemoryHost& host, std::optional<std::string> token1 = {},
            std::optional<std::string> token2 = {}, std::function<bool()> mayBeSent = {}) {
  Posted posted;
  host.backgroundQueues().global(QualityOfService::high, [&] {
    DataStore store(SecretBytes(16, 0));
    store.sessionId = token1;
    store.sessionId2 = token2;
    const SteadyTime begin = host.clock().steadyNow();
    const Bytes body = toBytes("{}");
    const NetworkResult result =
        OMNetwork().post("https://live.example/vello/x", SecretBytes(body), store, mayBeSent);
    posted.took = host.clock().steadyNow() - begin;
    if (result.payload) {
      posted.body.emplace(result.payload->reveal().begin(), result.payload->reveal().end());
    }
    posted.code = result.responseCode;
  });
  host.runUntil([&] { return posted.code != -1; });
  return posted;
}

}  // namespace

TEST(OMNetwork, TheOutcomeShowsInCodeBodyAndLog) {
  struct Case {
    std::string name;
    ServerReply reply;
    std::int64_t code;
    std::optional<std::string> body;
    std::string logged;
    Duration took;
  };
  const std::string tooLong = "OMNetwork error. The answer is longer than 16777216 bytes.";
  const std::string longest(OMNetwork::kLongestAnswer, ' ');
  const auto header = [] { return ServerReply().status(200); };
  ServerReply trickle = header();
  for (int i = 0; i < 100; ++i) {
    trickle.after(1s).body("x");
  }
  const auto moved = [](const std::string& to) {
    return ServerReply().status(307).body("moved").redirect(to);
  };
  const std::string toAnother =
      "OMNetwork error. The redirect to https://elsewhere.example would carry the request's body "
      "to another server.";
  const std::vector<Case> cases = {
      {"complete", header().body("{").after(2s).body("}"), 200, "{}", "", 2s},
      {"an empty body", ServerReply::of(200, ""), 200, "", "", 0s},
      {"half a body", header().body("{").fail("gone"), 200, {}, "OMNetwork error. gone", 0s},
      {"silence", ServerReply().silence(), 0, {}, kTimedOut, 60s},
      {"a body that goes on beyond the limit", trickle, 200, {}, kTimedOut, 60s},
      {"too long", header().body(longest).body("x").silence(), 200, {}, tooLong, 0s},
      {"as long as can be", ServerReply::of(200, longest), 200, longest, "", 0s},
      {"a redirect, of which the last answer counts", moved("https://live.example/vello/y"), 201,
       "new", "", 0s},
      {"a redirect to another server",
       moved("https://elsewhere.example/y"),
       307,
       {},
       toAnother,
       0s},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    MemoryHost host;
    host.connections().on("", row.reply);
    host.connections().on("/y", ServerReply::of(201, "new"));
    const Posted posted = post(host);
    EXPECT_EQ(posted.code, row.code);
    EXPECT_TRUE(posted.body == row.body);
    EXPECT_EQ(posted.took, row.took);
    EXPECT_EQ(host.log().count("OMNetwork"), row.logged.empty() ? 0U : 1U) << host.log().text();
    EXPECT_EQ(host.log().count(row.logged), host.log().count("OMNetwork")) << host.log().text();
    EXPECT_EQ(host.connections().underWay(), 0U);
  }
}

TEST(OMNetwork, ARequestWithdrawnWhileItConnectsIsNeverSent) {
  MemoryHost host;
  host.connections().on("", ServerReply::of(200, "{}"));
  host.connections().setConnectTime(4s);
  const SteadyTime end = host.clock().steadyNow() + 3s;
  const Posted posted = post(host, {}, {}, [&] { return host.clock().steadyNow() < end; });
  EXPECT_EQ(posted.code, 0);
  EXPECT_FALSE(posted.body);
  EXPECT_TRUE(host.requests().empty());
  EXPECT_TRUE(
      host.log().contains("OMNetwork error. The request was withdrawn before it was sent."));
}

TEST(OMNetwork, ATokenThatCarriesALineEndStaysOutOfTheHeader) {
  for (const std::string& bad : {std::string("a\r\nx-evil: 1"), std::string("a\0b", 3)}) {
    MemoryHost host;
    host.connections().on("", ServerReply::of(200, "{}"));
    EXPECT_EQ(post(host, bad, "b").code, 200);
    using Headers = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(host.requests().at(0).headers,
              (Headers{{"Content-Type", "application/json"}, {"x-session-token2", "b"}}));
  }
}

TEST(OMNetwork, TheChainIsJudgedByPinnedCertificatesBesidesTheSystemsRoots) {
  struct Case {
    bool missing, passes;
    std::string reason;
    std::vector<std::string> logged;
  };
  const std::string refused = "SSL Pinning Failed: Certificate Chain Verification Failed.";
  for (const Case& row : std::vector<Case>{
           {true, true, "", {"No server trust provided."}},
           {false, true, "", {"SSL Pinning Successful: Certificate Chain Verified."}},
           {false, false, "expired", {"Certificate validation failed: expired", refused}},
           {false, false, "", {refused}},
       }) {
    SCOPED_TRACE(row.logged[0]);
    MemoryHost host;
    host.bundle().add("certificatewildcard", "cer", toBytes("W"));
    host.bundle().add("certificateroot", "cer", toBytes("R"));
    const auto trust = std::make_shared<ScriptedTrust>();
    trust->missing = row.missing;
    trust->verdict = [&](const ScriptedTrust&, std::string& error) {
      error = row.reason;
      return row.passes;
    };
    host.connections().on("", ServerReply().challenge(trust).status(200).body("{}"));
    const bool accepted = row.passes && !row.missing;
    EXPECT_EQ(post(host).code, accepted ? 200 : 0);
    EXPECT_EQ(trust->accepted(), accepted);
    if (!row.missing) {
      EXPECT_EQ(trust->anchors(), (std::vector<Bytes>{toBytes("R"), toBytes("W")}));
      EXPECT_FALSE(trust->anchorsOnly());
    }
    const std::vector<std::string> lines = host.log().lines();
    ASSERT_GE(lines.size(), row.logged.size());
    EXPECT_TRUE(std::equal(row.logged.begin(), row.logged.end(), lines.begin()));
    EXPECT_EQ(host.log().count("OMNetwork error. "), accepted ? 0U : 1U);
  }
  MemoryHost host;
  EXPECT_TRUE(OMNetwork::pinnedCertificates().empty());
  host.bundle().add("certificatewildcard", "cer", toBytes("W"));
  EXPECT_EQ(OMNetwork::pinnedCertificates(), std::vector<Bytes>{toBytes("W")});
  EXPECT_TRUE(host.log().lines().empty()) << "a missing one is left out in silence";
}

TEST(OMNetwork, AnAnswerIsWholeOrTimesOutWhateverOrderTheThreadsRunIn) {
  const ServerReply half = ServerReply().status(200).body("{");
  struct Case {
    ServerReply reply;
    bool mayArrive, mayTimeOut;
  };
  for (const Case& row :
       {Case{ServerReply().silence(), false, true}, Case{ServerReply().after(61s), false, true},
        Case{ServerReply(half).after(60s).body("}"), true, true},
        Case{ServerReply(half).body("}"), true, false}}) {
    for (unsigned seed = 0; seed < 200; ++seed) {
      MemoryHost host(anyOrder(seed, row.mayTimeOut));
      host.connections().on("", row.reply);
      const Posted posted = post(host);
      EXPECT_TRUE(posted.body ? row.mayArrive && posted.body == "{}" : row.mayTimeOut) << seed;
      EXPECT_EQ(host.log().text(), posted.body ? "" : kTimedOut + "\n") << seed;
    }
  }
}

}  // namespace orlix::test
