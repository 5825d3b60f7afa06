// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/SystemTrust.h"

#include <map>
#include <mutex>
#include <utility>

#include <openssl/err.h>
#include <openssl/x509.h>

namespace orlix {

namespace {

/// The system's roots to trust besides the anchors: none, those found in its folder by the hash of
/// their name, or these and its whole bundle.
enum class Roots { none, byName, all };

void addSystemRoots(X509_STORE* store, Roots roots) {
  // Without system roots the anchors remain, which suffice for a private server.
  if (roots == Roots::byName) {
    if (X509_LOOKUP* lookup = X509_STORE_add_lookup(store, X509_LOOKUP_hash_dir())) {
      X509_LOOKUP_add_dir(lookup, nullptr, X509_FILETYPE_DEFAULT);
    }
  } else if (roots == Roots::all) {
    X509_STORE_set_default_paths(store);
  }
}

TrustStore makeStore(const std::vector<Bytes>& anchors, Roots roots) {
  TrustStore trusted;
  trusted.store.reset(X509_STORE_new());
  if (!trusted.store) {
    return trusted;
  }
  // An anchor may be the server's own certificate, not only a self-signed root.
  X509_STORE_set_flags(trusted.store.get(), X509_V_FLAG_PARTIAL_CHAIN);
  addSystemRoots(trusted.store.get(), roots);
  for (const Bytes& anchor : anchors) {
    if (CertificatePointer certificate = certificateFromDer(anchor)) {
      X509_STORE_add_cert(trusted.store.get(), certificate.get());
      trusted.anchors.push_back(std::move(certificate));
    }
  }
  ERR_clear_error();
  return trusted;
}

/// The store for these anchors, made on first use and kept until the process ends.
const TrustStore& storeFor(const std::vector<Bytes>& anchors, Roots roots) {
  static std::mutex lock;
  static std::map<std::pair<std::vector<Bytes>, Roots>, TrustStore> stores;
  static const TrustStore none;
  const std::lock_guard guard(lock);
  const std::pair key(anchors, roots);
  auto found = stores.find(key);
  if (found == stores.end()) {
    TrustStore made = makeStore(anchors, roots);
    if (!made.store) {
      return none;
    }
    found = stores.emplace(key, std::move(made)).first;
  }
  return found->second;
}

/// Certificates omit the trailing dot of a fully qualified name.
std::string withoutFinalDot(std::string host) {
  if (host.ends_with('.')) {
    host.pop_back();
  }
  return host;
}

}  // namespace

CertificatePointer certificateFromDer(ByteView der) {
  const unsigned char* begin = der.data();
  CertificatePointer certificate(d2i_X509(nullptr, &begin, static_cast<long>(der.size())));
  ERR_clear_error();
  return certificate;
}

SystemTrust::SystemTrust(X509* leaf, STACK_OF(X509) * presented, std::string host)
    : leaf_(leaf != nullptr && X509_up_ref(leaf) == 1 ? leaf : nullptr),
      presented_(presented != nullptr ? X509_chain_up_ref(presented) : nullptr),
      host_(withoutFinalDot(std::move(host))) {}

SystemTrust::~SystemTrust() { sk_X509_pop_free(presented_, X509_free); }

bool SystemTrust::evaluate(const std::vector<Bytes>& anchors, bool anchorsOnly,
                           std::string& error) {
  const auto isTrustedWith = [&](Roots roots) {
    return verifyChain(storeFor(anchors, roots), leaf_.get(), presented_, host_, error);
  };
  if (anchorsOnly) {
    return isTrustedWith(Roots::none);
  }
  // Reading the bundle takes about 25 ms, and it seldom holds more than the folder.
  return isTrustedWith(Roots::byName) || isTrustedWith(Roots::all);
}

bool verifyServerChain(const std::vector<Bytes>& chain, const std::string& host,
                       const std::vector<Bytes>& anchors, std::string& error) {
  const CertificatePointer leaf = chain.empty() ? nullptr : certificateFromDer(chain.front());
  const std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)> presented(
      sk_X509_new_null(), [](STACK_OF(X509) * stack) { sk_X509_pop_free(stack, X509_free); });
  for (const Bytes& der : chain) {
    // Skip an unreadable certificate: the chain then lacks this link.
    if (CertificatePointer certificate = certificateFromDer(der)) {
      sk_X509_push(presented.get(), certificate.release());
    }
  }
  return SystemTrust(leaf.get(), presented.get(), host).evaluate(anchors, false, error);
}

}  // namespace orlix
