#include <gtest/gtest.h>

#include "orlixkit/records/Failures.h"
#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

using namespace std::string_literals;

/// Whether the body is refused, in the one way in which bodies are refused.
bool refused(const std::string& body) {
  try {
    KCVelloUtil::getJson(view(body));
  } catch (const NetworkException& failure) {
    EXPECT_EQ(failure.name, "Parse data");
    EXPECT_EQ(failure.reason, "Something went wrong with the data");
    return true;
  }
  return false;
}

std::string nested(std::size_t depth) {
  return R"({"a":)" + std::string(depth, '[') + std::string(depth, ']') + "}";
}

std::string repeated(std::string_view part, std::size_t size) {
  std::string text;
  text.reserve(size + part.size());
  while (text.size() < size) {
    text += part;
  }
  return text;
}

TEST(AnswerBody, ThatIsNoJsonObjectIsRefused) {
  const std::pair<const char*, std::string> rows[] = {
      {"empty", ""},
      {"white space", " \n"},
      {"text", "hello"},
      {"HTML", "<html>502</html>"},
      {"array", "[]"},
      {"string", "\"a\""},
      {"null", "null"},
      {"cut off", R"({"a":1)"},
      {"something behind", "{}x"},
      {"two objects", "{}{}"},
      {"NUL behind", "{}\0"s},
      {"trailing comma", R"({"a":1,})"},
      {"comment", "{/**/}"},
      {"bare key", "{a:1}"},
      {"invalid UTF-8", "{\"a\":\"\xFF\"}"},
      {"UTF-8 cut off", "{\"a\":\"\xE2\x82\"}"},
      {"overlong UTF-8", "{\"a\":\"\xC0\xAF\"}"},
      {"surrogate as UTF-8", "{\"a\":\"\xED\xA0\x80\"}"},
      {"invalid UTF-8 in a key", "{\"\xFF\":1}"},
      {"lone surrogate", R"({"a":"\ud800"})"},
      {"control character", "{\"a\":\"\n\"}"},
      {"no number", R"({"a":01})"},
      {"infinity by name", R"({"a":Infinity})"},
  };
  for (const auto& [name, body] : rows) {
    EXPECT_TRUE(refused(body)) << name;
  }
  for (const char* body :
       {"{}", " {} \r\n", R"({"a":"\u0000\ud83d\ude00 € \/"})", R"({"a":1e400})"}) {
    EXPECT_FALSE(refused(body)) << body;
  }
}

TEST(AnswerBody, IsNestedUpToTheLimitOnly) {
  EXPECT_FALSE(refused(nested(KCVelloUtil::depthLimit - 1)));
  EXPECT_TRUE(refused(nested(KCVelloUtil::depthLimit)));
  EXPECT_TRUE(refused(std::string(1'000'000, '[')));
  EXPECT_TRUE(refused(repeated(R"({"a":)", 1'000'000)));
}

TEST(AnswerBody, OfFiftyMegabytesIsReadOrRefusedWithinTheMemoryLimit) {
  constexpr std::size_t size = std::size_t{50} * 1024 * 1024;
  const std::string text = R"({"a":")" + std::string(size, 'x') + "\"}";
  const JsonObject answer = KCVelloUtil::getJson(view(text));
  EXPECT_EQ(AnswerReader(answer).text("a")->size(), size);
  // 17 million values of 24 bytes each are more than the limit.
  EXPECT_TRUE(refused(R"({"a":[0)" + repeated(",{}", size) + "]}"));
}

TEST(AnswerBody, KeepsTheLastOfTwoEqualKeysAndOutlivesAMove) {
  JsonObject first =
      KCVelloUtil::getJson(view(R"({"a":1,"b":"a text beyond the short form","a":2})"));
  JsonObject answer = KCVelloUtil::getJson(view("{}"));
  answer = std::move(first);
  const AnswerReader reader(answer);
  EXPECT_EQ(reader.integer("a"), 2);
  EXPECT_EQ(reader.text("b"), "a text beyond the short form");
}

}  // namespace

}  // namespace orlix
