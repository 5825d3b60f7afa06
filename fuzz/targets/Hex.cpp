// SPDX-License-Identifier: Apache-2.0

// Hexadecimal text, base64, and the packing of PINs, references and keys.

#include "orlixkit/security/Hex.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>

#include <openssl/evp.h>

#include "fuzz/Target.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/security/Base64.h"
#include "orlixkit/security/Cipher.h"
#include "orlixkit/security/PinBlock.h"

namespace orlix::fuzz {

namespace {

bool same(ByteView one, ByteView other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end());
}

void readsBack(ByteView bytes) {
  const std::string text = Hex::encode(bytes);
  check(text.size() == bytes.size() * 2 &&
            text.find_first_not_of("0123456789ABCDEF") == std::string::npos,
        "two upper-case digits a byte");
  check(same(Hex::convert(text), bytes), "hexadecimal text reads back");
  check(same(PinBlock::nibblePackString(text).reveal(), bytes), "packed digits are the bytes");
  if (!bytes.empty() && bytes.size() <= 16) {
    Bytes filled(bytes.begin(), bytes.end());
    filled.resize(16);
    check(same(PinBlock::nibblePackSerial(text).reveal(), filled),
          "an identifier's digits are its bytes, zeros behind them");
  }

  Bytes encoded((bytes.size() + 2) / 3 * 4 + 1);
  EVP_EncodeBlock(encoded.data(), bytes.data(), static_cast<int>(bytes.size()));
  encoded.pop_back();
  const auto decoded = Base64::decode(textOf(encoded));
  check(decoded && same(decoded->reveal(), bytes), "base64 reads back");
}

/// Nothing of this fails, whatever the text.
void takesAnyText(std::string_view text) {
  std::string blankless(text);
  std::erase(blankless, ' ');
  const Bytes bytes = Hex::convert(text);
  check(bytes.size() == blankless.size() / 2, "a byte for each pair");
  check(bytes == Hex::convert(blankless), "blanks do not count");
  check(PinBlock::nibblePackString(text).size() == (countCharacters(text) + 1) / 2,
        "two characters a byte");
  check(PinBlock::nibblePackSerial(text).size() == 16, "a device key has 16 bytes");
  if (const auto decoded = Base64::decode(text)) {
    check(text.size() % 4 == 0 && decoded->size() + 2 >= text.size() / 4 * 3,
          "base64 decodes four letters to three bytes");
  }
}

void hasOddParity(ByteView bytes) {
  const SecretBytes odd = PinBlock::addParity(bytes);
  check(odd.size() == bytes.size(), "parity adds no byte");
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    check(std::popcount(odd.data()[i]) % 2 == 1 && (odd.data()[i] | 1U) == (bytes[i] | 1U),
          "parity is odd and in the lowest bit");
  }
}

/// The first eight bytes are the reference, the next sixteen the key, the rest is the PIN.
void pinBlock(ByteView input) {
  if (input.size() < 24) {
    return;
  }
  std::int64_t reference = 0;
  std::memcpy(&reference, input.data(), sizeof reference);
  const SecretBytes key(input.subspan(8, 16));
  const SecretString pin(textOf(input.subspan(24)));
  const bool fits = reference > -100'000'000'000 && reference < 1'000'000'000'000;
  try {
    const SecretBytes clear = PinBlock::generatePinBlock(pin, reference);
    check(fits, "a reference that is too long is refused");
    check(clear.size() >= 8, "a block has eight bytes at least");
    const SecretBytes account =
        PinBlock::xorArrays(clear.reveal(), PinBlock::generatePinBlock(pin, 0).reveal());
    if (reference >= 0) {
      check(std::stoll("0" + Hex::encode(account.reveal().first(8))) == reference,
            "the account field is the reference");
    }
    const auto block = PinBlock::createPINBlock(key, pin, reference);
    check(block.has_value() == (clear.size() % 8 == 0), "whole blocks are encrypted");
    if (block) {
      SecretBytes tripleKey = key;
      tripleKey.append(key.reveal().first(8));
      const auto back =
          Cipher::tripleDesEcb(Cipher::Direction::decrypt, tripleKey, Hex::convert(*block));
      check(back && *back == clear, "the server finds the PIN in the block");
    }
  } catch (const std::out_of_range&) {
    check(!fits, "only a reference that is too long is refused");
  }
}

}  // namespace

void hex(ByteView input) {
  readsBack(input);
  takesAnyText(textOf(input));
  hasOddParity(input);
  const ByteView half = input.first(input.size() / 2);
  const SecretBytes mixed = PinBlock::xorArrays(input, half);
  check(same(PinBlock::xorArrays(half, mixed.reveal()).reveal(), input), "XOR undoes itself");
  pinBlock(input);
}

}  // namespace orlix::fuzz
