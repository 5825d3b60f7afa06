// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/AnswerReader.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>
#include <typeinfo>

#include <boost/json.hpp>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/JsonNumber.h"
#include "orlixkit/records/JsonText.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/security/AnswerMemory.h"

namespace orlix {

namespace {

using boost::json::kind;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view withoutSpace(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
  return text.substr(std::min(start, text.size()));
}

std::string_view view(const boost::json::string& text) { return {text.data(), text.size()}; }

std::int64_t leadingDigits(std::string_view text) {
  text = withoutSpace(text);
  const std::size_t sign = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
  return integerPart(text.substr(0, text.find_first_not_of("0123456789", sign)));
}

bool firstSign(std::string_view text) {
  text = withoutSpace(text);
  if (text.starts_with('-') || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  return !text.empty() &&
         (isDigit(text[0]) || std::string_view("YyTt").find(text[0]) != std::string_view::npos);
}

[[noreturn]] void refuse(const JsonValue& value, std::string_view wanted) {
  throw std::invalid_argument("The answer has " + std::string(to_string(value.kind())) + " where " +
                              std::string(wanted) + " is expected");
}

std::int64_t integerReading(const JsonValue& value) {
  switch (value.kind()) {
    case kind::bool_:
      return value.get_bool() ? 1 : 0;
    case kind::int64:
      return value.get_int64();
    case kind::uint64:
      // The parser uses this kind only for values that do not fit the signed one.
      return std::numeric_limits<std::int64_t>::max();
    case kind::double_:
      return integerPart(value.get_double());
    case kind::string:
      return leadingDigits(view(value.get_string()));
    default:
      refuse(value, "a number");
  }
}

bool booleanReading(const JsonValue& value) {
  switch (value.kind()) {
    case kind::bool_:
      return value.get_bool();
    case kind::int64:
      return value.get_int64() != 0;
    case kind::uint64:
      return value.get_uint64() != 0;
    case kind::double_:
      return value.get_double() != 0;
    case kind::string:
      return firstSign(view(value.get_string()));
    default:
      refuse(value, "a boolean");
  }
}

/// A copy in separate memory, since the answer's memory is released with the answer.
struct Copy {
  Copy(const JsonValue& of, std::size_t limit)
      : memory(limit), value(of, boost::json::storage_ptr(&memory)) {}

  AnswerMemory memory;
  JsonValue value;
};

/// Avoid dynamic_cast: this runs for each object of a list, and its cost would be noticeable.
AnswerMemory* memoryOf(const JsonDictionary& dictionary) {
  boost::json::memory_resource& storage = *dictionary.storage();
  return typeid(storage) == typeid(AnswerMemory) ? static_cast<AnswerMemory*>(&storage) : nullptr;
}

/// A larger object has a hash index, which finds a key faster.
constexpr std::size_t kSearchedInTurn = 18;

bool isCalled(const boost::json::key_value_pair& member, std::string_view key) {
  const auto name = member.key();
  // Compare the last letter first: most other names of this length differ in it.
  return name.size() == key.size() && !key.empty() && name.back() == key.back() &&
         std::equal(key.begin(), key.end(), name.begin());
}

/// Bit of a name in a filter that recognises most missing names without a search.
std::uint64_t bitOf(std::string_view name) {
  const std::size_t last = name.empty() ? 0 : static_cast<unsigned char>(name.back());
  return std::uint64_t{1} << ((name.size() + 7 * last) % 64);
}

bool equalTexts(std::string_view text, std::string_view upperCase, Case letters) {
  const auto upper = [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  };
  return std::equal(text.begin(), text.end(), upperCase.begin(), upperCase.end(),
                    [&](char mine, char theirs) {
                      return (letters == Case::ignored ? upper(mine) : mine) == theirs;
                    });
}

}  // namespace

AnswerReader::AnswerReader(const JsonDictionary& dictionary)
    : dictionary_(dictionary), memory_(memoryOf(dictionary)) {
  if (dictionary.size() <= kSearchedInTurn) {
    for (const auto& member : dictionary) {
      names_ |= bitOf(member.key());
    }
  }
}

void AnswerReader::countMemory(std::size_t bytes) const {
  if (memory_ != nullptr && !memory_->countForRecords(bytes)) {
    throw unreadableAnswer();
  }
}

void AnswerReader::readText(const JsonValue& value, std::optional<std::string>& field) const {
  if (const auto* text = value.if_string()) {
    countMemory(text->size());
    field.emplace(text->data(), text->size());
  } else if (value.is_null()) {
    field.reset();
  } else {
    field = jsonText(value);
    countMemory(field->size());
  }
}

const JsonValue* AnswerReader::find(std::string_view key) const {
  const std::size_t count = dictionary_.size();
  if (count > kSearchedInTurn) {
    const auto found = dictionary_.find(key);
    return found != dictionary_.end() ? &found->value() : nullptr;
  }
  if ((names_ & bitOf(key)) == 0) {
    return nullptr;
  }
  // Servers write members in a fixed order, mostly the one in which they are read, so the search
  // begins after the last one found.
  const auto* const members = dictionary_.begin();
  for (std::size_t tried = 0; tried < count; ++tried) {
    const std::size_t place = next_ < count ? next_ : 0;
    next_ = place + 1;
    if (isCalled(members[place], key)) {
      return &members[place].value();
    }
  }
  return nullptr;
}

std::optional<std::string> AnswerReader::text(std::string_view key) const {
  std::optional<std::string> result;
  if (const JsonValue* found = find(key)) {
    readText(*found, result);
  }
  return result;
}

bool AnswerReader::boolean(std::string_view key) const {
  const JsonValue* found = find(key);
  return found != nullptr && booleanReading(*found);
}

std::int64_t AnswerReader::integer(std::string_view key) const {
  const JsonValue* found = find(key);
  return found != nullptr ? integerReading(*found) : 0;
}

std::optional<SecretString> AnswerReader::secretText(std::string_view key) const {
  const JsonValue* found = find(key);
  if (found == nullptr || found->is_null()) {
    return std::nullopt;
  }
  if (const auto* text = found->if_string()) {
    return SecretString(view(*text));
  }
  return SecretString(jsonText(*found));
}

std::shared_ptr<const JsonValue> AnswerReader::value(std::string_view key) const {
  const JsonValue* found = find(key);
  if (found == nullptr) {
    return nullptr;
  }
  const std::size_t limit =
      memory_ != nullptr ? memory_->leftForRecords() : KCVelloUtil::kRecordLimit;
  try {
    const auto copy = std::make_shared<const Copy>(*found, limit);
    countMemory(copy->memory.used());
    return {copy, &copy->value};
  } catch (const std::bad_alloc&) {
    throw unreadableAnswer();
  }
}

const JsonDictionary* AnswerReader::dictionary(std::string_view key) const {
  const JsonValue* found = find(key);
  if (found == nullptr) {
    return nullptr;
  }
  const JsonDictionary* nested = found->if_object();
  if (nested == nullptr) {
    refuse(*found, "an object");
  }
  return nested;
}

std::vector<const JsonDictionary*> AnswerReader::dictionaries(std::string_view key) const {
  std::vector<const JsonDictionary*> result;
  const JsonValue* found = find(key);
  if (found == nullptr) {
    return result;
  }
  const auto* array = found->if_array();
  if (array == nullptr) {
    refuse(*found, "an array");
  }
  result.reserve(array->size());
  for (const JsonValue& element : *array) {
    if (!element.is_object()) {
      refuse(element, "an object");
    }
    result.push_back(&element.get_object());
  }
  return result;
}

bool AnswerReader::equals(std::string_view key, std::string_view text) const {
  const JsonValue* found = find(key);
  return found != nullptr && match(*found, {text}, Case::exact) != 0;
}

void AnswerReader::read(std::string_view key, std::optional<std::string>& field,
                        bool& hasField) const {
  const JsonValue* found = find(key);
  hasField = found != nullptr;
  if (found != nullptr) {
    readText(*found, field);
  } else {
    field.reset();
  }
}

void AnswerReader::read(std::string_view key, bool& field, bool& hasField) const {
  const JsonValue* found = find(key);
  field = found != nullptr && booleanReading(*found);
  hasField = found != nullptr;
}

void AnswerReader::read(std::string_view key, std::int64_t& field, bool& hasField) const {
  const JsonValue* found = find(key);
  field = found != nullptr ? integerReading(*found) : 0;
  hasField = found != nullptr;
}

void AnswerReader::read(std::string_view key, std::shared_ptr<const JsonValue>& field,
                        bool& hasField) const {
  field = value(key);
  hasField = field != nullptr;
}

std::int32_t AnswerReader::match(const JsonValue& value,
                                 std::initializer_list<std::string_view> texts, Case letters) {
  const auto* text = value.if_string();
  if (text == nullptr) {
    return 0;
  }
  std::int32_t number = 0;
  for (const std::string_view candidate : texts) {
    ++number;
    if (equalTexts(view(*text), candidate, letters)) {
      return number;
    }
  }
  return 0;
}

}  // namespace orlix
