// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <filesystem>
#include <stdexcept>

#include <fmt/format.h>
#include <openssl/evp.h>

#include "bench/BareStore.h"
#include "bench/Rows.h"
#include "orlixkit/posix/SqliteUserDefaults.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/PinBlock.h"

namespace orlix::bench {

namespace {

/// The bare cipher call, as OpenSSL's manual shows it.
void encryptBare(const EVP_CIPHER* cipher, const std::array<unsigned char, 24>& key, int direction,
                 const unsigned char* from, int size, unsigned char* to, const unsigned char* iv,
                 bool padding) {
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  int written = 0;
  int last = 0;
  const bool done = EVP_CipherInit_ex(context, cipher, nullptr, key.data(), iv, direction) == 1 &&
                    EVP_CIPHER_CTX_set_padding(context, padding ? 1 : 0) == 1 &&
                    EVP_CipherUpdate(context, to, &written, from, size) == 1 &&
                    EVP_CipherFinal_ex(context, to + written, &last) == 1;
  EVP_CIPHER_CTX_free(context);
  if (!done) {
    throw std::runtime_error("the bare cipher failed");
  }
}

/// A storage interface over one key of a user-defaults file.
class FileStorage : public StorageInterface {
 public:
  explicit FileStorage(const std::string& file) : defaults_(file) {}
  Bytes loadData() override { return defaults_.dataForKey("test.data").value_or(Bytes()); }
  void saveData(const std::optional<Bytes>& data) override {
    defaults_.setValue("test.data", data.value());
  }

 private:
  SqliteUserDefaults defaults_;
};

}  // namespace

Row pinBlockRow() {
  const SecretBytes key(16, 0x3A);
  const SecretString pin("1234");
  std::array<unsigned char, 24> tripleKey;
  tripleKey.fill(0x3A);
  const std::array<unsigned char, 8> clear{0x04, 0x12, 0x34, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  std::array<unsigned char, 16> block{};
  return compare(
      "a PIN block : bare triple DES", 1.5, {.samples = 200, .batch = 100},
      [&] {
        encryptBare(EVP_des_ede3_ecb(), tripleKey, 1, clear.data(), 8, block.data(), nullptr,
                    false);
      },
      [&] { PinBlock::createPINBlock(key, pin, 0); });
}

Row storeRow(const std::string& file) {
  std::filesystem::create_directories(std::filesystem::path(file).parent_path());
  std::filesystem::remove(file);
  std::filesystem::remove(file + ".bare");
  FileStorage storage(file);
  const DataStore store(SecretBytes(16, 0x11));
  PersistableObject record;
  int saved = 0;
  BareStore bare(file + ".bare");
  std::array<unsigned char, 24> key;
  key.fill(0x11);
  const std::array<unsigned char, 16> iv{};
  const std::array<unsigned char, 80> clear{};
  std::array<unsigned char, 128> cipher{};
  std::array<unsigned char, 128> back{};
  return compare(
      "the record saved and loaded : bare cipher and SQLite", 1.3, {.samples = 100},
      [&] {
        encryptBare(EVP_aes_128_cbc(), key, 1, clear.data(), 80, cipher.data(), iv.data(), true);
        bare.write(cipher.data(), 96);
        const int size = bare.read(cipher.data());
        encryptBare(EVP_aes_128_cbc(), key, 0, cipher.data(), size, back.data(), iv.data(), true);
      },
      [&] {
        // A different value each time: an unchanged value is not written again.
        record.ssToken = fmt::format("wallet-token-of-some-{:016}", ++saved);
        store.save(storage, record);
        if (!store.load(storage)) {
          throw std::runtime_error("the record was not read back");
        }
      });
}

}  // namespace orlix::bench
