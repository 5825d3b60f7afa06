// SPDX-License-Identifier: Apache-2.0

#include <utility>
#include <vector>

#include "tests/records/JsonFixture.h"

namespace orlix {

namespace {

using namespace std::string_view_literals;

/// Whether the body is refused, in the one way in which bodies are refused.
bool refused(std::string_view body) {
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

TEST(AnswerBody, ThatIsNoJsonObjectIsRefused) {
  const std::pair<const char*, std::vector<std::string_view>> rows[] = {
      {"no object", {"", " \n", "hello", "<html>502</html>", "[]", "\"a\"", "null"}},
      {"cut short, or with something behind it", {R"({"a":1)", "{}x", "{}{}", "{}\0"sv}},
      {"no strict JSON", {R"({"a":1,})", "{/**/}", "{a:1}", R"({"a":01})", R"({"a":Infinity})"}},
      {"no UTF-8",
       {"{\"a\":\"\xFF\"}", "{\"a\":\"\xE2\x82\"}", "{\"a\":\"\xC0\xAF\"}",
        "{\"a\":\"\xED\xA0\x80\"}", "{\"\xFF\":1}"}},
      {"no characters of a text", {R"({"a":"\ud800"})", "{\"a\":\"\n\"}"}},
  };
  for (const auto& [name, bodies] : rows) {
    for (const std::string_view body : bodies) {
      EXPECT_TRUE(refused(body)) << name << ": " << body;
    }
  }
  for (const std::string_view body :
       {"{}"sv, " {} \r\n"sv, R"({"a":"\u0000\ud83d\ude00 € \/"})"sv, R"({"a":1e400})"sv}) {
    EXPECT_FALSE(refused(body)) << body;
  }
  EXPECT_FALSE(refused(nested(KCVelloUtil::kDepthLimit - 1)));
  EXPECT_TRUE(refused(nested(KCVelloUtil::kDepthLimit)));
  EXPECT_TRUE(refused(std::string(1'000'000, '[')));
}

TEST(AnswerBody, OfFiftyMegabytesIsReadOrRefusedWithinTheMemoryLimit) {
  constexpr std::size_t kSize = std::size_t{50} * 1024 * 1024;
  const std::string text = R"({"a":")" + std::string(kSize, 'x') + "\"}";
  const JsonObject answer = KCVelloUtil::getJson(view(text));
  EXPECT_EQ(AnswerReader(answer).text("a")->size(), kSize);
  // 17 million values of 24 bytes each are more than the limit.
  std::string many = R"({"a":[0)";
  while (many.size() < kSize) {
    many += ",{}";
  }
  EXPECT_TRUE(refused(many + "]}"));
}

/// `count` times the element in an array under the key.
std::string listOf(const std::string& key, const std::string& element, std::size_t count) {
  std::string list = R"({")" + key + R"(":[)" + element;
  while (--count != 0) {
    list += "," + element;
  }
  return list + "]}";
}

template <class Record>
void readAs(const std::string& body) {
  parsed<Record>(body);
}

TEST(RecordsOfAnAnswer, TakeTheirLimitOfMemoryTogetherAndNoMore) {
  const std::size_t cards = KCVelloUtil::kRecordLimit / sizeof(CardOption);
  const std::size_t accounts = KCVelloUtil::kRecordLimit / sizeof(MTVasAccount);
  EXPECT_EQ(parsed<MTCardList>(listOf("cards", "{}", cards)).cardsArray.size(), cards);
  const struct {
    const char* what;
    void (*read)(const std::string&);
    std::string body;
  } rows[] = {
      {"a card more", readAs<MTCardList>, listOf("cards", "{}", cards + 1)},
      {"cards in 12 MB", readAs<MTCardList>, listOf("cards", "{}", 4'000'000)},
      {"accounts", readAs<MTVasAccountList>, listOf("vasAccounts", "{}", accounts + 1)},
      {"two lists", readAs<MTCodeResponse>,
       R"({"cardList":)" + listOf("cards", "{}", cards * 2 / 3) +
           R"(,"codeInfo":{"vasAccountsList":)" + listOf("vasAccounts", "{}", accounts * 2 / 3) +
           "}}"},
      {"a text", readAs<MTReceipt>,
       R"({"htmlContent":")" + std::string(KCVelloUtil::kRecordLimit + 1, 'x') + "\"}"},
      {"a text that is longer than its value", readAs<MTReceipt>,
       listOf("htmlContent", "1e15", 4'000'000)},
      {"a value as it stands", readAs<MTCodeResponse>, listOf("URLResponse", "0", 3'000'000)},
  };
  for (const auto& row : rows) {
    EXPECT_THROW(row.read(row.body), NetworkException) << row.what;
  }
}

TEST(AnswerBody, KeepsTheLastOfTwoEqualKeysAndOutlivesAMove) {
  JsonObject first =
      KCVelloUtil::getJson(view(R"({"a":1,"b":"a text beyond the short form","a":2})"));
  JsonObject answer = KCVelloUtil::getJson(view("{}"));
  answer = std::move(first);
  EXPECT_EQ(AnswerReader(answer).integer("a"), 2);
  EXPECT_EQ(AnswerReader(answer).text("b"), "a text beyond the short form");
}

}  // namespace

}  // namespace orlix
