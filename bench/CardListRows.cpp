// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <malloc.h>
#include <stdexcept>
#include <string>

#include <boost/json.hpp>
#include <fmt/format.h>

#include "bench/Rows.h"
#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/records/MTCardList.h"

namespace orlix::bench {

namespace {

constexpr std::size_t kFew = 10;
constexpr std::size_t kMany = 100'000;

std::string listOf(std::size_t count) {
  boost::json::array cards;
  for (std::size_t i = 0; i < count; ++i) {
    cards.push_back({{"cardId", i},
                     {"cardHint", fmt::format("{:04}", i % 10'000)},
                     {"needCvv", i % 2 == 0},
                     {"cardType", "visa"},
                     {"method", "AMT"},
                     {"imageId", i},
                     {"product", "Gold card of some bank"},
                     {"validated", true},
                     {"issuer", "Some bank"}});
  }
  return boost::json::serialize(boost::json::object{{"cards", std::move(cards)}});
}

ByteView bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

void read(const std::string& text, std::size_t count) {
  if (static_cast<std::size_t>(MTCardList().parseFromData(bytesOf(text)).cardsArray_Count) !=
      count) {
    throw std::runtime_error("the list was not read");
  }
}

/// Bytes that the heap holds for one card while the answer and its records are there.
double bytesPerCard(const std::string& text, std::size_t count) {
  const auto held = [] {
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
  };
  const double before = held();
  const JsonObject answer = KCVelloUtil::getJson(bytesOf(text));
  MTCardList records;
  records.parseFromDictionary(answer.dictionary());
  return (held() - before) / static_cast<double>(count);
}

}  // namespace

Row cardListRow() {
  constexpr std::size_t kCards = 10'000;
  const std::string text = listOf(kCards);
  return compare(
      "10,000 cards read into records : bare JSON parse", 1 / 0.7, {.samples = 15},
      [&] {
        boost::json::monotonic_resource memory;
        boost::json::parse(text, &memory);
      },
      [&] { read(text, kCards); });
}

Row cardListGrowthRow() {
  const std::string few = listOf(kFew);
  const std::string many = listOf(kMany);
  return compare(
      "100,000 cards in one answer : in 10,000 answers", 2, {.samples = 3},
      [&] {
        for (std::size_t i = 0; i < kMany / kFew; ++i) {
          read(few, kFew);
        }
      },
      [&] { read(many, kMany); });
}

Row cardListMemoryRow() {
  const std::string few = listOf(kFew);
  const std::string many = listOf(kMany);
  return compareSamples(
      "memory a card of 100,000 : of ten", "B", 1.25, {.rounds = 1, .samples = 3},
      [&] { return bytesPerCard(few, kFew); }, [&] { return bytesPerCard(many, kMany); });
}

}  // namespace orlix::bench
