// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace orlix::sandbox {

/// What is wrong with the server's certificate; a client must refuse all but `none`.
enum class CertificateFlaw { none, wrongHost, expired, notYetValid, otherRoot, clientOnly };

/// A private root, and a server certificate under it that is made at each start. EC P-256 keys. The
/// root signs for the served addresses only (name constraints), so that whoever installs it on a
/// phone trusts it for nothing else.
class Certificates {
 public:
  struct Setup {
    std::vector<std::string> addresses{
        "127.0.0.1"};  ///< IPv4; the name localhost is always served.
    CertificateFlaw flaw = CertificateFlaw::none;
    /// Keeps the root with its key, readable by its owner only, and is made when it is missing.
    /// Empty: the root is a new one at each start, and its key is never written.
    std::filesystem::path keptRoot{};
  };

  /// Throws std::runtime_error with the reason: OpenSSL refuses, or a kept root cannot be used.
  explicit Certificates(const Setup& setup);

  X509* server() const { return server_.get(); }
  EVP_PKEY* serverKey() const { return serverKey_.get(); }

  static constexpr const char* kAnchorAsText = "certificateroot.pem";

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

  /// A certificate that signs, with its key.
  struct Root {
    Certificate certificate;
    Key key;
  };

  static Key makeKey();
  static Root makeRoot(const Setup& setup);
  static Root keptRoot(const Setup& setup);
  static Certificate makeServer(EVP_PKEY* key, const Root& root, const Setup& setup);

  Certificate anchor_;
  Certificate server_;
  Key serverKey_;
};

}  // namespace orlix::sandbox
