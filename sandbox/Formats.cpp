// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Formats.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "sandbox/Bounds.h"

namespace orlix::sandbox {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool startsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

/// Takes `beginning` off `text` when it is there.
bool take(std::string_view& text, std::string_view beginning) {
  if (!startsWith(text, beginning)) return false;
  text.remove_prefix(beginning.size());
  return true;
}

/// The contents of "[a],[b],…"; nothing when the text is not of that form.
std::optional<std::vector<std::string_view>> bracketed(std::string_view text) {
  std::vector<std::string_view> items;
  while (!text.empty()) {
    const size_t end = text.find(']');
    if (text.front() != '[' || end == std::string_view::npos) return std::nullopt;
    items.push_back(text.substr(1, end - 1));
    text.remove_prefix(end + 1);
    if (!text.empty() && (!take(text, ",") || text.empty())) return std::nullopt;
  }
  return items;
}

bool isTagged(std::string_view item, std::string_view tag, long commas) {
  return startsWith(item, tag) && item.size() > tag.size() &&
         std::count(item.begin(), item.end(), ',') == commas;
}

}  // namespace

bool isDigits(std::string_view text) { return std::all_of(text.begin(), text.end(), &isDigit); }

bool isDecimalNumber(std::string_view text) {
  constexpr size_t kLongest = 32;
  if (text.size() > kLongest) return false;
  const size_t point = text.find('.');
  if (point == std::string_view::npos) return !text.empty() && isDigits(text);
  const std::string_view fraction = text.substr(point + 1);
  return point > 0 && !fraction.empty() && isDigits(text.substr(0, point)) && isDigits(fraction);
}

bool isMobileNumber(std::string_view text) {
  return text.size() >= 7 && text.size() <= 15 && isDigits(text);
}

bool isTimeZone(std::string_view text) {
  return text.size() == 6 && (text[0] == '+' || text[0] == '-') && isDigits(text.substr(1, 2)) &&
         text[3] == ':' && isDigits(text.substr(4));
}

bool isDeviceSerial(std::string_view text) {
  const auto items = bracketed(text.substr(0, kLongestKeptText + 1));
  return text.size() <= kLongestKeptText && items && !items->empty() &&
         std::all_of(items->begin(), items->end(), [](std::string_view item) {
           return item.size() > 2 && item[1] == ':' &&
                  (item[0] == 'i' || item[0] == 's' || item[0] == 'p');
         });
}

bool isLocation(std::string_view text) {
  const auto items = bracketed(text);
  if (!items || items->size() > 2) return false;
  auto item = items->begin();
  if (item != items->end() && isTagged(*item, "G:", 1)) ++item;
  if (item != items->end() && isTagged(*item, "N:", 3)) ++item;
  return item == items->end();
}

bool isTerminationAddress(std::string_view text) {
  if (!take(text, "https://127.0.0.1") && !take(text, "https://localhost")) return false;
  if (take(text, ":")) text.remove_prefix(std::min(text.find('/'), text.size()));
  return text == "/vello/secure_code.jsp";
}

}  // namespace orlix::sandbox
