// SPDX-License-Identifier: Apache-2.0

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

/// The certificates that chains are verified against.
struct TrustStore {
  std::unique_ptr<X509_STORE, FreeStore> store;  ///< roots and anchors; null when memory ran out
  std::vector<CertificatePointer> anchors;
};

/// Verifies the certificate chain of an HTTPS server.
///
/// The presented certificates must conform to RFC 5280, name the host among the alternative names,
/// allow server authentication if they restrict their use, and have no DSA key; the server's own
/// certificate must not be an authority's. Anchors and roots need not conform, since `openssl req
/// -x509` makes authorities without a key usage: only their validity, strength and purpose are
/// checked, and the host as well for an anchor that is the server's own certificate.
///
/// `leaf` is the server's own certificate, `presented` the others that it sent (may be null).
/// `host` is an ASCII name or an address. On false, `error` holds the reason. Any thread.
bool verifyChain(const TrustStore& trusted, X509* leaf, STACK_OF(X509) * presented,
                 const std::string& host, std::string& error);

}  // namespace orlix
