// SPDX-License-Identifier: Apache-2.0

// Property lists. An input is a whole list, and its lines are the strings of another.

#include "orlixkit/onboarding/PropertyList.h"

#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/Target.h"

namespace orlix::fuzz {

namespace {

using Strings = std::vector<std::string>;

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '<') {
      result += "&lt;";
    } else if (c == '>') {
      result += "&gt;";
    } else if (c == '&') {
      result += "&amp;";
    } else {
      result += c;
    }
  }
  return result;
}

std::string listOf(const Strings& strings) {
  std::string list = "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><array>";
  for (const std::string& one : strings) {
    list += "<string>" + escaped(one) + "</string>\n";
  }
  return list + "</array></plist>";
}

Strings linesOf(std::string_view text) {
  Strings lines;
  while (!text.empty()) {
    lines.emplace_back(takeLine(text));
  }
  return lines;
}

/// A list ends in '>', be it of its root or of a comment.
bool isReadWithoutItsEnd(std::string_view text) {
  try {
    readStringArray(toBytes(text.substr(0, text.rfind('>'))));
    return true;
  } catch (const std::invalid_argument&) {
    return false;
  }
}

}  // namespace

void list(ByteView input) {
  const Strings lines = linesOf(textOf(input));
  check(readStringArray(toBytes(listOf(lines))) == lines, "strings read back");
  try {
    const Strings strings = readStringArray(input);
    check(readStringArray(toBytes(listOf(strings))) == strings, "what was read reads back");
    check(!isReadWithoutItsEnd(textOf(input)), "nothing is read half");
  } catch (const std::invalid_argument&) {
    // No list, which is said so.
  }
}

}  // namespace orlix::fuzz
