// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Json.h"

#include <algorithm>

#include <fmt/format.h>

namespace orlix::sandbox {

namespace {

bool isOfKind(const json::value& value, Kind kind) {
  switch (kind) {
    case Kind::text:
      return value.is_string();
    case Kind::integer:
      return value.is_int64();
    case Kind::boolean:
      return value.is_bool();
    case Kind::object:
      return value.is_object();
    case Kind::array:
      return value.is_array();
  }
  return false;
}

std::string_view nameOf(Kind kind) {
  switch (kind) {
    case Kind::text:
      return "a string";
    case Kind::integer:
      return "an integer";
    case Kind::boolean:
      return "a boolean";
    case Kind::object:
      return "an object";
    case Kind::array:
      return "an array";
  }
  return "";
}

}  // namespace

std::optional<json::object> parseObject(std::string_view text) {
  json::error_code error;
  json::value value = json::parse({text.data(), text.size()}, error);
  if (error || !value.is_object()) return std::nullopt;
  return std::move(value.as_object());
}

std::optional<std::string> complaint(const json::object& body, const Shape& shape,
                                     std::string_view where) {
  for (const Field& field : shape) {
    const json::value* value = body.if_contains({field.name.data(), field.name.size()});
    if (value == nullptr) {
      if (field.required) return fmt::format("{} lacks \"{}\"", where, field.name);
    } else if (!isOfKind(*value, field.kind)) {
      return fmt::format("\"{}\" in {} is not {}", field.name, where, nameOf(field.kind));
    }
  }
  for (const json::key_value_pair& pair : body) {
    const std::string_view key(pair.key().data(), pair.key().size());
    const bool known = std::any_of(shape.begin(), shape.end(),
                                   [&](const Field& field) { return field.name == key; });
    if (!known) {
      std::string names;
      for (const Field& field : shape) names += fmt::format(", \"{}\"", field.name);
      return fmt::format("{} has the unknown key \"{}\"; {}", where, key,
                         shape.empty() ? "it has none" : "its keys are " + names.substr(2));
    }
  }
  return std::nullopt;
}

std::string textOf(const json::object& object, std::string_view key) {
  const json::value* value = object.if_contains({key.data(), key.size()});
  if (value == nullptr || !value->is_string()) return {};
  return {value->get_string().data(), value->get_string().size()};
}

std::int64_t integerOf(const json::object& object, std::string_view key, std::int64_t otherwise) {
  const json::value* value = object.if_contains({key.data(), key.size()});
  return value != nullptr && value->is_int64() ? value->get_int64() : otherwise;
}

bool booleanOf(const json::object& object, std::string_view key, bool otherwise) {
  const json::value* value = object.if_contains({key.data(), key.size()});
  return value != nullptr && value->is_bool() ? value->get_bool() : otherwise;
}

}  // namespace orlix::sandbox
