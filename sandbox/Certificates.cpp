// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Certificates.h"

#include <cstdint>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <unistd.h>

#include <fmt/format.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace orlix::sandbox {

namespace {

namespace fs = std::filesystem;

constexpr long kDay = 24L * 60 * 60;

constexpr const char* kOtherName = "DNS:elsewhere.invalid";

using Memory = std::unique_ptr<BIO, int (*)(BIO*)>;

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

void writeFile(const fs::path& file, std::string_view bytes) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) throw std::runtime_error(fmt::format("cannot write {}", file.string()));
}

/// Readable by its owner only from the first moment, and there only when it is whole.
void writePrivateFile(const fs::path& file, std::string_view bytes) {
  const fs::path part = file.string() + ".part";
  std::error_code error;
  fs::remove(part, error);
  const int descriptor = ::open(part.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  const bool written = descriptor >= 0 && ::write(descriptor, bytes.data(), bytes.size()) ==
                                              static_cast<ssize_t>(bytes.size());
  if (descriptor >= 0) ::close(descriptor);
  if (written) fs::rename(part, file, error);
  if (!written || error) throw std::runtime_error(fmt::format("cannot write {}", file.string()));
}

std::string contentsOf(BIO* memory) {
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(memory, &bytes);
  return {bytes, static_cast<size_t>(size)};
}

std::string derOf(X509* certificate) {
  const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
  require(memory != nullptr && i2d_X509_bio(memory.get(), certificate) == 1, "DER form");
  return contentsOf(memory.get());
}

std::string pemOf(X509* certificate) {
  const Memory memory(BIO_new(BIO_s_mem()), &BIO_free);
  require(memory != nullptr && PEM_write_bio_X509(memory.get(), certificate) == 1, "PEM form");
  return contentsOf(memory.get());
}

std::string pemOf(EVP_PKEY* key) {
  const Memory memory(BIO_new(BIO_s_secmem()), &BIO_free);
  require(memory != nullptr && PEM_write_bio_PKCS8PrivateKey(memory.get(), key, nullptr, nullptr, 0,
                                                             nullptr, nullptr) == 1,
          "PEM form");
  return contentsOf(memory.get());
}

/// "IP:127.0.0.1,DNS:localhost"
std::string namesOf(const Certificates::Setup& setup) {
  if (setup.flaw == CertificateFlaw::wrongHost) return kOtherName;
  std::string names = "DNS:localhost";
  for (const std::string& address : setup.addresses) names += ",IP:" + address;
  return names;
}

std::string constraintsOf(const Certificates::Setup& setup) {
  std::string constraints = "critical,permitted;DNS:localhost";
  for (const std::string& address : setup.addresses) {
    constraints += fmt::format(",permitted;IP:{}/255.255.255.255", address);
  }
  // The flaw is the host's name, not what the root may sign.
  if (setup.flaw == CertificateFlaw::wrongHost)
    constraints += fmt::format(",permitted;{}", kOtherName);
  return constraints;
}

/// Why the root does not vouch for the server, in OpenSSL's words; nothing when it does.
std::string complaintAbout(X509* server, X509* root) {
  const std::unique_ptr<X509_STORE, void (*)(X509_STORE*)> store(X509_STORE_new(),
                                                                 &X509_STORE_free);
  const std::unique_ptr<X509_STORE_CTX, void (*)(X509_STORE_CTX*)> check(X509_STORE_CTX_new(),
                                                                         &X509_STORE_CTX_free);
  require(store && check && X509_STORE_add_cert(store.get(), root) == 1 &&
              X509_STORE_CTX_init(check.get(), store.get(), server, nullptr) == 1,
          "memory");
  if (X509_verify_cert(check.get()) == 1) return {};
  return X509_verify_cert_error_string(X509_STORE_CTX_get_error(check.get()));
}

}  // namespace

Certificates::Certificates(const Setup& setup) : serverKey_(makeKey()) {
  Root root = setup.keptRoot.empty() ? makeRoot(setup) : keptRoot(setup);
  server_ = makeServer(serverKey_.get(), root, setup);
  if (!setup.keptRoot.empty()) {
    const std::string wrong = complaintAbout(server_.get(), root.certificate.get());
    if (!wrong.empty()) {
      throw std::runtime_error(fmt::format(
          "the root in {} is not for {}: {}. Remove the file for a new root, and install "
          "that one in place of the old",
          setup.keptRoot.string(), namesOf(setup), wrong));
    }
  }
  // With the flaw the file that clients are given names a root that signed nothing.
  if (setup.flaw == CertificateFlaw::otherRoot) root = makeRoot(setup);
  anchor_ = std::move(root.certificate);
}

