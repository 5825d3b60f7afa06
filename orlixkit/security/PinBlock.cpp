// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/security/PinBlock.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "orlixkit/ports/Utf8.h"
#include "orlixkit/security/Cipher.h"
#include "orlixkit/security/Hex.h"

namespace orlix {

namespace {

constexpr std::uint8_t kNoDigit = 0xFF;
constexpr std::size_t kSerialBytes = 16;

std::uint8_t digitValue(char c) {
  if (c >= '0' && c <= '9') {
    return static_cast<std::uint8_t>(c - '0');
  }
  if (c >= 'a' && c <= 'f') {
    return static_cast<std::uint8_t>(c - 'a' + 10);
  }
  if (c >= 'A' && c <= 'F') {
    return static_cast<std::uint8_t>(c - 'A' + 10);
  }
  return kNoDigit;
}

std::uint8_t packed(std::uint8_t high, std::uint8_t low) {
  return static_cast<std::uint8_t>((static_cast<unsigned>(high) << 4U) | low);
}

/// The value of each character. A character of several bytes is not a digit: its first byte yields
/// 255, and the others are skipped.
SecretBytes digitValues(std::string_view text) {
  SecretBytes values(countCharacters(text), 0);
  std::size_t next = 0;
  for (const char unit : text) {
    if (startsCharacter(unit)) {
      values.data()[next++] = digitValue(unit);
    }
  }
  return values;
}

SecretString padding(const SecretString& text, std::int32_t minLength, char padChar) {
  const std::size_t wanted = minLength > 0 ? static_cast<std::size_t>(minLength) : 0;
  const std::size_t length = countCharacters(text.text());
  SecretString pad;
  if (length < wanted) {
    pad.resize(wanted - length);
    std::fill_n(pad.data(), pad.size(), padChar);
  }
  return pad;
}

/// The digits of the reference, for the account field.
std::string accountText(std::int64_t reference) {
  std::string account = fmt::to_string(reference);
  if (account.size() >= 13) {
    // Twelve characters are taken, but their start is computed from a text one character longer, so
    // the range would exceed the text. Such references have always been refused, and servers do not
    // expect a block made from another range.
    throw std::out_of_range("PinBlock: the reference has more than 12 digits");
  }
  return account;
}

}  // namespace

std::optional<std::string> PinBlock::createPINBlock(const SecretBytes& key, const SecretString& pin,
                                                    std::int64_t ref) {
  const SecretBytes clear = generatePinBlock(pin, ref);
  SecretBytes tripleKey = Cipher::fitted(key, 16);
  tripleKey.append(Cipher::fitted(key, 8).reveal());
  const auto encrypted =
      Cipher::tripleDesEcb(Cipher::Direction::encrypt, tripleKey, clear.reveal());
  if (!encrypted) {
    return std::nullopt;
  }
  return Hex::encode(encrypted->reveal());
}

SecretBytes PinBlock::generatePinBlock(const SecretString& pin, std::int64_t reference) {
  const SecretString account{accountText(reference)};
  SecretString pinText{fmt::format("0{}", countCharacters(pin.text()))};
  pinText.append(pin.reveal());
  const SecretBytes pinField = nibblePackString(padEnd(pinText, 16, 'F').text());
  const SecretBytes accountField = nibblePackString(padStart(account, 16, '0').text());
  return xorArrays(pinField.reveal(), accountField.reveal());
}

SecretString PinBlock::padStart(const SecretString& text, std::int32_t minLenght, char padChar) {
  SecretString padded = padding(text, minLenght, padChar);
  padded.append(text.reveal());
  return padded;
}

SecretString PinBlock::padEnd(const SecretString& text, std::int32_t minLenght, char padChar) {
  SecretString padded = text;
  padded.append(padding(text, minLenght, padChar).reveal());
  return padded;
}

SecretBytes PinBlock::nibblePackString(std::string_view text) {
  SecretBytes values = digitValues(text);
  values.resize((values.size() + 1) / 2 * 2);
  SecretBytes bytes(values.size() / 2, 0);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes.data()[i] = packed(values.data()[2 * i], values.data()[2 * i + 1]);
  }
  return bytes;
}

SecretBytes PinBlock::nibblePackSerial(std::string_view text) {
  std::size_t position = 0;
  const auto nextDigit = [&]() -> std::optional<std::uint8_t> {
    while (position < text.size()) {
      if (const std::uint8_t value = digitValue(text[position++]); value != kNoDigit) {
        return value;
      }
    }
    return std::nullopt;
  };
  SecretBytes stored;
  while (position < text.size()) {
    const auto high = nextDigit();
    const std::uint8_t byte = high ? packed(*high, nextDigit().value_or(0)) : kNoDigit;
    stored.append(std::span(&byte, 1));
  }
  if (stored.size() > kSerialBytes) {
    return SecretBytes(stored.reveal().last(kSerialBytes));
  }
  stored.resize(kSerialBytes);
  return stored;
}

SecretBytes PinBlock::xorArrays(ByteView array1, ByteView array2) {
  const bool firstIsLonger = array1.size() >= array2.size();
  const ByteView shorter = firstIsLonger ? array2 : array1;
  SecretBytes result(firstIsLonger ? array1 : array2);
  for (std::size_t i = 0; i < shorter.size(); ++i) {
    result.data()[i] ^= shorter[i];
  }
  return result;
}

SecretBytes PinBlock::addParity(ByteView bytes) {
  SecretBytes result(bytes);
  for (std::size_t i = 0; i < result.size(); ++i) {
    if (std::popcount(bytes[i]) % 2 == 0) {
      result.data()[i] ^= 1U;
    }
  }
  return result;
}

}  // namespace orlix
