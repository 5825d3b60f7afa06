// SPDX-License-Identifier: Apache-2.0

// What a server's chain must be like, judged on the certificates alone.

#include <ctime>
#include <fstream>

#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include "orlixkit/posix/AnchorBundle.h"
#include "orlixkit/posix/SystemTrust.h"
#include "tests/TemporaryFolder.h"
#include "tests/posix/TestCertificates.h"

namespace orlix {

namespace {

using Anchors = std::vector<Bytes>;

/// The name of an issuer's key, for an issuer that does not give its key one.
const std::map<int, std::string> kSomeKeyId{
    {NID_authority_key_identifier, "DER:30:06:80:04:01:02:03:04"}};

const Identity& root() {
  static const Identity made = makeIdentity({.commonName = "Test root", .authority = true});
  return made;
}

/// Why the chain is refused; empty when it is accepted.
std::string refusalOf(const Identity& server, const Anchors& anchors,
                      const std::string& host = "localhost") {
  std::string error;
  return verifyServerChain(server.chain(), host, anchors, error) ? "" : error;
}

Identity server(const CertificateDraft& draft, const Identity& issuer = root()) {
  return makeIdentity(draft, &issuer);
}

/// A server's chain with an authority like this between the server and the root.
Identity below(CertificateDraft draft, const CertificateDraft& ofServer = {}) {
  draft.commonName = "Between";
  draft.authority = true;
  const Identity between = makeIdentity(draft, &root());
  Identity made = server(ofServer, between);
  made.intermediates = {between.certificate};
  return made;
}

/// As `openssl req -x509` makes it: an authority, whatever it is used for, without a key usage.
Identity madeByRequest(const std::string& name, const std::string& names = "") {
  return makeIdentity(
      {.commonName = name,
       .names = names,
       .purpose = "",
       .extensions = {{NID_basic_constraints, "critical,CA:TRUE"}, {NID_key_usage, ""}}});
}

void expectRefusal(const std::string& refusal, const std::string& expected) {
  EXPECT_EQ(refusal.empty(), expected.empty()) << refusal;
  EXPECT_NE(refusal.find(expected), std::string::npos) << refusal;
  EXPECT_TRUE(!expected.starts_with("the certificate ") || refusal == expected)
      << refusal;  // the whole of it
}

struct TrustRow {
  std::string name;
  Identity server;
  std::string refusal;  // a part of it; empty: accepted
  Anchors anchors = {root().der()};
};

void check(const std::vector<TrustRow>& rows) {
  for (const TrustRow& row : rows) {
    SCOPED_TRACE(row.name);
    expectRefusal(refusalOf(row.server, row.anchors), row.refusal);
  }
}

TEST(CertificateRules, ApplyToWhateverTheServerPresents) {
  Identity cutShort = below({});
  cutShort.intermediates.clear();
  const Bytes another = makeIdentity({.commonName = "Another root", .authority = true}).der();
  check({
      {"a conforming one", server({}), ""},
      {"a conforming chain", below({}), ""},
      {"rubbish beside the anchor", server({}), "", {Bytes{1, 2, 3}, Bytes{}, root().der()}},
      {"no anchor", server({}), "the issuer of", {}},
      {"another root", server({}), "is unknown", {another}},
      {"the intermediate is missing", cutShort, "the issuer of"},
      {"expired", server({.commonName = "Too old", .validToHours = -1}), "Too old\" has expired"},
      {"not valid yet", server({.validFromHours = 1, .validToHours = 2}), "is not valid yet"},
      {"for clients only", server({.purpose = "clientAuth"}), "is not meant for a server"},
      {"a name in the subject alone", server({.commonName = "localhost", .names = ""}),
       "is not for the host localhost"},
      {"another name than the subject's",
       server({.commonName = "localhost", .names = "DNS:wallet.example"}), "is not for the host"},
      {"without a restricted use", server({.purpose = ""}), ""},
      {"for servers among others", server({.purpose = "clientAuth,serverAuth"}), ""},
      {"for any use", server({.purpose = "anyExtendedKeyUsage"}), "is not meant for a server"},
      {"for gated cryptography", server({.purpose = "msSGC"}), "is not meant for a server"},
      {"a DSA key", server({.keyType = "DSA"}), "has a DSA key"},
      {"a short key", server({.keyType = "RSA-1024"}), "key too weak"},
      {"an authority's",
       server({.extensions = {{NID_basic_constraints, "critical,CA:TRUE"},
                              {NID_key_usage, "critical,keyCertSign,digitalSignature"}}}),
       "is an authority's"},
      {"an issuer's key that is not named",
       server({.extensions = {{NID_authority_key_identifier, ""}}}),
       "Missing Authority Key Identifier"},
      {"no subject, and names that may be overlooked", server({.commonName = ""}), "Subject empty"},
      {"an authority that need not be understood",
       below({.extensions = {{NID_basic_constraints, "CA:TRUE"}}}), "Basic Constraints"},
      {"an authority without a key usage", below({.extensions = {{NID_key_usage, ""}}}),
       "key usage"},
      {"an authority without a key's name",
       below({.extensions = {{NID_subject_key_identifier, ""}}}, {.extensions = kSomeKeyId}),
       "Missing Subject Key Identifier"},
      {"an authority for servers", below({.extensions = {{NID_ext_key_usage, "serverAuth"}}}), ""},
      {"an authority for clients", below({.extensions = {{NID_ext_key_usage, "clientAuth"}}}),
       "the certificate \"/CN=Between\" is not meant for a server"},
      {"an authority for gated cryptography", below({.extensions = {{NID_ext_key_usage, "msSGC"}}}),
       "is not meant for a server"},
      {"an authority with a DSA key", below({.keyType = "DSA"}),
       "the certificate \"/CN=Between\" has a DSA key"},
  });
  std::string error;
  EXPECT_FALSE(verifyServerChain({}, "localhost", {root().der()}, error)) << "nothing presented";
}

TEST(CertificateRules, TakeWhatIsPinnedAsItIs) {
  const Identity made = madeByRequest("Made by request");
  const Identity informal = makeIdentity(
      {.commonName = "Informal",
       .authority = true,
       .extensions = {{NID_basic_constraints, "CA:TRUE"}, {NID_subject_key_identifier, ""}}});
  const Identity old = makeIdentity({.commonName = "Old root", .version = X509_VERSION_1});
  const Identity own = madeByRequest("Own", "DNS:localhost");
  const Identity elsewhere = madeByRequest("Elsewhere", "DNS:wallet.example");
  const Identity byName = madeByRequest("localhost");
  const Identity anonymous = server({.extensions = {{NID_authority_key_identifier, ""}}});
  const Identity unkeyed = below({.extensions = {{NID_key_usage, ""}}});
  const Identity plain = server({});
  const Identity expired = server({.validToHours = -1});
  const test::TemporaryFolder folder;
  std::ofstream(folder.path() / "root.pem") << made.pem();
  const AnchorBundle pem(folder.path() / "root.pem");
  check({
      {"a root made by openssl req", server({}, made), "", {made.der()}},
      {"the same in PEM form", server({}, made), "", {*pem.resource("certificateroot", "cer")}},
      {"a root without the usual form",
       server({.extensions = kSomeKeyId}, informal),
       "",
       {informal.der()}},
      {"a root of version 1", server({.extensions = kSomeKeyId}, old), "", {old.der()}},
      {"the server's own, an authority's", own, "", {own.der()}},
      {"the same without being pinned", own, "Own\" is self-signed and not trusted"},
      {"the server's own, by its subject", byName, "", {byName.der()}},
      {"the server's own, for another host", elsewhere, "is not for the host", {elsewhere.der()}},
      {"the server's own, expired", expired, "has expired", {expired.der()}},
      {"the server's own beside its root", anonymous, "", {root().der(), anonymous.der()}},
      {"an authority that the server sends as well", unkeyed, "", {unkeyed.chain()[1]}},
      {"a server's that issues another's", server({}, plain), "invalid CA", {plain.der()}},
  });
}

TEST(CertificateRules, TheHostIsANameInAsciiOrAnAddressAndItsFinalDotIsIgnored) {
  const Identity named =
      server({.names = "DNS:xn--bcher-kva.example,DNS:*.wallet.example,DNS:w*.partial.example,"
                       "IP:127.0.0.1,IP:::1"});
  for (const char* host : {"xn--bcher-kva.example", "xn--bcher-kva.example.", "127.0.0.1", "::1",
                           "www.wallet.example.", "WWW.Wallet.example"}) {
    EXPECT_EQ(refusalOf(named, {root().der()}, host), "") << host;
  }
  for (const char* host : {"wallet.example", "a.b.wallet.example", "www.partial.example",
                           "www.wallet.example..", "127.0.0.2", ".", ""}) {
    EXPECT_NE(refusalOf(named, {root().der()}, host), "") << host;
  }
}

TEST(CertificateRules, EveryRootOfTheSystemMayVouchForAServer) {
  FILE* bundle = std::fopen("/etc/ssl/certs/ca-certificates.crt", "r");
  if (bundle == nullptr) {
    GTEST_SKIP() << "no bundle of roots on this system";
  }
  const std::map<int, std::shared_ptr<EVP_PKEY>> keys{{EVP_PKEY_RSA, makeTestKey("RSA")},
                                                      {EVP_PKEY_EC, makeTestKey("EC")}};
  int valid = 0;
  while (X509* read = PEM_read_X509(bundle, nullptr, nullptr, nullptr)) {
    const std::shared_ptr<X509> authority(read, X509_free);
    if (X509_cmp_current_time(X509_get0_notAfter(read)) < 0) {
      continue;
    }
    ++valid;
    // Its signature cannot be made here, so that is what is found wrong, and nothing else.
    const Identity forger{authority, keys.at(EVP_PKEY_get_base_id(X509_get0_pubkey(read))), {}};
    const bool namesKey = X509_get0_subject_key_id(read) != nullptr;
    const Identity forged =
        namesKey ? server({}, forger) : server({.extensions = kSomeKeyId}, forger);
    SystemTrust trust(forged.certificate.get(), nullptr, "localhost");
    std::string error;
    EXPECT_FALSE(trust.evaluate({forger.der()}, true, error));
    expectRefusal(error, "certificate signature failure");
  }
  std::fclose(bundle);
  EXPECT_GT(valid, 0);
}

}  // namespace

}  // namespace orlix
