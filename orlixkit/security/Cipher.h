// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Secret.h"

namespace orlix {

/// The block ciphers used by this floor. Absent on any failure. Failures are removed from the
/// thread's OpenSSL error queue, where the next TLS call would take them for its own.
class Cipher {
 public:
  enum class Direction { decrypt, encrypt };

  /// AES-128 in CBC mode with PKCS#7 padding (FIPS 197, SP 800-38A). Key and vector: 16 bytes.
  static std::optional<SecretBytes> aes128Cbc(Direction direction, const SecretBytes& key,
                                              ByteView vector, ByteView data);

  /// Triple DES in ECB mode without padding (SP 800-67). Key: 24 bytes.
  static std::optional<SecretBytes> tripleDesEcb(Direction direction, const SecretBytes& key,
                                                 ByteView data);

  /// The first `size` bytes of the key, padded with zeros.
  static SecretBytes fitted(const SecretBytes& key, std::size_t size);
};

}  // namespace orlix
