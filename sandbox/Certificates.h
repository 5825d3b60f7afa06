#pragma once

#include <filesystem>
#include <memory>

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace orlix::sandbox {

/// What is wrong with the server's certificate; a client must refuse all but `none`.
enum class CertificateFlaw { none, wrongHost, expired, notYetValid, otherRoot, clientOnly };

/// A private root and a server certificate for 127.0.0.1 and localhost under it, made afresh at
/// each start. EC P-256 keys; the private ones exist in memory only and are never written.
class Certificates {
 public:
  /// Throws std::runtime_error when OpenSSL refuses.
  explicit Certificates(CertificateFlaw flaw = CertificateFlaw::none);

  X509* server() const { return server_.get(); }
  EVP_PKEY* serverKey() const { return serverKey_.get(); }

  static constexpr const char* anchorAsText = "certificateroot.pem";

  /// Writes certificateroot.cer and server.cer (DER), and the root as PEM too, into `folder`, which
  /// must exist. Throws std::runtime_error with the path when a file cannot be written.
  void write(const std::filesystem::path& folder) const;

 private:
  struct Free {
    void operator()(X509* certificate) const { X509_free(certificate); }
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  };
  using Certificate = std::unique_ptr<X509, Free>;
  using Key = std::unique_ptr<EVP_PKEY, Free>;

  static Key makeKey();
  static Certificate makeRoot(EVP_PKEY* key);
  static Certificate makeServer(EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey,
                                CertificateFlaw flaw);

  Certificate anchor_;
  Certificate server_;
  Key serverKey_;
};

}  // namespace orlix::sandbox
