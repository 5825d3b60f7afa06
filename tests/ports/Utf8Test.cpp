// SPDX-License-Identifier: Apache-2.0

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/ports/Utf8.h"

namespace orlix {

namespace {

using Characters = std::vector<std::string_view>;

TEST(Utf8, IsWellFormedOrFallsApartIntoBytesThatEachCount) {
  struct Row {
    std::string_view text;
    bool isUtf8;
    Characters characters;
  };
  const std::map<std::string, Row> rows{
      {"nothing", {"", true, {}}},
      {"one to four bytes",
       {"a\xC3\xA9\xE2\x98\x83\xF0\x9F\x92\xB3",
        true,
        {"a", "\xC3\xA9", "\xE2\x98\x83", "\xF0\x9F\x92\xB3"}}},
      {"the last code point", {"\xF4\x8F\xBF\xBF", true, {"\xF4\x8F\xBF\xBF"}}},
      {"beyond it", {"\xF4\x90\x80\x80", false, {"\xF4\x90\x80\x80"}}},
      {"before the surrogates", {"\xED\x9F\xBF", true, {"\xED\x9F\xBF"}}},
      {"a surrogate", {"\xED\xA0\x80", false, {"\xED\xA0\x80"}}},
      {"the last surrogate", {"\xED\xBF\xBF", false, {"\xED\xBF\xBF"}}},
      {"after the surrogates", {"\xEE\x80\x80", true, {"\xEE\x80\x80"}}},
      {"overlong, two bytes", {"\xC1\xBF", false, {"\xC1\xBF"}}},
      {"overlong, three bytes", {"\xE0\x9F\xBF", false, {"\xE0\x9F\xBF"}}},
      {"overlong, four bytes", {"\xF0\x8F\xBF\xBF", false, {"\xF0\x8F\xBF\xBF"}}},
      {"a stray continuation", {"a\x80", false, {"a", "\x80"}}},
      {"cut short at the end", {"\xE2\x98", false, {"\xE2", "\x98"}}},
      {"cut short by a letter", {"\xE2\x98z", false, {"\xE2", "\x98", "z"}}},
      {"a byte of no character",
       {"\xF8\x88\x80\x80\x80", false, {"\xF8", "\x88", "\x80", "\x80", "\x80"}}}};
  for (const auto& [name, row] : rows) {
    EXPECT_EQ(isUtf8(row.text), row.isUtf8) << name;
    EXPECT_EQ(charactersOf(row.text), row.characters) << name;
  }
}

}  // namespace

}  // namespace orlix
