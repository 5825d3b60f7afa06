#include <gtest/gtest.h>

#include "orlixkit/records/Failures.h"
#include "orlixkit/records/MTCodeResponse.h"
#include "orlixkit/records/MTReceipt.h"
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

TEST(AnswerBody, ThatIsNoJsonObjectIsRefused) {
  for (const std::string& body : {""s,
                                  " \n"s,
                                  "hello"s,
                                  "<html>502</html>"s,
                                  "[]"s,
                                  "\"a\""s,
                                  "null"s,
                                  R"({"a":1)"s,
                                  "{}x"s,
                                  "{}{}"s,
                                  "{}\0"s,
                                  R"({"a":1,})"s,
                                  "{/**/}"s,
                                  "{a:1}"s,
                                  "{\"a\":\"\xFF\"}"s,
                                  "{\"a\":\"\xE2\x82\"}"s,
                                  "{\"a\":\"\xC0\xAF\"}"s,
                                  "{\"a\":\"\xED\xA0\x80\"}"s,
                                  "{\"\xFF\":1}"s,
                                  R"({"a":"\ud800"})"s,
                                  "{\"a\":\"\n\"}"s,
                                  R"({"a":01})"s,
                                  R"({"a":Infinity})"s,
                                  nested(KCVelloUtil::kDepthLimit),
                                  std::string(1'000'000, '[')}) {
    EXPECT_TRUE(refused(body)) << body.substr(0, 60);
  }
  for (const std::string& body : {"{}"s, " {} \r\n"s, R"({"a":"\u0000\ud83d\ude00 € \/"})"s,
                                  R"({"a":1e400})"s, nested(KCVelloUtil::kDepthLimit - 1)}) {
    EXPECT_FALSE(refused(body)) << body.substr(0, 60);
  }
}

TEST(AnswerBody, OfFiftyMegabytesIsReadOrRefusedWithinTheMemoryLimit) {
  constexpr std::size_t size = std::size_t{50} * 1024 * 1024;
  const std::string text = R"({"a":")" + std::string(size, 'x') + "\"}";
  const JsonObject answer = KCVelloUtil::getJson(view(text));
  EXPECT_EQ(AnswerReader(answer).text("a")->size(), size);
  // 17 million values of 24 bytes each are more than the limit.
  std::string many = R"({"a":[0)";
  while (many.size() < size) {
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
