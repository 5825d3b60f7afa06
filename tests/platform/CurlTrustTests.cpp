// Which servers are trusted, over real handshakes and on the chain alone.

#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>

#include <gtest/gtest.h>

#include "orlixkit/platform/posix/SystemTrust.h"
#include "tests/platform/HttpsFixture.h"

namespace orlix {

namespace {

class ServerTrustTest : public HttpsFixture {
 protected:
  static void answerOnce(TlsConnection& connection) {
    while (connection.read() && connection.write(httpAnswer(200, "", "ok"))) {
    }
  }
  static Identity issued(const CertificateDraft& draft) { return makeIdentity(draft, &root()); }
};

/// Names the system's bundle to OpenSSL, by its own variables, while it lives.
class SystemBundle {
 public:
  explicit SystemBundle(const std::string& file) {
    set("SSL_CERT_FILE", file.c_str());
    set("SSL_CERT_DIR", "/nonexistent");
  }
  ~SystemBundle() {
    for (const auto& [name, value] : former_) {
      if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
      } else {
        ::unsetenv(name.c_str());
      }
    }
  }

 private:
  void set(const std::string& name, const char* value) {
    const char* former = std::getenv(name.c_str());
    former_[name] = former != nullptr ? std::optional<std::string>(former) : std::nullopt;
    ::setenv(name.c_str(), value, 1);
  }

  std::map<std::string, std::optional<std::string>> former_;
};

}  // namespace

TEST_F(ServerTrustTest, AnchorsAddToTheSystemsRootsAndEveryFlawIsNamed) {
  const Identity otherRoot = makeIdentity({.commonName = "Another root", .authority = true});
  const Identity intermediate =
      makeIdentity({.commonName = "Intermediate", .authority = true}, &root());
  Identity longChain = makeIdentity({}, &intermediate);
  const Identity shortChain = longChain;
  longChain.intermediates = {intermediate.certificate};
  const Identity selfSigned = makeIdentity({.commonName = "On its own"});
  const Identity expired = issued({.commonName = "Too old", .validToHours = -1});

  const std::string accepted;
  struct Row {
    std::string name;
    Identity identity;
    std::vector<Bytes> anchors;
    std::string host;
    std::string refusal;  // a part of it; empty: accepted
  };
  const std::string ip = "127.0.0.1";
  const std::vector<Row> rows{
      {"the root as anchor", serverIdentity(), {root().der()}, ip, accepted},
      {"by name", serverIdentity(), {root().der()}, "localhost", accepted},
      {"an intermediate is sent along", longChain, {root().der()}, ip, accepted},
      {"the server's own certificate as anchor",
       serverIdentity(),
       {serverIdentity().der()},
       ip,
       accepted},
      {"a self-signed one as its own anchor", selfSigned, {selfSigned.der()}, ip, accepted},
      {"rubbish beside the anchor",
       serverIdentity(),
       {Bytes{1, 2, 3}, Bytes{}, root().der()},
       ip,
       accepted},
      {"no anchor", serverIdentity(), {}, ip, "the issuer of"},
      {"another root", serverIdentity(), {otherRoot.der()}, ip, "is unknown"},
      {"the intermediate is missing", shortChain, {root().der()}, ip, "the issuer of"},
      {"self-signed", selfSigned, {root().der()}, ip, "On its own\" is self-signed"},
      {"another host",
       issued({.names = "DNS:wallet.example"}),
       {root().der()},
       ip,
       "is not for the host 127.0.0.1"},
      {"only the address, asked for by name",
       issued({.names = "IP:127.0.0.1"}),
       {root().der()},
       "localhost",
       "is not for the host localhost"},
      {"expired", expired, {root().der()}, ip, "Too old\" has expired"},
      {"expired, as its own anchor", expired, {expired.der()}, ip, "has expired"},
      {"not valid yet",
       issued({.validFromHours = 1, .validToHours = 2}),
       {root().der()},
       ip,
       "is not valid yet"},
      {"for clients only",
       issued({.purpose = "clientAuth"}),
       {root().der()},
       ip,
       "is not meant for a server"},
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
    delegate = std::make_shared<JudgingDelegate>(platform.mainQueue(), row.anchors);
    start(post(server.address("/", row.host)), delegate);
    delegate->await();
    EXPECT_EQ(delegate->challenges, 1);
    if (row.refusal.empty()) {
      EXPECT_EQ(delegate->events, (Events{"response 200", "data", "finish"})) << delegate->error;
      EXPECT_EQ(delegate->refusal, "");
    } else {
      EXPECT_EQ(delegate->events, (Events{"fail"}));
      EXPECT_NE(delegate->refusal.find(row.refusal), std::string::npos) << delegate->refusal;
      EXPECT_EQ(delegate->error, "the server's certificate was not accepted");
      EXPECT_EQ(requests, 0);
    }
  }
}