Certificates::Key Certificates::makeKey() {
  Key key(EVP_EC_gen("P-256"));
  require(key != nullptr, "key");
  return key;
}

Certificates::Root Certificates::makeRoot(const Setup& setup) {
  Root made{Certificate(X509_new()), makeKey()};
  X509* const root = made.certificate.get();
  require(root != nullptr, "memory");
  // A unique name for each root: two roots with the same name and different keys confuse verifiers.
  prepare(root, made.key.get(),
          fmt::format("Orlix sandbox root {:08x}", randomNumber() & 0xffffffffU), -kDay,
          3650 * kDay);
  require(X509_set_issuer_name(root, X509_get_subject_name(root)) == 1, "issuer");
  extend(root, root, NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
  extend(root, root, NID_key_usage, "critical,keyCertSign,cRLSign");
  extend(root, root, NID_subject_key_identifier, "hash");
  extend(root, root, NID_name_constraints, constraintsOf(setup).c_str());
  require(X509_sign(root, made.key.get(), EVP_sha256()) > 0, "signature");
  return made;
}

Certificates::Root Certificates::keptRoot(const Setup& setup) {
  const std::string file = setup.keptRoot.string();
  if (!fs::exists(setup.keptRoot)) {
    Root made = makeRoot(setup);
    writePrivateFile(setup.keptRoot, pemOf(made.key.get()) + pemOf(made.certificate.get()));
    return made;
  }
  const fs::perms others = fs::perms::group_all | fs::perms::others_all;
  if ((fs::status(setup.keptRoot).permissions() & others) != fs::perms::none) {
    throw std::runtime_error(fmt::format(
        "{} holds a private key and is open to others than its owner; remove it for a new root, or "
        "close it with chmod 600",
        file));
  }
  const Memory in(BIO_new_file(file.c_str(), "r"), &BIO_free);
  Root kept{nullptr,
            Key(in ? PEM_read_bio_PrivateKey(in.get(), nullptr, nullptr, nullptr) : nullptr)};
  if (kept.key) kept.certificate.reset(PEM_read_bio_X509(in.get(), nullptr, nullptr, nullptr));
  if (!kept.certificate || X509_check_private_key(kept.certificate.get(), kept.key.get()) != 1) {
    throw std::runtime_error(
        fmt::format("{} holds no root with its key; remove it for a new one", file));
  }
  return kept;
}

Certificates::Certificate Certificates::makeServer(EVP_PKEY* key, const Root& root,
                                                   const Setup& setup) {
  Certificate server(X509_new());
  require(server != nullptr, "memory");
  X509* const issuer = root.certificate.get();
  const long from = setup.flaw == CertificateFlaw::notYetValid ? 2 * kDay : -kDay;
  const long until = setup.flaw == CertificateFlaw::expired ? -60 : 397 * kDay;
  prepare(server.get(), key, "Orlix sandbox", from, until);
  require(X509_set_issuer_name(server.get(), X509_get_subject_name(issuer)) == 1, "issuer");
  extend(server.get(), issuer, NID_basic_constraints, "critical,CA:FALSE");
  extend(server.get(), issuer, NID_key_usage, "critical,digitalSignature");
  extend(server.get(), issuer, NID_ext_key_usage,
         setup.flaw == CertificateFlaw::clientOnly ? "clientAuth" : "serverAuth");
  extend(server.get(), issuer, NID_subject_key_identifier, "hash");
  extend(server.get(), issuer, NID_authority_key_identifier, "keyid:always");
  extend(server.get(), issuer, NID_subject_alt_name, namesOf(setup).c_str());
  require(X509_sign(server.get(), root.key.get(), EVP_sha256()) > 0, "signature");
  return server;
}

void Certificates::write(const fs::path& folder) const {
  writeFile(folder / "certificateroot.cer", derOf(anchor_.get()));
  writeFile(folder / kAnchorAsText, pemOf(anchor_.get()));
  writeFile(folder / "server.cer", derOf(server_.get()));
}

}  // namespace orlix::sandbox
