// SPDX-License-Identifier: Apache-2.0

#include "sandbox/UrlEncoding.h"

#include <algorithm>
#include <charconv>

namespace orlix::sandbox {

std::string percentDecoded(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    const std::string_view digits = text.substr(i).substr(0, 3).substr(1);
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (text[i] == '%' && error == std::errc() && end - digits.data() == 2) {
      out += static_cast<char>(byte);
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

HttpFields formFields(std::string_view text) {
  HttpFields fields;
  while (!text.empty()) {
    std::string field(text.substr(0, text.find('&')));
    text.remove_prefix(std::min(text.size(), field.size() + 1));
    std::replace(field.begin(), field.end(), '+', ' ');
    const size_t equals = field.find('=');
    if (field.empty()) continue;
    fields.emplace_back(
        percentDecoded(field.substr(0, equals)),
        equals == std::string::npos ? "" : percentDecoded(field.substr(equals + 1)));
  }
  return fields;
}

}  // namespace orlix::sandbox
