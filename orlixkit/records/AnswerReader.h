// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/records/JsonObject.h"

namespace orlix {

class AnswerMemory;

enum class Case { exact, ignored };
/// Result of reading an enumeration.
enum class Match { missingKey, otherValue, known };

/// Reads the fields of a decoded answer. All conversions between JSON types and field types are
/// defined here:
///
/// | Value            | as integer                          | as boolean      | as text        |
/// |------------------|-------------------------------------|-----------------|----------------|
/// | missing key      | 0                                   | false           | none           |
/// | null             | fails                               | fails           | none           |
/// | true, false      | 1, 0                                | itself          | its JSON text  |
/// | number           | cut towards zero, to the range's end | is not 0        | its JSON text  |
/// | text             | its leading digits                  | its first sign  | itself         |
/// | object, array    | fails                               | fails           | its JSON text  |
///
/// Leading digits: after white space and a sign; 0 when there are none; clamped to the range. First
/// sign: after white space, a sign and zeros, one of Y, y, T, t and 1 to 9 reads as true.
///
/// A number is read exactly from its digits, fraction and exponent included.
///
/// "Fails" throws std::invalid_argument; requests convert it to NetworkException. NetworkException
/// is also thrown when the records of one answer take more memory than KCVelloUtil::kRecordLimit:
/// all readers of an answer count the lists and texts that they read.
/// One thread at a time. The answer must outlive the reader.
class AnswerReader {
 public:
  explicit AnswerReader(const JsonDictionary& dictionary);
  explicit AnswerReader(const JsonObject& answer) : AnswerReader(answer.dictionary()) {}
  explicit AnswerReader(JsonObject&&) = delete;

  std::optional<std::string> text(std::string_view key) const;
  bool boolean(std::string_view key) const;
  std::int64_t integer(std::string_view key) const;
  /// As `text`, for keys and other secrets.
  std::optional<SecretString> secretText(std::string_view key) const;
  /// A copy of the JSON value; null when the key is missing.
  std::shared_ptr<const JsonValue> value(std::string_view key) const;
  /// The object under the key; null when the key is missing. Fails on any other value.
  const JsonDictionary* dictionary(std::string_view key) const;
  /// The objects in the array under the key; empty when the key is missing. Fails on any other
  /// value and on any other element.
  std::vector<const JsonDictionary*> dictionaries(std::string_view key) const;

  /// Whether the value is exactly this text.
  bool equals(std::string_view key, std::string_view text) const;

  /// Reads value and presence of a field. A missing key resets the field to its zero value.
  void read(std::string_view key, std::optional<std::string>& field, bool& hasField) const;
  void read(std::string_view key, bool& field, bool& hasField) const;
  void read(std::string_view key, std::int64_t& field, bool& hasField) const;
  void read(std::string_view key, std::shared_ptr<const JsonValue>& field, bool& hasField) const;

  /// Sets the field to the position, from 1, of the first of `texts` that equals the value;
  /// otherwise leaves it unchanged. A value that is not a text equals none of them.
  template <class Enum>
  Match readEnum(std::string_view key, Enum& field, std::initializer_list<std::string_view> texts,
                 Case letters) const {
    const JsonValue* found = find(key);
    if (found == nullptr) {
      return Match::missingKey;
    }
    const std::int32_t number = match(*found, texts, letters);
    if (number == 0) {
      return Match::otherValue;
    }
    field = static_cast<Enum>(number);
    return Match::known;
  }

  /// Reads a nested record: when the key exists, fills the record, made first if absent.
  template <class Record>
  void readRecord(std::string_view key, std::optional<Record>& field, bool& hasField) const {
    if (const JsonDictionary* nested = dictionary(key)) {
      if (!field) {
        field.emplace();
      }
      if constexpr (requires { field->parseFromDictionary(*nested); }) {
        field->parseFromDictionary(*nested);
      } else {
        field->parseFromData(*nested);
      }
      hasField = true;
    }
  }

  /// Appends a record for each object of the array under the key.
  template <class Record>
  void appendRecords(std::string_view key, std::vector<Record>& records) const {
    const std::vector<const JsonDictionary*> elements = dictionaries(key);
    countMemory(elements.size() * sizeof(Record));
    records.reserve(records.size() + elements.size());
    for (const JsonDictionary* element : elements) {
      records.emplace_back().parseFromData(*element);
    }
  }

 private:
  static std::int32_t match(const JsonValue& value, std::initializer_list<std::string_view> texts,
                            Case letters);
  const JsonValue* find(std::string_view key) const;
  void readText(const JsonValue& value, std::optional<std::string>& field) const;
  void countMemory(std::size_t bytes) const;

  const JsonDictionary& dictionary_;
  AnswerMemory* const memory_;    ///< null for an object that `getJson` did not decode
  std::uint64_t names_ = 0;       ///< filter: a bit per member's name, possibly shared
  mutable std::size_t next_ = 0;  ///< place of the member after the last one found
};

}  // namespace orlix
