// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/records/JsonText.h"

#include <cmath>
#include <string_view>

#include <boost/json.hpp>
#include <fmt/format.h>

namespace orlix {

namespace {

void append(std::string& out, const JsonValue& value);

void appendObject(std::string& out, const boost::json::object& object) {
  std::string_view separator = "{";
  for (const auto& member : object) {
    out += separator;
    separator = ",";
    out += boost::json::serialize(member.key());
    out += ':';
    append(out, member.value());
  }
  out += object.empty() ? "{}" : "}";
}

void appendArray(std::string& out, const boost::json::array& array) {
  std::string_view separator = "[";
  for (const auto& element : array) {
    out += separator;
    separator = ",";
    append(out, element);
  }
  out += array.empty() ? "[]" : "]";
}

/// The recursion is bounded, since the depth of a decoded value is.
void append(std::string& out, const JsonValue& value) {
  if (const auto* object = value.if_object()) {
    appendObject(out, *object);
  } else if (const auto* array = value.if_array()) {
    appendArray(out, *array);
  } else if (const auto* number = value.if_double()) {
    // A number beyond the range was read as infinite, which JSON can express only as another number
    // beyond the range.
    out += std::isfinite(*number) ? fmt::format("{}", *number)
                                  : std::string(*number < 0 ? "-1e999" : "1e999");
  } else {
    out += boost::json::serialize(value);
  }
}

}  // namespace

std::string jsonText(const JsonValue& value) {
  std::string text;
  append(text, value);
  return text;
}

}  // namespace orlix