TEST_F(ServerTrustTest, WithoutAnAnswerOrAQuestionNothingUnknownIsTrusted) {
  struct Silent : RecordingDelegate {
    using RecordingDelegate::RecordingDelegate;
    void didReceiveAuthenticationChallenge(AuthenticationChallenge&) override {}
  };
  struct Indifferent : RecordingDelegate {
    using RecordingDelegate::RecordingDelegate;
    bool canAuthenticateAgainstProtectionSpace(AuthenticationMethod) override { return false; }
  };
  TlsServer server(serverIdentity(), answerOnce);
  const std::vector<std::shared_ptr<RecordingDelegate>> delegates{
      std::make_shared<Silent>(platform.mainQueue()),
      std::make_shared<Indifferent>(platform.mainQueue())};
  for (const std::shared_ptr<RecordingDelegate>& one : delegates) {
    start(post(server.address("/")), one);
    one->await();
    EXPECT_EQ(one->events, (Events{"fail"}));
  }
}

TEST_F(ServerTrustTest, NobodyWaivesTheHostName) {
  TlsServer server(issued({.names = "DNS:wallet.example"}), answerOnce);
  const auto trusting = std::make_shared<RecordingDelegate>(platform.mainQueue());
  start(post(server.address("/")), trusting);
  trusting->await();
  EXPECT_EQ(trusting->events, (Events{"fail"}));
}

TEST_F(ServerTrustTest, NothingBelowTls12IsSpoken) {
  TlsServer old(serverIdentity(), answerOnce, {.highestVersion = TLS1_1_VERSION});
  EXPECT_EQ(exchange(post(old.address("/"))), (Events{"fail"}));
  EXPECT_EQ(old.handshakes(), 0);
  TlsServer enough(serverIdentity(), answerOnce, {.highestVersion = TLS1_2_VERSION});
  EXPECT_EQ(exchange(post(enough.address("/"))).back(), "finish");
}

TEST_F(ServerTrustTest, TheSystemsRootsCountUnlessLeftOutAndAreReadOnce) {
  const TemporaryFolder folder;
  const std::string bundle = folder.path() / "bundle.pem";
  std::ofstream(bundle) << root().pem();
  const auto judge = [](const std::vector<Bytes>& anchors, bool only, const std::string& host) {
    SystemTrust trust(serverIdentity().certificate.get(), nullptr, host);
    trust.setAnchorCertificates(anchors);
    trust.setAnchorCertificatesOnly(only);
    std::string error;
    return trust.evaluate(error);
  };
  // A set of anchors that no other test uses, so that its trust is read here.
  const std::vector<Bytes> own{toBytes(folder.path().string())};
  std::vector<Bytes> withRoot = own;
  withRoot.push_back(root().der());
  {
    const SystemBundle system(bundle);
    EXPECT_TRUE(judge(own, false, "localhost"));
    EXPECT_FALSE(judge(own, true, "localhost")) << "only the anchors";
    EXPECT_FALSE(judge(own, false, "")) << "a host without a name is nobody's";
  }
  {
    const SystemBundle system("/nonexistent");
    EXPECT_TRUE(judge(own, false, "localhost")) << "read once";
    EXPECT_TRUE(judge(withRoot, false, "127.0.0.1")) << "an anchor needs no bundle";
  }
}

}  // namespace orlix
