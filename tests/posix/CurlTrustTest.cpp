// SPDX-License-Identifier: Apache-2.0

// Which servers are trusted, over real handshakes and on the chain alone.

#include <cstdlib>
#include <fstream>
#include <latch>

#include <gmock/gmock.h>
#include <openssl/conf.h>

#include "orlixkit/posix/SystemTrust.h"
#include "tests/posix/HttpsFixture.h"

namespace orlix {

namespace {

class ServerTrustTest : public HttpsFixture {
 protected:
  static Identity issued(const CertificateDraft& draft) { return makeIdentity(draft, &root()); }
};

TEST_F(ServerTrustTest, NothingIsSentUnlessTheDelegateTrustsTheChainAndItIsForTheHost) {
  struct Failing : RecordingDelegate {
    bool trusts(ServerTrust*) override { throw 1; }
  };
  const Identity intermediate = issued({.commonName = "Intermediate", .authority = true});
  Identity chain = makeIdentity({}, &intermediate);
  chain.intermediates = {intermediate.certificate};
  const std::vector<Bytes> anchors{root().der()};
  const struct {
    std::string name;
    Identity identity;
    std::shared_ptr<RecordingDelegate> delegate;
    std::string refusal;  // a part of the judging delegate's
    bool accepted = false;
  } rows[] = {
      {"an intermediate is sent along", chain, std::make_shared<JudgingDelegate>(anchors), "",
       true},
      {"expired", issued({.validToHours = -1}), std::make_shared<JudgingDelegate>(anchors),
       "has expired"},
      {"no anchor", serverIdentity(), std::make_shared<JudgingDelegate>(std::vector<Bytes>{}),
       "the issuer of"},
      {"another host, and all is trusted", issued({.names = "DNS:wallet.example"}),
       std::make_shared<RecordingDelegate>(), ""},
      {"the question fails", serverIdentity(), std::make_shared<Failing>(), ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    requests = 0;
    TlsServer server(row.identity, answerAll);
    perform(client, post(server.address("/")), *row.delegate);
    EXPECT_EQ(row.delegate->events.back(), row.accepted ? "complete" : "failed");
    EXPECT_EQ(row.delegate->error.empty(), row.accepted);
    EXPECT_EQ(requests, row.accepted ? 1 : 0);
    if (const auto judging = std::dynamic_pointer_cast<JudgingDelegate>(row.delegate)) {
      EXPECT_EQ(judging->challenges, 1);
      EXPECT_THAT(judging->refusal, testing::HasSubstr(row.refusal));
      EXPECT_EQ(judging->error, row.accepted ? "" : "the server's certificate was not accepted");
    }
  }
}

TEST_F(ServerTrustTest, AnInternationalisedNameIsAskedForInAsciiAndANameMayEndWithADot) {
  const std::string sent = "xn--bcher-kva.localhost";
  const Identity named = issued({.names = "DNS:localhost,DNS:" + sent});
  std::string target;
  std::optional<std::string> asked;
  TlsServer server(named, [&](TlsConnection& connection) {
    while (const std::optional<SeenRequest> request = connection.read()) {
      asked = request->field("Host");
      connection.write(request->path == "/from"
                           ? httpAnswer(303, "Location: " + target + "\r\n", "")
                           : httpAnswer(200, "", "ok"));
    }
  });
  for (const char* host : {"xn--bcher-kva.localhost", "b\u00FCcher.localhost",
                           "b\u00FCcher.localhost.", "B\u00DCCHER.localhost"}) {
    target = server.address("/", host);
    for (const std::string& url : {target, server.address("/from", "localhost.")}) {
      EXPECT_EQ(exchange(post(url)).back(), "complete") << url << delegate->error;
      EXPECT_EQ(asked, server.address("", sent).substr(8)) << url;
    }
  }
  EXPECT_EQ(exchange(post("https://b\u00FC\u2028cher.localhost/")), (Events{"failed"}));
  EXPECT_EQ(delegate->error, "not a host's name: b\u00FC\u2028cher.localhost");
}

TEST_F(ServerTrustTest, AQuestionThatStaysOpenHoldsUpNobodyElseAndIsNotHeardAfterTheClose) {
  TlsServer server(serverIdentity(), answerAll);
  std::latch over(1);
  JudgingDelegate undecided({root().der()});
  bool asked = false;
  bool ended = false;
  undecided.onChallenge = [&] {
    platform.mainQueue().async([&asked] { asked = true; });
    over.wait();
  };
  platform.backgroundQueues().global(QualityOfService::high, [&] {
    perform(client, post(server.address("/")), undecided);
    platform.mainQueue().async([&ended] { ended = true; });
  });
  platform.mainQueue().runUntil([&asked] { return asked; });
  EXPECT_EQ(exchange(post(server.address("/"))).back(), "complete") << "side by side";
  client.close();
  over.count_down();
  platform.mainQueue().runUntil([&ended] { return ended; });
  EXPECT_EQ(undecided.events, Events{"closed"});
  EXPECT_EQ(requests, 1) << "of the exchange between";
}

TEST_F(ServerTrustTest, NothingBelowTls12IsSpokenEvenWhereTheSystemAllowsIt) {
  const TemporaryFolder folder;
  const std::string lenient = folder.path() / "openssl.cnf";
  std::ofstream(lenient) << "openssl_conf = all\n[all]\nssl_conf = tls\n[tls]\n"
                            "system_default = old\n[old]\nMinProtocol = TLSv1\n"
                            "CipherString = DEFAULT@SECLEVEL=0\n";
  ASSERT_EQ(CONF_modules_load_file(lenient.c_str(), nullptr, 0), 1);
  {
    TlsServer old(serverIdentity(), answerAll, TLS1_1_VERSION);
    EXPECT_EQ(exchange(post(old.address("/"))), (Events{"failed"}));
    EXPECT_EQ(old.handshakes(), 0);
    TlsServer enough(serverIdentity(), answerAll, TLS1_2_VERSION);
    EXPECT_EQ(exchange(post(enough.address("/"))).back(), "complete");
  }
  CONF_modules_unload(1);
}

TEST_F(ServerTrustTest, TheSystemsRootsCountUnlessLeftOutAndAreReadOnce) {
  const TemporaryFolder folder;
  const std::string bundle = folder.path() / "bundle.pem";
  // Of no form that is asked of what a server presents.
  const Identity made = makeIdentity(
      {.commonName = "Own root", .authority = true, .extensions = {{NID_key_usage, ""}}});
  const Identity server = makeIdentity({}, &made);
  std::ofstream(bundle) << made.pem();
  const auto judge = [&server](const std::vector<Bytes>& anchors, bool only,
                               const std::string& host) {
    std::string error;
    return SystemTrust(server.certificate.get(), nullptr, host).evaluate(anchors, only, error);
  };
  // A set of anchors that no other test uses, so that its trust is read here.
  const std::vector<Bytes> own{toBytes(folder.path().string())};
  const std::vector<Bytes> withRoot{own[0], made.der()};
  // OpenSSL's own variables name the system's bundle.
  ::setenv("SSL_CERT_DIR", "/nonexistent", 1);
  ::setenv("SSL_CERT_FILE", bundle.c_str(), 1);
  EXPECT_TRUE(judge(own, false, "localhost"));
  EXPECT_FALSE(judge(own, true, "localhost")) << "only the anchors";
  EXPECT_FALSE(judge(own, false, "")) << "a host without a name is nobody's";
  ::setenv("SSL_CERT_FILE", "/nonexistent", 1);
  EXPECT_TRUE(judge(own, false, "localhost")) << "read once";
  EXPECT_TRUE(judge(withRoot, false, "127.0.0.1")) << "an anchor needs no bundle";
  ::unsetenv("SSL_CERT_DIR");
  ::unsetenv("SSL_CERT_FILE");
}

}  // namespace

}  // namespace orlix
