// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/AnchorBundle.h"

#include <memory>
#include <stdexcept>

#include <fmt/format.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include "orlixkit/posix/DirectoryBundle.h"
#include "orlixkit/posix/SystemTrust.h"

namespace orlix {

namespace {

CertificatePointer readCertificate(const Bytes& contents) {
  if (CertificatePointer fromDer = certificateFromDer(contents)) {
    return fromDer;
  }
  const std::unique_ptr<BIO, decltype(&BIO_free)> source(
      BIO_new_mem_buf(contents.data(), static_cast<int>(contents.size())), BIO_free);
  CertificatePointer fromPem(source ? PEM_read_bio_X509(source.get(), nullptr, nullptr, nullptr)
                                    : nullptr);
  ERR_clear_error();
  return fromPem;
}

}  // namespace

AnchorBundle::AnchorBundle(const std::filesystem::path& file) {
  const std::optional<Bytes> contents = readFile(file);
  if (!contents) {
    throw std::runtime_error(fmt::format("anchor: cannot read {}", file.string()));
  }
  const CertificatePointer certificate = readCertificate(*contents);
  const int size = certificate ? i2d_X509(certificate.get(), nullptr) : 0;
  if (size <= 0) {
    throw std::runtime_error(
        fmt::format("anchor: {} holds no certificate in DER or PEM form", file.string()));
  }
  certificate_.resize(static_cast<std::size_t>(size));
  unsigned char* end = certificate_.data();
  i2d_X509(certificate.get(), &end);
}

std::optional<Bytes> AnchorBundle::resource(const std::string& name,
                                            const std::string& type) const {
  if (name == "certificateroot" && type == "cer") {
    return certificate_;
  }
  return std::nullopt;
}

}  // namespace orlix
