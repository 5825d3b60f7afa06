// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/ChainVerification.h"

#include <algorithm>

#include <fmt/format.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

namespace orlix {

namespace {

/// Security level 2: keys of at least 112 bits of strength and no SHA-1, as TLS requires.
constexpr int kSecurityLevel = 2;

/// Errors of OpenSSL's strict mode, which concern only how a certificate is written.
bool concernsForm(int error, X509* certificate) {
  switch (error) {
    case X509_V_ERR_EC_KEY_EXPLICIT_PARAMS:
    case X509_V_ERR_PATHLEN_INVALID_FOR_NON_CA:
    case X509_V_ERR_PATHLEN_WITHOUT_KU_KEY_CERT_SIGN:
    case X509_V_ERR_CA_BCONS_NOT_CRITICAL:
    case X509_V_ERR_CA_CERT_MISSING_KEY_USAGE:
    case X509_V_ERR_KU_KEY_CERT_SIGN_INVALID_FOR_NON_CA:
    case X509_V_ERR_ISSUER_NAME_EMPTY:
    case X509_V_ERR_SUBJECT_NAME_EMPTY:
    case X509_V_ERR_EMPTY_SUBJECT_SAN_NOT_CRITICAL:
    case X509_V_ERR_EMPTY_SUBJECT_ALT_NAME:
    case X509_V_ERR_SIGNATURE_ALGORITHM_INCONSISTENCY:
    case X509_V_ERR_AUTHORITY_KEY_IDENTIFIER_CRITICAL:
    case X509_V_ERR_SUBJECT_KEY_IDENTIFIER_CRITICAL:
    case X509_V_ERR_MISSING_AUTHORITY_KEY_IDENTIFIER:
    case X509_V_ERR_MISSING_SUBJECT_KEY_IDENTIFIER:
    case X509_V_ERR_EXTENSIONS_REQUIRE_VERSION_3:
      return true;
    case X509_V_ERR_INVALID_CA:
      return X509_check_ca(certificate) != 0;  // by older rules, as version 1 authorities
    default:
      return false;
  }
}

class Verification {
 public:
  Verification(const TrustStore& trusted, X509* leaf, STACK_OF(X509) * presented,
               const std::string& host)
      : trusted_(trusted), host_(host), context_(X509_STORE_CTX_new(), X509_STORE_CTX_free) {
    ready_ = leaf != nullptr && context_ && trusted.store && !host.empty() &&
             X509_STORE_CTX_init(context_.get(), trusted.store.get(), leaf, presented) == 1 &&
             X509_STORE_CTX_set_default(context_.get(), "ssl_server") == 1 &&
             X509_STORE_CTX_set_app_data(context_.get(), this) == 1 && setRules(leaf);
  }

  bool passes(std::string& error) const {
    if (!ready_) {
      error = "the certificate cannot be examined";
      return false;
    }
    std::string flaw = X509_verify_cert(context_.get()) == 1 ? flawOfPresented() : reason();
    ERR_clear_error();
    if (!flaw.empty()) {
      error = std::move(flaw);
      return false;
    }
    return true;
  }

 private:
  bool setRules(const X509* leaf) {
    X509_VERIFY_PARAM* rules = X509_STORE_CTX_get0_param(context_.get());
    X509_VERIFY_PARAM_set_auth_level(rules, kSecurityLevel);
    X509_VERIFY_PARAM_set_flags(rules, X509_V_FLAG_X509_STRICT);
    X509_STORE_CTX_set_verify_cb(context_.get(), &onProblem);
    X509_VERIFY_PARAM_set_hostflags(
        rules, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS |
                   (isAnchor(leaf) ? 0U : unsigned{X509_CHECK_FLAG_NEVER_CHECK_SUBJECT}));
    return X509_VERIFY_PARAM_set1_ip_asc(rules, host_.c_str()) == 1 ||
           X509_VERIFY_PARAM_set1_host(rules, host_.data(), host_.size()) == 1;
  }

  bool isAnchor(const X509* certificate) const {
    return std::any_of(
        trusted_.anchors.begin(), trusted_.anchors.end(),
        [certificate](const auto& anchor) { return X509_cmp(anchor.get(), certificate) == 0; });
  }

  bool isTakenAsItIs(const X509* certificate, int depth) const {
    return depth >= X509_STORE_CTX_get_num_untrusted(context_.get()) || isAnchor(certificate);
  }

  static int onProblem(int passed, X509_STORE_CTX* context) {
    const auto* self = static_cast<const Verification*>(X509_STORE_CTX_get_app_data(context));
    X509* const certificate = X509_STORE_CTX_get_current_cert(context);
    const bool forgiven = passed != 1 && certificate != nullptr &&
                          concernsForm(X509_STORE_CTX_get_error(context), certificate) &&
                          self->isTakenAsItIs(certificate, X509_STORE_CTX_get_error_depth(context));
    return forgiven ? 1 : passed;
  }

  /// Reason to refuse a chain that OpenSSL accepts and phones do not; empty when there is none.
  std::string flawOfPresented() const {
    const STACK_OF(X509)* chain = X509_STORE_CTX_get0_chain(context_.get());
    for (int depth = 0; depth < sk_X509_num(chain); ++depth) {
      X509* const certificate = sk_X509_value(chain, depth);
      if (isTakenAsItIs(certificate, depth)) {
        continue;
      }
      const std::string subject = subjectOf(certificate);
      if (depth == 0 && X509_check_ca(certificate) != 0) {
        return fmt::format("{} is an authority's, not a server's", subject);
      }
      // All bits are set when the usage is not restricted.
      if ((X509_get_extended_key_usage(certificate) & XKU_SSL_SERVER) == 0) {
        return fmt::format("{} is not meant for a server", subject);
      }
      if (EVP_PKEY_is_a(X509_get0_pubkey(certificate), "DSA") == 1) {
        return fmt::format("{} has a DSA key", subject);
      }
    }
    return {};
  }

  static std::string subjectOf(const X509* certificate) {
    if (certificate == nullptr) {
      return "the server's certificate";
    }
    char name[256] = "";
    X509_NAME_oneline(X509_get_subject_name(certificate), name, sizeof name);
    return fmt::format("the certificate \"{}\"", name);
  }

  std::string reason() const {
    const int code = X509_STORE_CTX_get_error(context_.get());
    const std::string subject = subjectOf(X509_STORE_CTX_get_current_cert(context_.get()));
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

  const TrustStore& trusted_;
  const std::string& host_;
  const std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> context_;
  bool ready_ = false;
};

}  // namespace

bool verifyChain(const TrustStore& trusted, X509* leaf, STACK_OF(X509) * presented,
                 const std::string& host, std::string& error) {
  return Verification(trusted, leaf, presented, host).passes(error);
}

}  // namespace orlix
