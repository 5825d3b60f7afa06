// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <openssl/x509_vfy.h>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/HttpClient.h"
#include "orlixkit/posix/ChainVerification.h"

namespace orlix {

/// Null when the bytes are not a certificate in DER form.
CertificatePointer certificateFromDer(ByteView der);

/// A presented chain, verified by OpenSSL (ChainVerification) against the system's roots (OpenSSL's
/// default locations; SSL_CERT_FILE and SSL_CERT_DIR name others) and the anchors. Roots are looked
/// up by name first; the whole bundle is read at most once per process, and only when that look-up
/// does not verify the chain. One thread at a time.
class SystemTrust : public ServerTrust {
 public:
  /// Takes its own references. `host` is the name or address from the URL, without brackets; an
  /// internationalised name is in ASCII. A trailing dot is ignored.
  SystemTrust(X509* leaf, STACK_OF(X509) * presented, std::string host);
  ~SystemTrust() override;
  SystemTrust(const SystemTrust&) = delete;
  SystemTrust& operator=(const SystemTrust&) = delete;

  bool evaluate(const std::vector<Bytes>& anchors, bool anchorsOnly, std::string& error) override;

 private:
  const CertificatePointer leaf_;
  STACK_OF(X509) * const presented_;
  const std::string host_;
};

/// Verifies a chain received by another TLS client, by the same rules: `chain` in DER, the server's
/// own certificate first; `anchors` are added to the system's roots. On false, `error` holds the
/// reason.
bool verifyServerChain(const std::vector<Bytes>& chain, const std::string& host,
                       const std::vector<Bytes>& anchors, std::string& error);

}  // namespace orlix
