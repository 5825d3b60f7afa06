#pragma once

#include <memory>
#include <string>
#include <vector>

#include <openssl/x509_vfy.h>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/HttpClient.h"
#include "orlixkit/platform/posix/ChainVerification.h"

namespace orlix {

/// None when the bytes are no certificate in DER form.
CertificatePointer certificateFromDer(ByteView der);

/// A presented chain, judged by OpenSSL (ChainVerification): against the system's roots (OpenSSL's
/// default places; SSL_CERT_FILE and SSL_CERT_DIR name others) and the anchors. Roots are looked up
/// by name first; the whole bundle is read once in the process, and only for a chain that they do
/// not vouch for. One thread at a time.
class SystemTrust : public ServerTrust {
 public:
  /// Takes references of its own. `host` is a name or an address, as it stands in the URL: without
  /// brackets, and an internationalised name in ASCII. The dot that a name may end with is ignored.
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

/// Judges a chain that somebody else has received, by the same rules: `chain` in DER, the server's
/// own certificate first; `anchors` are added to the system's roots. False with the reason in
/// `error`.
bool verifyServerChain(const std::vector<Bytes>& chain, const std::string& host,
                       const std::vector<Bytes>& anchors, std::string& error);

}  // namespace orlix
