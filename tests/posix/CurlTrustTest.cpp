// Which servers are trusted, over real handshakes and on the chain alone.

#include <cstdlib>
#include <fstream>
#include <latch>

#include <openssl/conf.h>

#include "orlixkit/posix/SystemTrust.h"
#include "tests/posix/HttpsFixture.h"

namespace orlix {

namespace {

class ServerTrustTest : public HttpsFixture {
 protected:
  static Identity issued(const CertificateDraft& draft) { return makeIdentity(draft, &root()); }
};

TEST_F(ServerTrustTest, AnchorsAddToTheSystemsRootsAndEveryFlawIsNamed) {
  const Identity good = serverIdentity();
  const Identity intermediate = issued({.commonName = "Intermediate", .authority = true});
  const Identity shortChain = makeIdentity({}, &intermediate);
  Identity longChain = shortChain;
  longChain.intermediates = {intermediate.certificate};
  const Identity selfSigned = makeIdentity({.commonName = "On its own"});
  const Identity expired = issued({.commonName = "Too old", .validToHours = -1});
  const Identity early = issued({.validFromHours = 1, .validToHours = 2});
  const Identity elsewhere = issued({.names = "DNS:wallet.example"});
  const Identity addressOnly = issued({.names = "IP:127.0.0.1"});
  const Identity forClients = issued({.purpose = "clientAuth"});
  const Bytes ca = root().der();
  const Bytes otherCa = makeIdentity({.commonName = "Another root", .authority = true}).der();
  const std::string ip = "127.0.0.1";
  struct Row {
    std::string name;
    Identity identity;
    std::vector<Bytes> anchors;
    std::string host;
    std::string refusal;  // a part of it; empty: accepted
  };
  const Row rows[] = {
      {"the root as anchor", good, {ca}, ip, ""},
      {"by name", good, {ca}, "localhost", ""},
      {"an intermediate is sent along", longChain, {ca}, ip, ""},
      {"the server's own certificate as anchor", good, {good.der()}, ip, ""},
      {"a self-signed one as its own anchor", selfSigned, {selfSigned.der()}, ip, ""},
      {"rubbish beside the anchor", good, {Bytes{1, 2, 3}, Bytes{}, ca}, ip, ""},
      {"no anchor", good, {}, ip, "the issuer of"},
      {"another root", good, {otherCa}, ip, "is unknown"},
      {"the intermediate is missing", shortChain, {ca}, ip, "the issuer of"},
      {"self-signed", selfSigned, {ca}, ip, "On its own\" is self-signed"},
      {"another host", elsewhere, {ca}, ip, "is not for the host 127.0.0.1"},
      {"by name, for the address", addressOnly, {ca}, "localhost", "is not for the host localhost"},
      {"expired", expired, {ca}, ip, "Too old\" has expired"},
      {"expired, as its own anchor", expired, {expired.der()}, ip, "has expired"},
      {"not valid yet", early, {ca}, ip, "is not valid yet"},
      {"for clients only", forClients, {ca}, ip, "is not meant for a server"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::atomic<int> requests = 0;
    TlsServer server(row.identity, [&requests](TlsConnection& connection) {
      while (connection.read()) {
        ++requests;
        connection.write(httpAnswer(200, "", "ok"));
      }
    });
    delegate = std::make_shared<JudgingDelegate>(row.anchors);
    perform(client, post(server.address("/", row.host)), *delegate);
    EXPECT_EQ(delegate->challenges, 1);
    EXPECT_NE(delegate->refusal.find(row.refusal), std::string::npos) << delegate->refusal;
    EXPECT_EQ(delegate->refusal.empty(), row.refusal.empty());
    EXPECT_EQ(delegate->error,
              row.refusal.empty() ? "" : "the server's certificate was not accepted");
    EXPECT_EQ(requests, row.refusal.empty() ? 1 : 0);
    std::vector<Bytes> chain{row.identity.der()};
    for (const std::shared_ptr<X509>& certificate : row.identity.intermediates) {
      chain.push_back(Identity{.certificate = certificate, .key = {}, .intermediates = {}}.der());
    }
    std::string error;
    EXPECT_EQ(verifyServerChain(chain, row.host, row.anchors, error), row.refusal.empty());
    EXPECT_EQ(error, delegate->refusal) << "the same reason for whoever received the chain";
    EXPECT_FALSE(verifyServerChain({}, row.host, row.anchors, error)) << "nothing was presented";
  }
}

TEST_F(ServerTrustTest, AnInternationalisedNameIsAskedForInAsciiAndANameMayEndWithADot) {
  const Identity named = issued({.names = "DNS:localhost,DNS:xn--bcher-kva.localhost"});
  for (const auto& [host, sent] : Fields{{"localhost.", "localhost"},
                                         {"xn--bcher-kva.localhost", "xn--bcher-kva.localhost"},
                                         {"b\u00FCcher.localhost", "xn--bcher-kva.localhost"},
                                         {"b\u00FCcher.localhost.", "xn--bcher-kva.localhost"},
                                         {"B\u00DCCHER.localhost", "xn--bcher-kva.localhost"}}) {
    for (const bool redirected : {false, true}) {
      SCOPED_TRACE(host + (redirected ? ", redirected to" : ""));
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
      target = server.address("/", host);
      EXPECT_EQ(exchange(post(redirected ? server.address("/from", "localhost") : target)).back(),
                "complete")
          << delegate->error << delegate->refusal;
      EXPECT_EQ(asked, server.address("", sent).substr(8));
    }
  }
  EXPECT_EQ(exchange(post("https://b\u00FC\u2028cher.localhost/")), (Events{"failed"}));
  EXPECT_EQ(delegate->error, "not a host's name: b\u00FC\u2028cher.localhost");
}

TEST_F(ServerTrustTest, WithoutAnAnswerOrAnAnchorOrTheHostsNameNothingUnknownIsTrusted) {
  struct Failing : RecordingDelegate {
    bool trusts(ServerTrust*) override { throw 1; }
  };
  const Identity elsewhere = issued({.names = "DNS:wallet.example"});
  const std::pair<Identity, std::shared_ptr<RecordingDelegate>> rows[] = {
      {serverIdentity(), std::make_shared<Failing>()},
      {serverIdentity(), std::make_shared<JudgingDelegate>(std::vector<Bytes>{})},
      {elsewhere, std::make_shared<RecordingDelegate>()}};  // trusts every chain
  for (const auto& [identity, one] : rows) {
    TlsServer server(identity, answerAll);
    perform(client, post(server.address("/")), *one);
    EXPECT_EQ(one->events, (Events{"failed"}));
  }
}

TEST_F(ServerTrustTest, AQuestionThatStaysOpenHoldsUpNobodyElseAndIsNotHeardAfterTheClose) {
  std::atomic<int> requests = 0;
  TlsServer server(serverIdentity(), [&requests](TlsConnection& connection) {
    while (connection.read()) {
      ++requests;
      connection.write(httpAnswer(200, "", "ok"));
    }
  });
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
