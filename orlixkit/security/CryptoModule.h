// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Secret.h"

namespace orlix {

/// AES-128 in CBC mode with PKCS#7 padding and a fixed initialisation vector. Thread: any.
///
/// Uses the first 16 bytes of the key; a shorter key is padded with zeros.
class CryptoModule {
 public:
  /// Absent on any failure of the cipher.
  static std::optional<Bytes> aesEncrypt(const SecretBytes& key, ByteView data);
  /// Absent on any failure of the cipher, bad padding included. A wrong key usually fails the
  /// padding check, but about one in 256 passes: the caller has to validate the result.
  static std::optional<SecretBytes> aesDecrypt(const SecretBytes& key, ByteView data);
};

}  // namespace orlix
