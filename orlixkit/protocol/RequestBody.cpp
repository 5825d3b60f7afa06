// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/RequestBody.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>

#include "orlixkit/ports/Utf8.h"

namespace orlix {

namespace {

void append(SecretBytes& out, std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<std::uint8_t>(c);
    out.append(std::span(&byte, 1));
  }
}

void appendEscaped(SecretBytes& out, char c) {
  switch (c) {
    case '"':
      return append(out, "\\\"");
    case '\\':
      return append(out, "\\\\");
    case '/':
      return append(out, "\\/");
    case '\b':
      return append(out, "\\b");
    case '\f':
      return append(out, "\\f");
    case '\n':
      return append(out, "\\n");
    case '\r':
      return append(out, "\\r");
    case '\t':
      return append(out, "\\t");
    default:
      break;
  }
  if (static_cast<unsigned char>(c) < 0x20U) {
    return append(out, fmt::format("\\u{:04x}", static_cast<unsigned char>(c)));
  }
  append(out, std::string_view(&c, 1));
}

void appendText(SecretBytes& out, std::string_view text) {
  if (!isUtf8(text)) {
    // Keep the text out of the message: it may be a CVV.
    throw std::invalid_argument("a text of the request is not UTF-8");
  }
  append(out, "\"");
  for (const char c : text) {
    appendEscaped(out, c);
  }
  append(out, "\"");
}

void appendIndent(SecretBytes& out, std::size_t depth) {
  for (std::size_t i = 0; i < depth; ++i) {
    append(out, "  ");
  }
}

}  // namespace

RequestBody::RequestBody(std::initializer_list<std::pair<std::string, Value>> fields) {
  for (const auto& [key, value] : fields) {
    set(key, value);
  }
}

void RequestBody::set(const std::string& key, Value value) {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&key](const auto& field) { return field.first == key; });
  if (found != fields_.end()) {
    found->second = std::move(value);
  } else {
    fields_.emplace_back(key, std::move(value));
  }
}

template <class Text>
void RequestBody::setPresent(const std::string& key, const std::optional<Text>& text) {
  if (!text) {
    throw std::invalid_argument("the request needs a value for " + key);
  }
  set(key, *text);
}

void RequestBody::setRequired(const std::string& key, const std::optional<std::string>& text) {
  setPresent(key, text);
}

void RequestBody::setRequired(const std::string& key, const std::optional<SecretString>& text) {
  setPresent(key, text);
}

SecretBytes RequestBody::write() const {
  SecretBytes out;
  writeInto(out, 0);
  return out;
}

void RequestBody::writeInto(SecretBytes& out, std::size_t depth) const {
  if (fields_.empty()) {
    // The layout of an empty object that the server has always received.
    append(out, "{\n\n");
    appendIndent(out, depth);
    return append(out, "}");
  }
  append(out, "{");
  std::string_view separator = "\n";
  for (const auto& [key, value] : fields_) {
    append(out, separator);
    separator = ",\n";
    appendIndent(out, depth + 1);
    appendText(out, key);
    append(out, " : ");
    writeValue(out, value, depth + 1);
  }
  append(out, "\n");
  appendIndent(out, depth);
  append(out, "}");
}

void RequestBody::writeValue(SecretBytes& out, const Value& value, std::size_t depth) {
  if (const auto* truth = std::get_if<bool>(&value)) {
    append(out, *truth ? "true" : "false");
  } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
    append(out, std::to_string(*number));
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    appendText(out, *text);
  } else if (const auto* secret = std::get_if<SecretString>(&value)) {
    appendText(out, secret->text());
  } else if (const auto* object = std::get_if<RequestBody>(&value)) {
    object->writeInto(out, depth);
  }
}

}  // namespace orlix
