#include "orlixkit/platform/posix/SystemTrust.h"

#include <map>
#include <mutex>
#include <utility>

#include <fmt/format.h>
#include <openssl/err.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace orlix {

namespace {

struct FreeStore {
  void operator()(X509_STORE* store) const { X509_STORE_free(store); }
};
using StorePointer = std::unique_ptr<X509_STORE, FreeStore>;

/// The system's roots besides the anchors: none, those found by their name's hash in its folder, or
/// these and all of its bundle.
enum class Roots { none, byName, all };

/// Keys of 112 bits of strength or more and no SHA-1, as TLS itself asks of the certificates.
constexpr int securityLevel = 2;

void addSystemRoots(X509_STORE* store, Roots roots) {
  // A system without them leaves the anchors, which are enough for a server of one's own.
  if (roots == Roots::byName) {
    if (X509_LOOKUP* lookup = X509_STORE_add_lookup(store, X509_LOOKUP_hash_dir())) {
      X509_LOOKUP_add_dir(lookup, nullptr, X509_FILETYPE_DEFAULT);
    }
  } else if (roots == Roots::all) {
    X509_STORE_set_default_paths(store);
  }
}

StorePointer makeStore(const std::vector<Bytes>& anchors, Roots roots) {
  StorePointer store(X509_STORE_new());
  if (!store) {
    return store;
  }
  // An anchor may be the server's own certificate, not only a self-signed root.
  X509_STORE_set_flags(store.get(), X509_V_FLAG_PARTIAL_CHAIN);
  addSystemRoots(store.get(), roots);
  for (const Bytes& anchor : anchors) {
    if (const CertificatePointer certificate = certificateFromDer(anchor)) {
      X509_STORE_add_cert(store.get(), certificate.get());
    }
  }
  ERR_clear_error();
  return store;
}

/// The store for these anchors, made on first use. Null when memory is short.
X509_STORE* storeFor(const std::vector<Bytes>& anchors, Roots roots) {
  static std::mutex lock;
  static std::map<std::pair<std::vector<Bytes>, Roots>, StorePointer> stores;
  const std::lock_guard guard(lock);
  StorePointer& store = stores[{anchors, roots}];
  if (!store) {
    store = makeStore(anchors, roots);
  }
  return store.get();
}

std::string subjectOf(const X509* certificate) {
  if (certificate == nullptr) {
    return "the server's certificate";
  }
  char name[256] = "";
  X509_NAME_oneline(X509_get_subject_name(certificate), name, sizeof name);
  return fmt::format("the certificate \"{}\"", name);
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
      host_(std::move(host)) {}

SystemTrust::~SystemTrust() { sk_X509_pop_free(presented_, X509_free); }

void SystemTrust::setAnchorCertificates(std::vector<Bytes> anchors) {
  anchors_ = std::move(anchors);
}

void SystemTrust::setAnchorCertificatesOnly(bool only) { anchorsOnly_ = only; }

bool SystemTrust::evaluate(std::string& error) {
  if (anchorsOnly_) {
    return isTrustedBy(storeFor(anchors_, Roots::none), error);
  }
  // Reading the bundle takes some 25 ms, and it seldom holds more than the folder.
  return isTrustedBy(storeFor(anchors_, Roots::byName), error) ||
         isTrustedBy(storeFor(anchors_, Roots::all), error);
}

bool SystemTrust::isTrustedBy(X509_STORE* store, std::string& error) const {
  const std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> context(
      X509_STORE_CTX_new(), X509_STORE_CTX_free);
  if (!leaf_ || !context || store == nullptr || host_.empty() ||
      X509_STORE_CTX_init(context.get(), store, leaf_.get(), presented_) != 1 ||
      X509_STORE_CTX_set_default(context.get(), "ssl_server") != 1) {
    error = "the certificate cannot be examined";
    return false;
  }
  X509_VERIFY_PARAM* rules = X509_STORE_CTX_get0_param(context.get());
  X509_VERIFY_PARAM_set_auth_level(rules, securityLevel);
  X509_VERIFY_PARAM_set_hostflags(rules, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
  if (X509_VERIFY_PARAM_set1_ip_asc(rules, host_.c_str()) != 1) {
    X509_VERIFY_PARAM_set1_host(rules, host_.data(), host_.size());
  }
  const bool passed = X509_verify_cert(context.get()) == 1;
  if (!passed) {
    error = reason(*context);
  }
  ERR_clear_error();
  return passed;
}

std::string SystemTrust::reason(const X509_STORE_CTX& context) const {
  const int code = X509_STORE_CTX_get_error(&context);
  const std::string subject = subjectOf(X509_STORE_CTX_get_current_cert(&context));
  switch (code) {
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
      return fmt::format("{} is not for the host {}", subject, host_);
    case X509_V_ERR_CERT_HAS_EXPIRED:
      return fmt::format("{} has expired", subject);
    case X509_V_ERR_CERT_NOT_YET_VALID:
      return fmt::format("{} is not valid yet", subject);
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
      return fmt::format("{} is self-signed and not trusted", subject);
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
      return fmt::format("the chain ends in a root that is not trusted: {}", subject);
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
      return fmt::format("the issuer of {} is unknown", subject);
    case X509_V_ERR_INVALID_PURPOSE:
      return fmt::format("{} is not meant for a server", subject);
    default:
      return fmt::format("{}: {}", subject, X509_verify_cert_error_string(code));
  }
}

bool verifyServerChain(const std::vector<Bytes>& chain, const std::string& host,
                       const std::vector<Bytes>& anchors, std::string& error) {
  const CertificatePointer leaf = chain.empty() ? nullptr : certificateFromDer(chain.front());
  const std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)> presented(
      sk_X509_new_null(), [](STACK_OF(X509) * stack) { sk_X509_pop_free(stack, X509_free); });
  for (const Bytes& der : chain) {
    // One that cannot be read is left out: the link that it would have been is then missing.
    if (CertificatePointer certificate = certificateFromDer(der)) {
      sk_X509_push(presented.get(), certificate.release());
    }
  }
  SystemTrust trust(leaf.get(), presented.get(), host);
  trust.setAnchorCertificates(anchors);
  trust.setAnchorCertificatesOnly(false);
  return trust.evaluate(error);
}

}  // namespace orlix
