#pragma once

#include <memory>
#include <string>
#include <vector>

#include <openssl/x509_vfy.h>

namespace orlix {

struct FreeCertificate {
  void operator()(X509* certificate) const { X509_free(certificate); }
};
using CertificatePointer = std::unique_ptr<X509, FreeCertificate>;

struct FreeStore {
  void operator()(X509_STORE* store) const { X509_STORE_free(store); }
};

/// What chains are judged by.
struct TrustStore {
  std::unique_ptr<X509_STORE, FreeStore> store;  ///< roots and anchors; none when memory is short
  std::vector<CertificatePointer> anchors;
};

/// Judges the chain of an HTTPS server.
///
/// What the server presents must conform to RFC 5280, name the host among its alternative names,
/// allow the authentication of servers if it restricts its use, and have no DSA key; the server's
/// own certificate must not be an authority's. Anchors and roots are taken as they are, since
/// `openssl req -x509` makes authorities without a key usage: of them only validity, strength and
/// purpose count, and of an anchor that is the server's own certificate the host as well.
///
/// `leaf` is the server's own certificate, `presented` what it sent along (may be null). `host` is
/// a name in ASCII or an address. On false `error` says why. Any thread.
bool verifyChain(const TrustStore& trusted, X509* leaf, STACK_OF(X509) * presented,
                 const std::string& host, std::string& error);

}  // namespace orlix
