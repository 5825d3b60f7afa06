#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "orlixkit/platform/Secret.h"

namespace orlix {

struct JsonField;
class JsonFields;

/// What a field of a request body may hold. A secret text looks like any other text on the wire,
/// but is wiped on the way there.
using JsonItem = std::variant<bool, std::int64_t, std::string, SecretString, JsonFields>;

/// The fields of a request body, in the order in which they were first set. A value type.
class JsonFields {
 public:
  JsonFields() = default;
  JsonFields(std::initializer_list<JsonField> fields);

  /// Adds the field, or replaces its value where it stands.
  JsonFields& set(std::string_view key, JsonItem item);
  /// The same for a text that has to be there. Throws std::invalid_argument when it is not.
  JsonFields& setRequired(std::string_view key, const std::optional<std::string>& text);

  const std::vector<JsonField>& fields() const { return fields_; }

 private:
  std::vector<JsonField> fields_;
};

struct JsonField {
  std::string key;
  JsonItem item;
};

}  // namespace orlix
