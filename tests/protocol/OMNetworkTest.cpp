#include <random>

#include <gtest/gtest.h>

#include "tests/protocol/ClientAndServer.h"

namespace orlix {

namespace {

using std::chrono::seconds;

const std::string address = "https://live.example/vello/x";

struct Posted {
  std::int64_t code = -1;
  std::optional<std::string> body;
  Duration took{};
};

/// Posts "{}" with these tokens and waits for the end.
Posted post(MemoryHost& host, std::optional<std::string> token1 = {},
            std::optional<std::string> token2 = {}) {
  Posted posted;
  host.backgroundQueues().global(QualityOfService::high, [&] {
    DataStore store(SecretBytes(16, 0));
    store.sessionId = token1;
    store.sessionId2 = token2;
    const SteadyTime begin = host.clock().steadyNow();
    const Bytes body = toBytes("{}");
    const NetworkResult result = OMNetwork().post(address, SecretBytes(body), store);
    posted.took = host.clock().steadyNow() - begin;
    if (result.payload) {
      posted.body.emplace(result.payload->reveal().begin(), result.payload->reveal().end());
    }
    posted.code = result.responseCode;
  });
  host.runUntil([&] { return posted.code != -1; });
  return posted;
}

/// Threads that run in an order of the seed's choice, and overtake one another at every port.
MemoryHostSettings anyOrder(unsigned seed) {
  MemoryHostSettings settings;
  settings.chooser = [random = std::mt19937(seed)](std::size_t candidates) mutable {
    return random() % candidates;
  };
  settings.preemptive = true;
  return settings;
}

TEST(OMNetwork, TheOutcomeShowsInCodeBodyAndLog) {
  struct Case {
    std::string name;
    ServerReply reply;
    std::int64_t code;
    std::optional<std::string> body;
    std::string logged;
    seconds took;
  };
  const std::string timedOut =
      "OMNetwork request timed out after 60 seconds: https://live.example/vello/x";
  ServerReply trickle = ServerReply().status(200);
  for (int i = 0; i < 100; ++i) {
    trickle.after(seconds(1)).body("x");
  }
  const std::vector<Case> cases = {
      {"complete", ServerReply().status(200).body("{").after(seconds(2)).body("}"), 200, "{}", "",
       seconds(2)},
      {"an error with a body", ServerReply::of(500, "oops"), 500, "oops", "", seconds(0)},
      {"an empty body", ServerReply::of(200, ""), 200, "", "", seconds(0)},
      {"failed before the header",
       ServerReply().fail("reset"),
       0,
       {},
       "OMNetwork error. reset",
       seconds(0)},
      {"failed after the header",
       ServerReply().status(200).body("{").fail("gone"),
       200,
       {},
       "OMNetwork error. gone",
       seconds(0)},
      {"a body that goes on beyond the limit", trickle, 200, {}, timedOut, seconds(60)},
      {"longer than an answer may be",
       ServerReply()
           .status(200)
           .body(std::string(OMNetwork::longestAnswer, ' '))
           .body("x")
           .silence(),
       200,
       {},
       "OMNetwork error. The answer is longer than 16777216 bytes.",
       seconds(0)},
      {"as long as an answer may be",
       ServerReply::of(200, std::string(OMNetwork::longestAnswer, ' ')), 200,
       std::string(OMNetwork::longestAnswer, ' '), "", seconds(0)},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    MemoryHost host;
    host.connections().on("", row.reply);
    const Posted posted = post(host);
    EXPECT_EQ(posted.code, row.code);
    EXPECT_TRUE(posted.body == row.body);
    EXPECT_EQ(posted.took, row.took);
    EXPECT_EQ(host.log().count("OMNetwork"), row.logged.empty() ? 0U : 1U) << host.log().text();
    EXPECT_EQ(host.log().count(row.logged), host.log().count("OMNetwork")) << host.log().text();
    EXPECT_EQ(host.connections().underWay(), 0U);
  }
}

TEST(OMNetwork, AServerThatFallsSilentIsGivenUpAfterSixtySecondsWithTheCodeThatCame) {
  for (const auto& [reply, code] : {std::pair(ServerReply().silence(), 0),
                                    std::pair(ServerReply().status(200).silence(), 200)}) {
    MemoryHost host;
    host.connections().on("", reply);
    const Posted posted = post(host);
    EXPECT_EQ(posted.code, code);
    EXPECT_FALSE(posted.body);
    EXPECT_EQ(posted.took, seconds(60));
  }
}

TEST(OMNetwork, OnlyTheLastAnswerOfARedirectCounts) {
  MemoryHost host;
  host.connections().on(
      "", ServerReply().status(307).body("moved").redirect("https://live.example/vello/y"));
  host.connections().on("/y", ServerReply::of(201, "new"));
  const Posted posted = post(host);
  EXPECT_EQ(posted.code, 201);
  EXPECT_EQ(posted.body, "new");
}

TEST(OMNetwork, TokensGoOutInTheirOrderAndNeverCarryALineEnd) {
  using Headers = std::vector<std::pair<std::string, std::string>>;
  const std::pair<std::string, std::string> type{"Content-Type", "application/json"};
  struct Case {
    std::optional<std::string> token1;
    std::optional<std::string> token2;
    Headers headers;
  };
  const std::vector<Case> cases = {
      {{}, {}, {type}},
      {"a b", {}, {type, {"x-session-token1", "a b"}}},
      {{}, "é", {type, {"x-session-token2", "é"}}},
      {"", "b", {type, {"x-session-token1", ""}, {"x-session-token2", "b"}}},
      {"a\r\nx-evil: 1", "b", {type, {"x-session-token2", "b"}}},
      {std::string("a\0b", 3), "b\x7f", {type}},
  };
  for (const Case& row : cases) {
    MemoryHost host;
    host.connections().on("", ServerReply::of(200, "{}"));
    EXPECT_EQ(post(host, row.token1, row.token2).code, 200);
    EXPECT_EQ(host.requests().at(0).headers, row.headers);
  }
}

TEST(OMNetwork, TheChainIsJudgedByPinnedCertificatesBesidesTheSystemsRoots) {
  struct Case {
    std::string name;
    bool missing;
    bool passes;
    std::string reason;
    std::vector<std::string> logged;
  };
  const std::string refused = "SSL Pinning Failed: Certificate Chain Verification Failed.";
  const std::vector<Case> cases = {
      {"no chain", true, true, "", {"No server trust provided."}},
      {"good", false, true, "", {"SSL Pinning Successful: Certificate Chain Verified."}},
      {"bad", false, false, "expired", {"Certificate validation failed: expired", refused}},
      {"bad without a reason", false, false, "", {refused}},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
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
    EXPECT_TRUE(std::equal(row.logged.begin(), row.logged.end(), lines.begin()))
        << host.log().text();
    EXPECT_EQ(host.log().count("OMNetwork error. "), accepted ? 0U : 1U);
  }
}

TEST(OMNetwork, AMissingPinnedCertificateIsLeftOutInSilence) {
  MemoryHost host;
  EXPECT_TRUE(OMNetwork::pinnedCertificates().empty());
  host.bundle().add("certificatewildcard", "cer", toBytes("W"));
  EXPECT_EQ(OMNetwork::pinnedCertificates(), std::vector<Bytes>{toBytes("W")});
  EXPECT_EQ(host.log().lines().size(), 0U);
}

TEST(OMNetwork, AnswersAreNotLostWhateverOrderTheThreadsRunIn) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    MemoryHost host(anyOrder(seed));
    host.connections().on("", ServerReply().status(200).body("{").body("}"));
    const Posted posted = post(host);
    EXPECT_EQ(posted.body, "{}");
    EXPECT_EQ(posted.took, seconds(0));
  }
}

TEST(OMNetwork, AnAnswerAtTheLastMomentIsEitherWholeOrNone) {
  int whole = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    MemoryHostSettings settings = anyOrder(seed);
    settings.timeCompetes = true;
    MemoryHost host(settings);
    host.connections().on("", ServerReply().status(200).body("{").after(seconds(60)).body("}"));
    const Posted posted = post(host);
    EXPECT_TRUE(!posted.body || posted.body == "{}");
    EXPECT_EQ(host.log().count("timed out"), posted.body ? 0U : 1U);
    whole += posted.body ? 1 : 0;
  }
  RecordProperty("whole", whole);
}

}  // namespace

}  // namespace orlix
