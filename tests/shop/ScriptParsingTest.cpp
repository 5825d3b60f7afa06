// SPDX-License-Identifier: Apache-2.0

#include <sstream>

#include <gmock/gmock.h>

#include "examples/shop/ScriptSource.h"

namespace orlix::shop {
namespace {

std::string reasonOf(const std::string& line) {
  try {
    parseLine(line, 1);
  } catch (const ScriptError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(ScriptParsing, ABadLineIsRefusedWithItsReason) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"pay now", "unknown command \"pay\""},
      {"checkout", "needs a code"},
      {"checkout X amount=twelve", "needs amount as a plain number"},
      {"checkout X amount=nan", "needs amount as a plain number"},
      {"checkout X amount=1e400", "needs amount as a plain number"},
      {"checkout X colour=red", "does not know \"colour=\""},
      {"checkout X 12.5", "does not know \"12.5\""},
      {"wallet amount=3", "does not know \"amount=\""},
      {"type pinField", "needs a text"},
      {"tap", "needs a name"},
      {"tap \"\"", "cannot be empty"},
      {"tap a b", "takes no more"},
      {"erase pinField -1", "needs a number of deletions"},
      {"erase pinField 99999999999999999999", "needs a number of deletions"},
      {"row tableView 1 remove", "knows only \"delete\""},
      {"row tableView xxx delete", "needs a row"},
      {"wait patience", "does not know \"patience\""},
      {"expect-no-outcome 1e9", "needs seconds"},
      {"page scroll a", "does not know \"scroll\""},
      {"snapshot ../../etc/passwd", "needs a plain file name"},
      {"set a \"b", "a quote is not closed"},
      {R"(set a "\n")", "a backslash may only precede"},
      {"tap a\x01", "a control character"},
      {"tap \xC3\x28", "no UTF-8 text"},
      {"tap \xED\xA0\x80", "no UTF-8 text"},
      {"tap " + std::string(100'000, 'x'), "the line is too long"},
  };
  for (const auto& [line, reason] : rows) {
    EXPECT_THAT(reasonOf(line), testing::HasSubstr(reason)) << line.substr(0, 60);
  }
}

TEST(ScriptParsing, WhatIsTypedIsNotShown) {
  for (const std::string command :
       {"type pinField", "set pinField", "expect pinField", "page type #otp"}) {
    const std::optional<ScriptLine> line = parseLine(command + " 4711", 1);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->words.find("4711"), std::string::npos) << command;
    EXPECT_EQ(reasonOf(command + " 4711 more").find("4711"), std::string::npos);
  }
}

TEST(ScriptParsing, AWholeScriptIsCheckedBeforeItsFirstCommandAndAPipedOneCountsOn) {
  std::istringstream text("# pay\r\n\r\ncheckout X\r\ntap\n");
  try {
    WholeScript script(text);
    FAIL() << "accepted";
  } catch (const LineError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith("line 4: tap needs a name"));
  }
  PipedScript piped(std::make_unique<std::istringstream>("# pay\ncheckout X\n\ndump"));
  EXPECT_EQ(piped.next()->number, 2U);
  EXPECT_EQ(piped.next()->number, 4U);
  EXPECT_FALSE(piped.next());
}

}  // namespace
}  // namespace orlix::shop
