// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Secret.h"

namespace orlix {

/// Encrypts a PIN for transport, and packs an identifier into the device key.
///
/// Thread: any. Intermediate buffers with PIN digits or key bytes are wiped.
/// Texts are UTF-8; lengths are counted in characters (code points), not in bytes.
class PinBlock {
 public:
  /// The PIN block (ISO 9564, format 0) of `pin` and `ref`, encrypted with two-key triple DES in
  /// ECB mode, as upper-case hex digits (16 of them for a block of 8 bytes). Uses the first 16
  /// bytes of `key`; a shorter key is padded with zeros. Absent when the cipher fails, as for a
  /// clear block whose size is not a multiple of 8 bytes (for example for a PIN of 14 digits).
  /// Throws std::out_of_range as `generatePinBlock` does.
  static std::optional<std::string> createPINBlock(const SecretBytes& key, const SecretString& pin,
                                                   std::int64_t ref);

  /// The clear PIN block: PIN field XOR account field, the account field being the digits of the
  /// reference. Format 0 for PINs of 4 to 9 digits and references of up to 12; a longer PIN has its
  /// length written as two decimal digits, and the block grows once its field exceeds 16 digits.
  /// The minus sign of a negative reference counts as a character that is not a hex digit. Throws
  /// std::out_of_range for a reference of 13 or more characters.
  static SecretBytes generatePinBlock(const SecretString& pin, std::int64_t reference);

  /// `text` padded on the left (right) to the minimum length; a longer text is returned unchanged.
  static SecretString padStart(const SecretString& text, std::int32_t minLenght, char padChar);
  static SecretString padEnd(const SecretString& text, std::int32_t minLenght, char padChar);

  /// Packs two hex digits per byte; the last low nibble is 0 when the length is odd. Any other
  /// character reads as 255: F0 as the high nibble; as the low one it makes the whole byte FF.
  static SecretBytes nibblePackString(std::string_view text);

  /// Packs the hex digits of an identifier into exactly 16 bytes, skipping other characters:
  /// zero-filled at the end when there are fewer, the last 16 when there are more. Characters other
  /// than hex digits at the end of the text add one byte FF.
  static SecretBytes nibblePackSerial(std::string_view text);

  /// The longer buffer (the first when both are equal) with the shorter one XORed onto its start.
  static SecretBytes xorArrays(ByteView array1, ByteView array2);

  /// The bytes with their lowest bit flipped where the number of set bits was even: the odd parity
  /// of DES keys.
  static SecretBytes addParity(ByteView bytes);
};

}  // namespace orlix
