// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Random.h"

#include <stdexcept>

#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

namespace orlix::sandbox {

std::vector<unsigned char> randomBytes(size_t count) {
  std::vector<unsigned char> bytes(count);
  if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1) {
    throw std::runtime_error("the system has no random bytes");
  }
  return bytes;
}

std::string randomHex(size_t count) {
  std::string text;
  for (const unsigned char byte : randomBytes(count)) text += fmt::format("{:02x}", byte);
  return text;
}

std::string randomDigits(size_t count) {
  std::string text;
  for (const unsigned char byte : randomBytes(count)) text += static_cast<char>('0' + byte % 10);
  return text;
}

std::string base64(const std::vector<unsigned char>& bytes) {
  std::string text(4 * ((bytes.size() + 2) / 3), '\0');
  // EVP_EncodeBlock also writes a closing zero byte, for which a std::string has room.
  EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                  static_cast<int>(bytes.size()));
  return text;
}

}  // namespace orlix::sandbox
