#pragma once

#include <memory>
#include <string>
#include <vector>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// A certificate with its key. Copies share both.
struct Identity {
  std::shared_ptr<X509> certificate;
  std::shared_ptr<EVP_PKEY> key;
  std::vector<std::shared_ptr<X509>> intermediates;

  Bytes der() const;
  std::string pem() const;
};

/// What a certificate made for a test says. The default is a server's for this machine.
struct CertificateDraft {
  std::string commonName = "OrlixKit test server";
  std::string names = "IP:127.0.0.1,DNS:localhost";  ///< none when empty
  bool authority = false;
  std::string purpose = "serverAuth";  ///< extended key usage; none when empty
  long validFromHours = -24;           ///< from now
  long validToHours = 24;
};

/// Signed by `issuer`, or by itself when there is none.
Identity makeIdentity(const CertificateDraft& draft, const Identity* issuer = nullptr);

}  // namespace orlix
