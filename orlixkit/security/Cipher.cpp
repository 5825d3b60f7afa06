// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/Cipher.h"

#include <algorithm>
#include <limits>
#include <memory>

#include <openssl/err.h>
#include <openssl/evp.h>

namespace orlix {

namespace {

using Context = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

struct FreeCipher {
  void operator()(EVP_CIPHER* kind) const { EVP_CIPHER_free(kind); }
};
using FetchedCipher = std::unique_ptr<EVP_CIPHER, FreeCipher>;

/// Fetched once and kept, since fetching costs as much as encrypting a block. Null when the system
/// lacks the cipher; its use then fails.
FetchedCipher fetch(const char* name) {
  FetchedCipher kind(EVP_CIPHER_fetch(nullptr, name, nullptr));
  ERR_clear_error();
  return kind;
}

std::optional<SecretBytes> run(const EVP_CIPHER* kind, Cipher::Direction direction, bool padded,
                               const SecretBytes& key, const std::uint8_t* vector, ByteView data) {
  constexpr auto kLongest =
      static_cast<std::size_t>(std::numeric_limits<int>::max() - EVP_MAX_BLOCK_LENGTH);
  const Context context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
  if (kind == nullptr || !context || data.size() > kLongest) {
    return std::nullopt;
  }
  SecretBytes out(data.size() + EVP_MAX_BLOCK_LENGTH, 0);
  const int encrypting = direction == Cipher::Direction::encrypt ? 1 : 0;
  int head = 0;
  int tail = 0;
  if (EVP_CipherInit_ex2(context.get(), kind, key.data(), vector, encrypting, nullptr) != 1 ||
      EVP_CIPHER_CTX_set_padding(context.get(), padded ? 1 : 0) != 1 ||
      EVP_CipherUpdate(context.get(), out.data(), &head, data.data(),
                       static_cast<int>(data.size())) != 1 ||
      EVP_CipherFinal_ex(context.get(), out.data() + head, &tail) != 1) {
    ERR_clear_error();
    return std::nullopt;
  }
  out.resize(static_cast<std::size_t>(head) + static_cast<std::size_t>(tail));
  return out;
}

}  // namespace

std::optional<SecretBytes> Cipher::aes128Cbc(Direction direction, const SecretBytes& key,
                                             ByteView vector, ByteView data) {
  static const FetchedCipher kind = fetch("AES-128-CBC");
  return run(kind.get(), direction, true, key, vector.data(), data);
}

std::optional<SecretBytes> Cipher::tripleDesEcb(Direction direction, const SecretBytes& key,
                                                ByteView data) {
  static const FetchedCipher kind = fetch("DES-EDE3");
  return run(kind.get(), direction, false, key, nullptr, data);
}

SecretBytes Cipher::fitted(const SecretBytes& key, std::size_t size) {
  SecretBytes made(key.reveal().first(std::min(size, key.size())));
  made.resize(size);
  return made;
}

}  // namespace orlix
