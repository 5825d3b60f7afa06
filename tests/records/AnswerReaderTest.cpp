// SPDX-License-Identifier: Apache-2.0

#include <limits>

#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

/// An answer that holds `value` under "k".
JsonObject answerWith(const std::string& value) {
  return KCVelloUtil::getJson(view(R"({"k":)" + value + "}"));
}

TEST(Readings, OfIntegersCutSaturateAndTakeLeadingDigits) {
  const std::pair<std::int64_t, std::vector<const char*>> rows[] = {
      {0,
       {"-0", "0e400", "1e-400", "false", R"("abc")", R"("")", R"("+-1")", R"("- 1")",
        R"("0x10")"}},
      {1, {"1.9", "true", R"("1 2")"}},
      {-1, {"-1.9"}},
      {-42, {R"(" \t\n-42abc")"}},
      {7, {R"("+7.9")"}},
      {1200, {"12e2"}},
      {9007199254740993,
       {"9007199254740993", "9007199254740993.0", "9007199254740993.99999", "90071992547409930e-1",
        "90071992547409.93E+2", "0.0009007199254740993e19"}},
      {7553837248123193, {"7553837248123193.0", "7553837248123193.4"}},
      {-9007199254740993, {"-9007199254740993.5", "-900719925474099.3e1"}},
      {0,
       {"0.99999999999999999999", "-0.99999999999999999999", "9e-1", "0.0e2147483000", R"("~5")"}},
      {4503599627370495, {"4503599627370495.99999999"}},
      {999999999999999999, {"999999999999999999.9", "9.99999999999999999e17"}},
      {9223372036854775806, {"9223372036854775806.9", "922337203685477580.6e1"}},
      {kLargest,
       {"9223372036854775807", "9223372036854775808", "18446744073709551616", "9.3e18", "1e400",
        "9223372036854775807.9", "9223372036854775808.0", "1e2147483000",
        R"("9223372036854775808")"}},
      {kSmallest,
       {"-9223372036854775808", "-9223372036854775809", "-9.3e18", "-1e400",
        "-9223372036854775807.9e1", R"("-9223372036854775808")", R"("-9223372036854775809")"}},
  };
  for (const auto& [expected, values] : rows) {
    for (const char* value : values) {
      const JsonObject answer = answerWith(value);
      EXPECT_EQ(AnswerReader(answer).integer("k"), expected) << value;
    }
  }
}

TEST(Readings, OfBooleansLookAtTheFirstSignOfATextAndAtNumbersBesideZero) {
  for (const char* value : {"true", "1", "-1", "0.5", "1e400", "18446744073709551615", R"("T")",
                            R"("Yikes")", R"("9")", R"(" \t007")", R"("-1")", R"("+0y")"}) {
    const JsonObject answer = answerWith(value);
    EXPECT_TRUE(AnswerReader(answer).boolean("k")) << value;
  }
  for (const char* value :
       {"false", "0", "-0.0", "0e400", R"("00")", R"("no")", R"("false")", R"("")", R"(" ")",
        R"("-")", R"("--1")", R"("0 1")", R"("0.5")", R"("on")", R"("~1")"}) {
    const JsonObject answer = answerWith(value);
    EXPECT_FALSE(AnswerReader(answer).boolean("k")) << value;
  }
}

TEST(Readings, OfTextsKeepWhatIsNoTextAsItsJsonText) {
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {R"("")", ""},
      {R"("\u20ac\n")", "\xE2\x82\xAC\n"},
      {"null", std::nullopt},
      {"12", "12"},
      {"12.50", "12.5"},
      {"100000.0", "100000"},
      {"1e16", "1e+16"},
      {"0.99999999999999999999", "0.9999999999999999"},
      {"7553837248123193.0", "7553837248123193"},
      {"9007199254740993.0", "9007199254740993"},
      {"0.1", "0.1"},
      {"-1e400", "-1e999"},
      {"-0e400", "0"},
      {"-0.0", "0"},
      {"18446744073709551615", "18446744073709551615"},
      {"true", "true"},
      {"[]", "[]"},
      {R"([1.5, "a\"b", null, {"c": [false, {}]}])", R"([1.5,"a\"b",null,{"c":[false,{}]}])"}};
  for (const auto& [value, expected] : rows) {
    const JsonObject answer = answerWith(value);
    const AnswerReader reader(answer);
    EXPECT_EQ(reader.text("k"), expected) << value;
    const auto secret = reader.secretText("k");
    EXPECT_EQ(secret.has_value(), expected.has_value()) << value;
    EXPECT_EQ(secret ? secret->text() : "", expected.value_or("")) << value;
  }
}

TEST(Readings, OfAnotherShapeFail) {
  for (const char* value : {"null", "{}", "[]", "[1]"}) {
    const JsonObject answer = answerWith(value);
    EXPECT_THROW(AnswerReader(answer).integer("k"), std::invalid_argument) << value;
    EXPECT_THROW(AnswerReader(answer).boolean("k"), std::invalid_argument) << value;
  }
  for (const char* value : {"null", "1", "\"\"", "[]"}) {
    const JsonObject answer = answerWith(value);
    EXPECT_THROW(AnswerReader(answer).dictionary("k"), std::invalid_argument) << value;
  }
  for (const char* value : {"null", "\"\"", "{}", "[{},null]", "[[]]"}) {
    const JsonObject answer = answerWith(value);
    EXPECT_THROW(AnswerReader(answer).dictionaries("k"), std::invalid_argument) << value;
  }
}

TEST(Readings, OfAMissingKeyTakeTheFieldBackToZero) {
  const JsonObject empty = KCVelloUtil::getJson(view("{}"));
  const AnswerReader reader(empty);
  std::optional<std::string> text = "former";
  std::int64_t number = 5;
  bool truth = true, has[3] = {true, true, true};
  reader.read("k", text, has[0]);
  reader.read("k", number, has[1]);
  reader.read("k", truth, has[2]);
  EXPECT_FALSE(text || number != 0 || truth || has[0] || has[1] || has[2]);
  EXPECT_EQ(reader.dictionary("k"), nullptr);
  EXPECT_TRUE(reader.dictionaries("k").empty());
}

TEST(Readings, DoNotDependOnTheOrderOfKeysNorOnTheAnswersLife) {
  std::shared_ptr<const JsonValue> kept;
  bool has = false;
  {
    const JsonObject answer = KCVelloUtil::getJson(
        view(R"({"k3":3,"k1":1,"k":{"a":["a text beyond the short form",1]},"k2":2})"));
    const AnswerReader reader(answer);
    for (const int i : {1, 2, 3, 3, 2, 1, 3}) {
      EXPECT_EQ(reader.integer("k" + std::to_string(i)), i);
    }
    reader.read("k", kept, has);
  }
  ASSERT_TRUE(has);
  EXPECT_EQ(boost::json::serialize(*kept), R"({"a":["a text beyond the short form",1]})");
}

}  // namespace

}  // namespace orlix
