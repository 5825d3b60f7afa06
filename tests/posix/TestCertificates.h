// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

/// A certificate with its key. Copies share both.
struct Identity {
  std::shared_ptr<X509> certificate;
  std::shared_ptr<EVP_PKEY> key;
  std::vector<std::shared_ptr<X509>> intermediates;

  Bytes der() const;
  std::string pem() const;
  /// Its own certificate, then the intermediates.
  std::vector<Bytes> chain() const;
};

/// What a certificate made for a test says. The default is a server's for this machine, and
/// conforms to RFC 5280.
struct CertificateDraft {
  std::string commonName = "OrlixKit test server";   ///< no subject when empty
  std::string names = "IP:127.0.0.1,DNS:localhost";  ///< none when empty
  bool authority = false;
  std::string purpose = "serverAuth";  ///< extended key usage; none when empty
  long validFromHours = -24;           ///< from now
  long validToHours = 24;
  /// By NID, in OpenSSL's notation, in place of the usual ones; an empty one is left out.
  std::map<int, std::string> extensions = {};
  long version = X509_VERSION_3;  ///< those before it have no extensions
  const char* keyType = "EC";     ///< or "RSA", "RSA-1024", "DSA"
};

std::shared_ptr<EVP_PKEY> makeTestKey(const std::string& type);

/// Signed by `issuer`, or by itself when there is none.
Identity makeIdentity(const CertificateDraft& draft, const Identity* issuer = nullptr);

}  // namespace orlix
