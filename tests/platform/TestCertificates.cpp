#include "tests/platform/TestCertificates.h"

#include <stdexcept>

#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace orlix {

namespace {

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

}  // namespace

Bytes Identity::der() const {
  Bytes made(static_cast<std::size_t>(i2d_X509(certificate.get(), nullptr)));
  unsigned char* end = made.data();
  i2d_X509(certificate.get(), &end);
  return made;
}

std::string Identity::pem() const {
  BIO* memory = BIO_new(BIO_s_mem());
  PEM_write_bio_X509(memory, certificate.get());
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory, &text);
  std::string made(text, static_cast<std::size_t>(size));
  BIO_free(memory);
  return made;
}

Identity makeIdentity(const CertificateDraft& draft, const Identity* issuer) {
  Identity made;
  made.key.reset(EVP_EC_gen("P-256"), EVP_PKEY_free);
  made.certificate.reset(X509_new(), X509_free);
  X509* certificate = made.certificate.get();
  X509_set_version(certificate, X509_VERSION_3);
  std::uint32_t serial = 0;
  RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial);
  ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), serial);
  X509_gmtime_adj(X509_getm_notBefore(certificate), draft.validFromHours * 3600);
  X509_gmtime_adj(X509_getm_notAfter(certificate), draft.validToHours * 3600);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                             reinterpret_cast<const unsigned char*>(draft.commonName.c_str()), -1,
                             -1, 0);
  X509* signer = issuer != nullptr ? issuer->certificate.get() : certificate;
  X509_set_issuer_name(certificate, X509_get_subject_name(signer));
  X509_set_pubkey(certificate, made.key.get());
  addExtension(certificate, signer, NID_basic_constraints,
               draft.authority ? "critical,CA:TRUE" : "CA:FALSE");
  addExtension(certificate, signer, NID_subject_key_identifier, "hash");
  if (!draft.names.empty() && !draft.authority) {
    addExtension(certificate, signer, NID_subject_alt_name, draft.names);
  }
  if (!draft.purpose.empty() && !draft.authority) {
    addExtension(certificate, signer, NID_ext_key_usage, draft.purpose);
  }
  EVP_PKEY* signingKey = issuer != nullptr ? issuer->key.get() : made.key.get();
  if (X509_sign(certificate, signingKey, EVP_sha256()) <= 0) {
    throw std::runtime_error("a test certificate cannot be made");
  }
  return made;
}

}  // namespace orlix
