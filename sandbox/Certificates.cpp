#include "sandbox/Certificates.h"

#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace orlix::sandbox {

namespace {

constexpr long day = 24L * 60 * 60;

void require(bool worked, const char* step) {
  if (!worked) throw std::runtime_error(fmt::format("cannot make a certificate: {}", step));
}

std::uint64_t randomNumber() {
  std::uint64_t number = 0;
  require(RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof number) == 1, "random");
  return number >> 1;  // A serial number is positive.
}

void extend(X509* certificate, X509* issuer, int kind, const char* value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value);
  require(extension != nullptr, value);
  const bool added = X509_add_ext(certificate, extension, -1) == 1;
  X509_EXTENSION_free(extension);
  require(added, value);
}

void prepare(X509* certificate, EVP_PKEY* key, const std::string& name, long from, long until) {
  require(X509_set_version(certificate, X509_VERSION_3) == 1, "version");
  require(ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), randomNumber()) == 1,
          "serial number");
  require(X509_gmtime_adj(X509_getm_notBefore(certificate), from) != nullptr, "validity");
  require(X509_gmtime_adj(X509_getm_notAfter(certificate), until) != nullptr, "validity");
  require(X509_set_pubkey(certificate, key) == 1, "public key");
  require(X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                                     reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1,
                                     0) == 1,
          "name");
}

void writeFile(const std::filesystem::path& file, const void* bytes, size_t size) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  out.close();
  if (!out) throw std::runtime_error(fmt::format("cannot write {}", file.string()));
}

void writeDer(X509* certificate, const std::filesystem::path& file) {
  unsigned char* bytes = nullptr;
  const int size = i2d_X509(certificate, &bytes);
  require(size > 0, "DER form");
  const std::unique_ptr<unsigned char, void (*)(unsigned char*)> owner(
      bytes, [](unsigned char* used) { OPENSSL_free(used); });
  writeFile(file, bytes, static_cast<size_t>(size));
}

void writePem(X509* certificate, const std::filesystem::path& file) {
  const std::unique_ptr<BIO, int (*)(BIO*)> memory(BIO_new(BIO_s_mem()), &BIO_free);
  require(memory != nullptr && PEM_write_bio_X509(memory.get(), certificate) == 1, "PEM form");
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &bytes);
  writeFile(file, bytes, static_cast<size_t>(size));
}

}  // namespace

Certificates::Certificates(CertificateFlaw flaw) : serverKey_(makeKey()) {
  const Key rootKey = makeKey();
  anchor_ = makeRoot(rootKey.get());
  server_ = makeServer(serverKey_.get(), anchor_.get(), rootKey.get(), flaw);
  if (flaw == CertificateFlaw::otherRoot) {
    // The file that clients are given then names a root that signed nothing.
    const Key otherKey = makeKey();
    anchor_ = makeRoot(otherKey.get());
  }
}

Certificates::Key Certificates::makeKey() {
  Key key(EVP_EC_gen("P-256"));
  require(key != nullptr, "key");
  return key;
}

Certificates::Certificate Certificates::makeRoot(EVP_PKEY* key) {
  Certificate root(X509_new());
  require(root != nullptr, "memory");
  // A unique name for each root: two roots with the same name and different keys confuse verifiers.
  prepare(root.get(), key, fmt::format("Orlix sandbox root {:08x}", randomNumber() & 0xffffffffU),
          -day, 3650 * day);
  require(X509_set_issuer_name(root.get(), X509_get_subject_name(root.get())) == 1, "issuer");
  extend(root.get(), root.get(), NID_basic_constraints, "critical,CA:TRUE");
  extend(root.get(), root.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
  extend(root.get(), root.get(), NID_subject_key_identifier, "hash");
  require(X509_sign(root.get(), key, EVP_sha256()) > 0, "signature");
  return root;
}

Certificates::Certificate Certificates::makeServer(EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey,
                                                   CertificateFlaw flaw) {
  Certificate server(X509_new());
  require(server != nullptr, "memory");
  const long from = flaw == CertificateFlaw::notYetValid ? 2 * day : -day;
  const long until = flaw == CertificateFlaw::expired ? -60 : 397 * day;
  prepare(server.get(), key, "Orlix sandbox", from, until);
  require(X509_set_issuer_name(server.get(), X509_get_subject_name(issuer)) == 1, "issuer");
  extend(server.get(), issuer, NID_basic_constraints, "critical,CA:FALSE");
  extend(server.get(), issuer, NID_key_usage, "critical,digitalSignature");
  extend(server.get(), issuer, NID_ext_key_usage,
         flaw == CertificateFlaw::clientOnly ? "clientAuth" : "serverAuth");
  extend(server.get(), issuer, NID_subject_key_identifier, "hash");
  extend(server.get(), issuer, NID_authority_key_identifier, "keyid:always");
  extend(
      server.get(), issuer, NID_subject_alt_name,
      flaw == CertificateFlaw::wrongHost ? "DNS:elsewhere.invalid" : "IP:127.0.0.1,DNS:localhost");
  require(X509_sign(server.get(), issuerKey, EVP_sha256()) > 0, "signature");
  return server;
}

void Certificates::write(const std::filesystem::path& folder) const {
  writeDer(anchor_.get(), folder / "certificateroot.cer");
  writePem(anchor_.get(), folder / anchorAsText);
  writeDer(server_.get(), folder / "server.cer");
}

}  // namespace orlix::sandbox
