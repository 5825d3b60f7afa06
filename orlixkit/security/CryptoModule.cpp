// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/CryptoModule.h"

#include <array>

#include "orlixkit/security/Cipher.h"

namespace orlix {

namespace {

constexpr std::size_t kKeySize = 16;

// Fixed, because the stored blob holds ciphertext only. The blob is one small record under a key
// per device, so equal blobs reveal only that the record has not changed.
constexpr std::array<std::uint8_t, 16> kVector = {0x6B, 0x1F, 0xC4, 0x92, 0x0D, 0xE8, 0x57, 0xA3,
                                                  0x39, 0xF6, 0x84, 0x2C, 0xB0, 0x75, 0xDA, 0x4E};

}  // namespace

std::optional<Bytes> CryptoModule::aesEncrypt(const SecretBytes& key, ByteView data) {
  const auto out =
      Cipher::aes128Cbc(Cipher::Direction::encrypt, Cipher::fitted(key, kKeySize), kVector, data);
  if (!out) {
    return std::nullopt;
  }
  return Bytes(out->reveal().begin(), out->reveal().end());
}

std::optional<SecretBytes> CryptoModule::aesDecrypt(const SecretBytes& key, ByteView data) {
  return Cipher::aes128Cbc(Cipher::Direction::decrypt, Cipher::fitted(key, kKeySize), kVector,
                           data);
}

}  // namespace orlix
