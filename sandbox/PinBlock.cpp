// SPDX-License-Identifier: Apache-2.0

#include "sandbox/PinBlock.h"

#include <algorithm>
#include <array>
#include <memory>

#include <openssl/crypto.h>
#include <openssl/evp.h>

namespace orlix::sandbox {

namespace {

constexpr size_t kBlockSize = 8;
using Block = std::array<unsigned char, kBlockSize>;

bool isUpperHex(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); }

unsigned nibble(char c) {
  return c <= '9' ? static_cast<unsigned>(c - '0') : static_cast<unsigned>(c - 'A') + 10U;
}

Block bytesOf(std::string_view hex) {
  Block bytes{};
  for (size_t i = 0; i < kBlockSize; ++i) {
    bytes.at(i) = static_cast<unsigned char>(nibble(hex[2 * i]) << 4U | nibble(hex[2 * i + 1]));
  }
  return bytes;
}

bool decipher(const Block& in, const std::vector<unsigned char>& key, Block& out) {
  if (key.size() != 2 * kBlockSize) return false;
  std::array<unsigned char, 3 * kBlockSize> tripleKey{};
  std::copy(key.begin(), key.end(), tripleKey.begin());
  std::copy_n(key.begin(), kBlockSize, tripleKey.begin() + 2 * kBlockSize);
  const std::unique_ptr<EVP_CIPHER_CTX, void (*)(EVP_CIPHER_CTX*)> context(EVP_CIPHER_CTX_new(),
                                                                           &EVP_CIPHER_CTX_free);
  std::array<unsigned char, 2 * kBlockSize> clear{};
  int size = 0;
  const bool worked =
      context != nullptr &&
      EVP_DecryptInit_ex(context.get(), EVP_des_ede3_ecb(), nullptr, tripleKey.data(), nullptr) ==
          1 &&
      EVP_CIPHER_CTX_set_padding(context.get(), 0) == 1 &&
      EVP_DecryptUpdate(context.get(), clear.data(), &size, in.data(), kBlockSize) == 1 &&
      size == kBlockSize;
  std::copy_n(clear.begin(), kBlockSize, out.begin());
  OPENSSL_cleanse(clear.data(), clear.size());
  OPENSSL_cleanse(tripleKey.data(), tripleKey.size());
  return worked;
}

unsigned nibbleAt(const Block& block, size_t index) {
  const unsigned byte = block.at(index / 2);
  return index % 2 == 0 ? byte >> 4U : byte & 0xFU;
}

/// Format 0: nibbles 0 and length, the PIN's digits, then F to the end. The account field of the
/// reference 0 is all zeros, so nothing is left to undo.
bool isFormatZeroOf(const Block& clear, std::string_view pin) {
  if (nibbleAt(clear, 0) != 0 || nibbleAt(clear, 1) != pin.size()) return false;
  for (size_t i = 0; i < 2 * kBlockSize - 2; ++i) {
    const unsigned expected = i < pin.size() ? static_cast<unsigned>(pin[i] - '0') : 0xFU;
    if (nibbleAt(clear, i + 2) != expected) return false;
  }
  return true;
}

}  // namespace

bool looksLikePinBlock(std::string_view block) {
  return block.size() == 2 * kBlockSize && std::all_of(block.begin(), block.end(), isUpperHex);
}

bool holdsPin(std::string_view block, const std::vector<unsigned char>& key, std::string_view pin) {
  if (!looksLikePinBlock(block) || pin.empty()) return false;
  Block clear{};
  const bool right = decipher(bytesOf(block), key, clear) && isFormatZeroOf(clear, pin);
  OPENSSL_cleanse(clear.data(), clear.size());
  return right;
}

}  // namespace orlix::sandbox
