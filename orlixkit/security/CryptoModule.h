#pragma once

#include <optional>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/Secret.h"

namespace orlix {

/// AES-128 in CBC mode with PKCS#7 padding and a fixed initialisation vector. Thread: any.
///
/// Of the key the first 16 bytes count; what is missing to 16 is read as zero.
class CryptoModule {
 public:
  /// None on any failure of the cipher.
  static std::optional<Bytes> aesEncrypt(const SecretBytes& key, ByteView data);
  /// None on any failure of the cipher, a bad padding included. A wrong key mostly shows in the
  /// padding, but one in some 256 passes: the reader of the result has to check it.
  static std::optional<SecretBytes> aesDecrypt(const SecretBytes& key, ByteView data);
};

}  // namespace orlix
