// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <boost/json.hpp>

namespace orlix::sandbox {

namespace json = boost::json;

enum class Kind { text, integer, boolean, object, array };

struct Field {
  std::string_view name;
  Kind kind = Kind::text;
  bool required = true;
};

/// The keys that a body must have, may have, and their JSON types. Anything else is a mistake of
/// the client, which a real server might ignore and this one reports.
using Shape = std::vector<Field>;

/// The object in `text`, or nothing when it is no JSON object.
std::optional<json::object> parseObject(std::string_view text);

/// What is wrong with `body`, in words; nothing when it has exactly this shape. `where` names the
/// object in the words.
std::optional<std::string> complaint(const json::object& body, const Shape& shape,
                                     std::string_view where = "the body");

/// The text under `key`; the empty text when there is none.
std::string textOf(const json::object& object, std::string_view key);

std::int64_t integerOf(const json::object& object, std::string_view key,
                       std::int64_t otherwise = 0);

bool booleanOf(const json::object& object, std::string_view key, bool otherwise = false);

}  // namespace orlix::sandbox
