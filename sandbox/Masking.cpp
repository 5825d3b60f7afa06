// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Masking.h"

#include <algorithm>
#include <array>
#include <cctype>

#include <fmt/format.h>

namespace orlix::sandbox {

namespace {

/// A longer body is not read for its secrets, and so not kept.
constexpr size_t kLongestReadBody = 1'000'000;

constexpr size_t kShortestCardNumber = 12;

std::string lower(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return out;
}

bool isOneOf(std::string_view key, std::initializer_list<std::string_view> keys) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

bool isToken(std::string_view key) {
  return isOneOf(key, {"sstoken", "newsstoken", "sessionid", "sessionid2", "libkey", "payload",
                       "pareq", "token", "sessiontoken", "sessiontoken1", "sessiontoken2"});
}

std::string digitsOf(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (c >= '0' && c <= '9') {
      digits += c;
    } else if (c != ' ' && c != '-') {
      return {};
    }
  }
  return digits;
}

/// Texts of digits that are no card number. The mobile numbers are as long as some.
bool holdsOtherDigits(std::string_view key) {
  return isOneOf(key, {"msisdn", "linkedmsisdn", "transactionid", "receiptid", "accountnumber",
                       "code", "qrvalue"});
}

std::string aboutCardNumber(std::string_view text) {
  const std::string digits = digitsOf(text);
  if (digits.size() < kShortestCardNumber) return "card number";
  return fmt::format("card number, {} digits, ends in {}", digits.size(),
                     digits.substr(digits.size() - 4));
}

/// Words about a value that must not be kept; empty when it may be.
std::string wordsFor(std::string_view key, const json::value& value) {
  const bool isText = value.is_string();
  const std::string_view text =
      isText ? std::string_view(value.get_string().data(), value.get_string().size())
             : std::string_view();
  if (isText && text.empty()) return {};
  if (value.is_structured() || value.is_null() || value.is_bool()) return {};
  if (isToken(key)) return isText ? shortened(text) : "token";
  if (key == "pinblock") return "PIN block";
  if (key == "pinkey") return fmt::format("PIN key, {} characters", text.size());
  if (isOneOf(key, {"pin", "newpin", "oldpin"})) return "PIN";
  if (isOneOf(key, {"cvv", "cvv2", "cvc"})) return "CVV";
  if (key == "pares") return "PaRes";
  if (key == "otp") return "one-time code";
  if (isOneOf(key, {"htmlcontent", "javascript"}) && text.find("PaRe") != std::string_view::npos) {
    return fmt::format("page of {} bytes, which carries a PaReq", text.size());
  }
  if (isOneOf(key, {"cardnumber", "pan", "number"})) return aboutCardNumber(text);
  if (isText && !holdsOtherDigits(key) && digitsOf(text).size() >= kShortestCardNumber) {
    return aboutCardNumber(text);
  }
  return {};
}

/// One level of a JSON pointer.
std::string escapedKey(std::string_view key) {
  std::string out;
  for (const char c : key) {
    if (c == '~') {
      out += "~0";
    } else if (c == '/') {
      out += "~1";
    } else {
      out += c;
    }
  }
  return out;
}

class Masker {
 public:
  Masker(const json::object& whole, const Explain& explain) : whole_(whole), explain_(explain) {}

  void mask(json::object& object, const std::string& path) {
    for (json::key_value_pair& pair : object) {
      const std::string_view key(pair.key().data(), pair.key().size());
      mask(pair.value(), key, path + "/" + escapedKey(key));
    }
  }

  size_t bytes() const { return bytes_; }

  std::vector<std::string> masked;

 private:
  void mask(json::value& value, std::string_view key, const std::string& path) {
    if (json::object* object = value.if_object()) return mask(*object, path);
    if (json::array* array = value.if_array()) {
      for (size_t i = 0; i < array->size(); ++i) {
        mask((*array)[i], key, fmt::format("{}/{}", path, i));
      }
      return;
    }
    const std::string name = lower(key);
    std::string words = wordsFor(name, value);
    if (words.empty()) return;
    if (std::string better = explain_ ? explain_(name, value, whole_) : ""; !better.empty()) {
      words = std::move(better);
    }
    value = words;
    bytes_ += sizeof(std::string) + path.size();
    if (bytes_ <= kLongestKeptBody) masked.push_back(path);
  }

  const json::object& whole_;
  const Explain& explain_;
  size_t bytes_ = 0;  ///< Of the pointers to everything that was replaced.
};

}  // namespace

bool isSecret(std::string_view key, const json::value& value) {
  return !wordsFor(lower(key), value).empty();
}

std::string shortened(std::string_view token) {
  if (token.empty()) return {};
  // Of a short token four characters would be too much.
  const size_t shown = token.size() >= 16 ? 4 : 0;
  return fmt::format("{}... ({} characters)", token.substr(0, shown), token.size());
}

size_t MaskedBody::bytes() const {
  size_t sum = text.size();
  for (const std::string& pointer : masked) sum += sizeof(std::string) + pointer.size();
  return sum;
}

MaskedBody maskBody(std::string_view body, std::string_view contentType, const Explain& explain) {
  MaskedBody out;
  if (body.empty()) return out;
  auto object = body.size() > kLongestReadBody ? std::nullopt : parseObject(body);
  if (!object) {
    const std::string kind(contentType.substr(0, contentType.find(';')));
    out.text = kind.empty() || kind == "application/json"
                   ? fmt::format("{} bytes, which are not kept: no JSON object that can be read",
                                 body.size())
                   : fmt::format("{} bytes of {}, which are not kept", body.size(), kind);
    return out;
  }
  const json::object whole = *object;
  Masker masker(whole, explain);
  masker.mask(*object, "");
  out.text = json::serialize(*object);
  out.masked = std::move(masker.masked);
  out.isJson = true;
  if (out.text.size() > kLongestKeptBody || masker.bytes() > kLongestKeptBody) {
    out.text.resize(std::min(out.text.size(), kLongestKeptBody));
    out.isJson = false;
    out.cut = true;
  }
  return out;
}

}  // namespace orlix::sandbox
