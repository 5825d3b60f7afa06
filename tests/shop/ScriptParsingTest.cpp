#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "examples/shop/ScriptSource.h"

namespace orlix::shop {
namespace {

template <class Command>
Command parsed(const std::string& line) {
  const std::optional<ScriptLine> found = parseLine(line, 1);
  if (!found || !std::holds_alternative<Command>(found->action)) {
    ADD_FAILURE() << "read as another command: " << line;
    return {};
  }
  return std::get<Command>(found->action);
}

std::string reasonOf(const std::string& line) {
  try {
    parseLine(line, 1);
  } catch (const ScriptError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(ScriptParsing, WordsAreSplitAtBlanksAndHeldTogetherByQuotes) {
  struct Row {
    std::string line;
    std::vector<std::string> words;
  };
  const std::vector<Row> rows{
      {"tap  proceedAction\t", {"tap", "proceedAction"}},
      {R"(button "Try again")", {"button", "Try again"}},
      {R"(checkout X msisdn="082 123")", {"checkout", "X", "msisdn=082 123"}},
      {R"(set a "say \"x\" \\ y")", {"set", "a", R"(say "x" \ y)"}},
      {R"(set a "")", {"set", "a", ""}},
      {"tap a # then more", {"tap", "a"}},
      {R"(set a b#c "#d")", {"set", "a", "b#c", "#d"}},
      {"   # only a comment", {}},
      {"page type #otp 12 # then", {"page", "type", "#otp", "12"}},
      {"page # not yet", {"page"}},
  };
  for (const Row& row : rows) {
    std::vector<std::string> texts;
    for (const Word& word : splitLine(row.line)) {
      texts.push_back(word.text);
    }
    EXPECT_EQ(texts, row.words) << row.line;
  }
}

TEST(ScriptParsing, EntryCallsTakeTheirArgumentsInAnyOrder) {
  const auto checkout = parsed<HostCall>("checkout C-1 msisdn=082 amount=12.5 customer=\"A B\"");
  EXPECT_EQ(checkout.code, "C-1");
  EXPECT_DOUBLE_EQ(checkout.amount, 12.5);
  EXPECT_EQ(checkout.customer, "A B");
  EXPECT_EQ(checkout.msisdn, "082");
  EXPECT_DOUBLE_EQ(parsed<HostCall>("checkout C-1 amount=-3").amount, -3);
  EXPECT_EQ(parsed<HostCall>("preregister").entry, HostEntry::preregister);
  EXPECT_EQ(parsed<HostCall>("wallet customer=").customer, "");
}

TEST(ScriptParsing, ARowIsANumberUnlessItIsQuoted) {
  EXPECT_EQ(std::get<std::size_t>(parsed<SelectRow>("row tableView 12").row), 12U);
  EXPECT_EQ(std::get<std::string>(parsed<SelectRow>("row tableView \"12\"").row), "12");
  EXPECT_EQ(std::get<std::string>(parsed<SelectRow>("row tableView xxx-12").row), "xxx-12");
  EXPECT_EQ(parsed<PressRowButton>("row tableView 3 delete").row, 3U);
}

TEST(ScriptParsing, WaitsAndExpectationsReadTheirOptionalParts) {
  EXPECT_EQ(parsed<WaitAlert>("wait alert Warning").message, std::nullopt);
  EXPECT_EQ(parsed<WaitAlert>("wait alert Warning \"\"").message, "");
  EXPECT_EQ(parsed<WaitOutcome>("wait outcome").callback, std::nullopt);
  EXPECT_EQ(parsed<WaitOutcome>("wait outcome orlixError 4").argument, "4");
  EXPECT_FALSE(parsed<ExpectVisible>("expect-hidden pinField").visible);
  EXPECT_DOUBLE_EQ(parsed<ExpectNoOutcome>("expect-no-outcome 0.5").seconds, 0.5);
  EXPECT_EQ(parsed<PageType>("page type \"input[name=otp]\" 123456").text, "123456");
  EXPECT_EQ(parsed<EraseText>("erase amountField 3").count, 3U);
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
      {"erase pinField 1.5", "needs a number of deletions"},
      {"erase pinField 99999999999999999999", "needs a number of deletions"},
      {"row tableView 1 remove", "knows only \"delete\""},
      {"row tableView xxx delete", "needs a row"},
      {"wait patience", "does not know \"patience\""},
      {"expect-no-outcome 1e9", "needs seconds"},
      {"page scroll a", "does not know \"scroll\""},
      {"snapshot ../../etc/passwd", "needs a plain file name"},
      {"set a \"b", "a quote is not closed"},
      {"set a \"b\\", "a backslash in quotes"},
      {R"(set a "\n")", "a backslash in quotes"},
      {std::string("tap a\x01"), "a control character"},
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
    EXPECT_THAT(line->words, testing::Not(testing::HasSubstr("4711"))) << command;
    EXPECT_THAT(reasonOf(command + " 4711 more"), testing::Not(testing::HasSubstr("4711")));
  }
}

TEST(ScriptParsing, AWholeScriptIsCheckedBeforeItsFirstCommandRuns) {
  std::istringstream text("# pay\r\n\r\ncheckout X\r\ntap\n");
  try {
    WholeScript script(text);
    FAIL() << "accepted";
  } catch (const LineError& error) {
    EXPECT_THAT(error.what(), testing::StartsWith("line 4: tap needs a name"));
  }
}

TEST(ScriptParsing, APipedScriptGivesEachLineAsItComesAndCountsOn) {
  PipedScript script(std::make_unique<std::istringstream>("# pay\ncheckout X\n\ndump"));
  EXPECT_EQ(script.next()->number, 2U);
  EXPECT_EQ(script.next()->number, 4U);
  EXPECT_FALSE(script.next());
}

TEST(ScriptParsing, NoisyLinesAreReadOrRefusedAndNothingElse) {
  std::mt19937 random(20);  // NOLINT(cert-msc51-cpp): the same noise in every run
  const std::vector<std::string> pieces{
      "checkout", "type", "row", "wait",    "page",  " ",      "\"", "\\",   "#", "=",
      "\xC3",     "-1",   "9e9", "amount=", "alert", "delete", "\t", "\x7F", "é"};
  std::size_t read = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string line;
    for (std::size_t i = random() % 12; i > 0; --i) {
      line += pieces[random() % pieces.size()];
    }
    try {
      read += parseLine(line, 1) ? 1U : 0U;
    } catch (const ScriptError&) {
      continue;
    }
  }
  EXPECT_GT(read, 0U);
}

}  // namespace
}  // namespace orlix::shop
