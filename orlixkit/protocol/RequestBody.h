// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "orlixkit/ports/Secret.h"

namespace orlix {

/// Fields of a request: one JSON object (RFC 8259), written in the order of insertion. The written
/// form is secret, because a body may hold a CVV or the device's token.
class RequestBody {
 public:
  using Value = std::variant<bool, std::int64_t, std::string, SecretString, RequestBody>;

  RequestBody() = default;
  RequestBody(std::initializer_list<std::pair<std::string, Value>> fields);

  /// Replaces the value of an existing key, which keeps its position.
  void set(const std::string& key, Value value);
  /// Throws std::invalid_argument naming the key when the text is absent.
  void setRequired(const std::string& key, const std::optional<std::string>& text);
  void setRequired(const std::string& key, const std::optional<SecretString>& text);

  /// Pretty-printed UTF-8. Throws std::invalid_argument when a text is not UTF-8.
  SecretBytes write() const;

 private:
  template <class Text>
  void setPresent(const std::string& key, const std::optional<Text>& text);
  void writeInto(SecretBytes& out, std::size_t depth) const;
  static void writeValue(SecretBytes& out, const Value& value, std::size_t depth);

  std::vector<std::pair<std::string, Value>> fields_;
};

}  // namespace orlix
