#include <limits>
#include <stdexcept>

#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

/// An answer that holds `value` under "k".
JsonObject answerWith(const std::string& value) {
  return KCVelloUtil::getJson(view(R"({"k":)" + value + "}"));
}

TEST(IntegerReading, CutsSaturatesAndTakesLeadingDigits) {
  const std::pair<const char*, std::int64_t> rows[] = {
      {"0", 0},
      {"-0", 0},
      {"9007199254740993", 9007199254740993},
      {"9223372036854775807", largest},
      {"9223372036854775808", largest},
      {"18446744073709551615", largest},
      {"18446744073709551616", largest},
      {"-9223372036854775808", smallest},
      {"-9223372036854775809", smallest},
      {"1.9", 1},
      {"-1.9", -1},
      {"0.9999", 0},
      {"12e2", 1200},
      {"9.3e18", largest},
      {"-9.3e18", smallest},
      {"1e400", largest},
      {"-1e400", smallest},
      {"1e-400", 0},
      {"true", 1},
      {"false", 0},
      {R"("42")", 42},
      {R"(" \t\n-42abc")", -42},
      {R"("+7.9")", 7},
      {R"("1 2")", 1},
      {R"("abc")", 0},
      {R"("")", 0},
      {R"("-")", 0},
      {R"("+-1")", 0},
      {R"("- 1")", 0},
      {R"("0x10")", 0},
      {R"("true")", 0},
      {R"("9223372036854775807")", largest},
      {R"("9223372036854775808")", largest},
      {R"("-9223372036854775808")", smallest},
      {R"("-9223372036854775809")", smallest},
      {R"("99999999999999999999999999")", largest},
  };
  for (const auto& [value, expected] : rows) {
    const JsonObject answer = answerWith(value);
    EXPECT_EQ(AnswerReader(answer).integer("k"), expected) << value;
  }
}

TEST(BooleanReading, LooksAtTheFirstSignOfATextAndAtNumbersBesideZero) {
  const std::pair<const char*, bool> rows[] = {
      {"true", true},        {"false", false},    {"0", false},
      {"-0.0", false},       {"1", true},         {"-1", true},
      {"0.5", true},         {"1e400", true},     {"18446744073709551615", true},
      {R"("true")", true},   {R"("T")", true},    {R"("yes")", true},
      {R"("Yikes")", true},  {R"("1")", true},    {R"("9")", true},
      {R"(" \t007")", true}, {R"("-1")", true},   {R"("+0y")", true},
      {R"("00")", false},    {R"("0")", false},   {R"("no")", false},
      {R"("false")", false}, {R"("")", false},    {R"(" ")", false},
      {R"("-")", false},     {R"("--1")", false}, {R"("0 1")", false},
      {R"("0.5")", false},   {R"("on")", false},
  };
  for (const auto& [value, expected] : rows) {
    const JsonObject answer = answerWith(value);
    EXPECT_EQ(AnswerReader(answer).boolean("k"), expected) << value;
  }
}

TEST(TextReading, KeepsWhatIsNoTextAsItsJsonText) {
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {R"("a text")", "a text"},
      {R"("")", ""},
      {R"("\u20ac\n")", "\xE2\x82\xAC\n"},
      {"null", std::nullopt},
      {"12", "12"},
      {"12.5", "12.5"},
      {"12.50", "12.5"},
      {"100000.0", "100000"},
      {"0.1", "0.1"},
      {"1e400", "1e999"},
      {"-1e400", "-1e999"},
      {"18446744073709551615", "18446744073709551615"},
      {"true", "true"},
      {"[]", "[]"},
      {"{}", "{}"},
      {R"([1.5, "a\"b", null, {"c": [false, {}]}])", R"([1.5,"a\"b",null,{"c":[false,{}]}])"},
      {R"({"a": 1, "b/": "x"})", R"({"a":1,"b/":"x"})"},
  };
  for (const auto& [value, expected] : rows) {
    const JsonObject answer = answerWith(value);
    const AnswerReader reader(answer);
    EXPECT_EQ(reader.text("k"), expected) << value;
    const auto secret = reader.secretText("k");
    EXPECT_EQ(secret.has_value(), expected.has_value()) << value;
    EXPECT_EQ(secret ? secret->text() : "", expected.value_or("")) << value;
  }
}

TEST(Readings, OfNullObjectsAndArraysAsNumberOrBooleanFail) {
  for (const char* value : {"null", "{}", "[]", "[1]"}) {
    const JsonObject answer = answerWith(value);
    const AnswerReader reader(answer);
    EXPECT_THROW(reader.integer("k"), std::invalid_argument) << value;
    EXPECT_THROW(reader.boolean("k"), std::invalid_argument) << value;
  }
}

TEST(Readings, OfAMissingKeyTakeTheFieldBackToZero) {
  const JsonObject empty = KCVelloUtil::getJson(view("{}"));
  const AnswerReader reader(empty);
  std::optional<std::string> text = "former";
  std::int64_t number = 5;
  bool truth = true;
  bool hasText = true;
  bool hasNumber = true;
  bool hasTruth = true;
  reader.read("k", text, hasText);
  reader.read("k", number, hasNumber);
  reader.read("k", truth, hasTruth);
  EXPECT_EQ(text, std::nullopt);
  EXPECT_EQ(number, 0);
  EXPECT_FALSE(truth || hasText || hasNumber || hasTruth);
  EXPECT_EQ(reader.value("k"), nullptr);
  EXPECT_EQ(reader.dictionary("k"), nullptr);
  EXPECT_TRUE(reader.dictionaries("k").empty());
}

TEST(Readings, DoNotDependOnTheOrderOrNumberOfKeys) {
  std::string body = "{";
  for (int i = 0; i < 40; ++i) {
    body += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  }
  for (const std::string& text : {body + R"("z":0})", std::string(R"({"k3":3,"k1":1,"k2":2})")}) {
    const JsonObject answer = KCVelloUtil::getJson(view(text));
    const AnswerReader reader(answer);
    for (const int i : {1, 2, 3, 3, 2, 1, 3}) {
      const std::string key = "k" + std::to_string(i);
      EXPECT_EQ(reader.integer(key), i) << text;
      EXPECT_FALSE(reader.has("missing"));
    }
  }
}

TEST(Readings, OfAValueAsItStandsOutliveTheAnswer) {
  std::shared_ptr<const JsonValue> kept;
  bool has = false;
  {
    const JsonObject answer = answerWith(R"({"a":["a text beyond the short form",1]})");
    AnswerReader(answer).read("k", kept, has);
  }
  ASSERT_TRUE(has);
  EXPECT_EQ(boost::json::serialize(*kept), R"({"a":["a text beyond the short form",1]})");
}

TEST(Readings, OfNestedRecordsAndListsFailOnAnythingElse) {
  for (const char* value : {"null", "1", "\"\"", "true", "[]"}) {
    const JsonObject answer = answerWith(value);
    EXPECT_THROW(AnswerReader(answer).dictionary("k"), std::invalid_argument) << value;
  }
  for (const char* value : {"null", "1", "\"\"", "{}", "[{},null]", "[[]]", "[1]"}) {
    const JsonObject answer = answerWith(value);
    EXPECT_THROW(AnswerReader(answer).dictionaries("k"), std::invalid_argument) << value;
  }
}

}  // namespace

}  // namespace orlix
