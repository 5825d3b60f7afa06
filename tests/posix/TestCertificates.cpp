// SPDX-License-Identifier: Apache-2.0

#include "tests/posix/TestCertificates.h"

#include <stdexcept>

#include <openssl/dsa.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

namespace orlix {

namespace {

Bytes derOf(X509* certificate) {
  Bytes made(static_cast<std::size_t>(i2d_X509(certificate, nullptr)));
  unsigned char* end = made.data();
  i2d_X509(certificate, &end);
  return made;
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
  if (extension == nullptr || X509_add_ext(certificate, extension, -1) != 1) {
    throw std::runtime_error("a test certificate cannot have the extension " + value);
  }
  X509_EXTENSION_free(extension);
}

std::map<int, std::string> extensionsOf(const CertificateDraft& draft) {
  std::map<int, std::string> all = draft.extensions;
  // Those that are there already stay.
  all.insert({{NID_basic_constraints, draft.authority ? "critical,CA:TRUE" : "critical,CA:FALSE"},
              {NID_key_usage,
               draft.authority ? "critical,keyCertSign,cRLSign" : "critical,digitalSignature"},
              {NID_subject_key_identifier, "hash"},
              {NID_authority_key_identifier, "keyid"}});
  if (!draft.authority) {
    all.insert({{NID_subject_alt_name, draft.names}, {NID_ext_key_usage, draft.purpose}});
  }
  return all;
}

}  // namespace

Bytes Identity::der() const { return derOf(certificate.get()); }

std::vector<Bytes> Identity::chain() const {
  std::vector<Bytes> all{der()};
  for (const std::shared_ptr<X509>& intermediate : intermediates) {
    all.push_back(derOf(intermediate.get()));
  }
  return all;
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

std::shared_ptr<EVP_PKEY> makeTestKey(const std::string& type) {
  EVP_PKEY* made = nullptr;
  if (type == "DSA") {
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> rules(
        EVP_PKEY_CTX_new_from_name(nullptr, "DSA", nullptr), EVP_PKEY_CTX_free);
    EVP_PKEY* parameters = nullptr;
    EVP_PKEY_paramgen_init(rules.get());
    EVP_PKEY_CTX_set_dsa_paramgen_bits(rules.get(), 2048);
    EVP_PKEY_paramgen(rules.get(), &parameters);
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> maker(
        EVP_PKEY_CTX_new_from_pkey(nullptr, parameters, nullptr), EVP_PKEY_CTX_free);
    EVP_PKEY_free(parameters);
    EVP_PKEY_keygen_init(maker.get());
    EVP_PKEY_generate(maker.get(), &made);
  } else {
    made = type == "EC" ? EVP_EC_gen("P-256") : EVP_RSA_gen(type == "RSA" ? 2048 : 1024);
  }
  return {made, EVP_PKEY_free};
}

Identity makeIdentity(const CertificateDraft& draft, const Identity* issuer) {
  Identity made;
  made.key = makeTestKey(draft.keyType);
  made.certificate.reset(X509_new(), X509_free);
  X509* certificate = made.certificate.get();
  X509_set_version(certificate, draft.version);
  std::uint32_t serial = 0;
  RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial);
  ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), serial);
  X509_gmtime_adj(X509_getm_notBefore(certificate), draft.validFromHours * 3600);
  X509_gmtime_adj(X509_getm_notAfter(certificate), draft.validToHours * 3600);
  if (!draft.commonName.empty()) {
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(draft.commonName.c_str()), -1,
                               -1, 0);
  }
  X509* signer = issuer != nullptr ? issuer->certificate.get() : certificate;
  X509_set_issuer_name(certificate, X509_get_subject_name(signer));
  X509_set_pubkey(certificate, made.key.get());
  for (const auto& [kind, value] : extensionsOf(draft)) {
    if (!value.empty() && draft.version == X509_VERSION_3) {
      addExtension(certificate, signer, kind, value);
    }
  }
  EVP_PKEY* signingKey = issuer != nullptr ? issuer->key.get() : made.key.get();
  if (X509_sign(certificate, signingKey, EVP_sha256()) <= 0) {
    throw std::runtime_error("a test certificate cannot be made");
  }
  return made;
}

}  // namespace orlix
