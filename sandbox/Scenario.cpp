// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Scenario.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "sandbox/Formats.h"

namespace orlix::sandbox {

namespace {

[[noreturn]] void refuse(const std::string& place, std::string_view why) {
  throw std::runtime_error(fmt::format("{}: {}", place, why));
}

json::object parsed(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(in)), {});
  if (in.bad() || !in.is_open()) refuse(file, "cannot be read");
  json::parser parser;
  json::error_code error;
  const size_t read = parser.write_some(text, error);
  const bool hasMore = text.find_first_not_of(" \t\r\n", read) != std::string::npos;
  if (error || hasMore) {
    const auto at = text.begin() + static_cast<std::ptrdiff_t>(std::min(read, text.size()));
    const auto line = std::count(text.begin(), at, '\n') + 1;
    const bool isCut = error == json::error::incomplete;
    refuse(fmt::format("{}:{}", file, line), isCut   ? "the JSON does not end"
                                             : error ? error.message()
                                                     : "the JSON has ended before");
  }
  json::value value = parser.release();
  if (!value.is_object()) refuse(file, "is no JSON object");
  return std::move(value.get_object());
}

/// The objects of the list of that name, each with its place.
std::vector<std::pair<std::string, json::object>> entries(const json::object& scenario,
                                                          const std::string& file,
                                                          const char* name) {
  std::vector<std::pair<std::string, json::object>> out;
  const json::value* list = scenario.if_contains(name);
  if (list == nullptr) return out;
  for (const json::value& entry : list->get_array()) {
    const std::string place = fmt::format("{}: {}[{}]", file, name, out.size());
    if (!entry.is_object()) refuse(place, "is no object");
    out.emplace_back(place, entry.get_object());
  }
  return out;
}

CardKind cardOf(const std::string& place, json::object entry) {
  constexpr size_t kShortest = 13;
  constexpr size_t kLongest = 19;
  const std::string number = textOf(entry, "number");
  if (!isDigits(number) || number.size() < kShortest || number.size() > kLongest) {
    refuse(place, "\"number\" is not of 13 to 19 digits");
  }
  if (entry.contains("bin"))
    refuse(place, "\"bin\" is the number's first nine digits; leave it out");
  entry["bin"] = number.substr(0, CardKinds::kBinLength);
  CardKind kind;
  if (const auto wrong = kind.apply(entry)) refuse(place, *wrong);
  if (const auto wrong = kind.complaint()) refuse(place, *wrong);
  return kind;
}

}  // namespace

void loadScenario(const std::string& file, State& state) {
  const json::object scenario = parsed(file);
  const Shape shape{{"codes", Kind::array, false}, {"cards", Kind::array, false}};
  if (auto wrong = complaint(scenario, shape, "the scenario")) refuse(file, *wrong);
  for (const auto& [place, entry] : entries(scenario, file, "codes")) {
    const std::string name = textOf(entry, "code");
    if (!name.empty() && state.codes.find(name))
      refuse(place, fmt::format("there is a code {} already", name));
    std::string made;
    if (const auto wrong = state.codes.make(entry, made)) refuse(place, *wrong);
  }
  std::vector<CardKind> cards;
  for (const auto& [place, entry] : entries(scenario, file, "cards")) {
    CardKind card = cardOf(place, entry);
    const bool known = std::any_of(cards.begin(), cards.end(),
                                   [&](const CardKind& other) { return other.bin == card.bin; });
    if (known) refuse(place, fmt::format("an earlier card begins with {} too", card.bin));
    cards.push_back(std::move(card));
    if (cards.size() > static_cast<size_t>(Wallets::kMostCards)) {
      refuse(place, fmt::format("a wallet holds {} cards at most", Wallets::kMostCards));
    }
  }
  for (const CardKind& card : cards) state.kinds.put(card);
  if (!cards.empty()) state.wallets.fillWith(std::move(cards));
}

}  // namespace orlix::sandbox
