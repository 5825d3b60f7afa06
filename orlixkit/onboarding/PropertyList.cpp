// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/onboarding/PropertyList.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace orlix {

namespace {

constexpr std::array<std::pair<std::string_view, char>, 5> kEntities{
    {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&apos;", '\''}, {"&quot;", '"'}}};

class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool take(std::string_view expected) {
    if (!rest_.starts_with(expected)) {
      return false;
    }
    rest_.remove_prefix(expected.size());
    return true;
  }

  void expect(std::string_view expected) {
    if (!take(expected)) {
      throw std::invalid_argument("property list: no " + std::string(expected) +
                                  " where it belongs");
    }
  }

  std::string_view takeUntil(std::string_view end) {
    const std::size_t length = rest_.find(end);
    if (length == std::string_view::npos) {
      throw std::invalid_argument("property list: ends without " + std::string(end));
    }
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(length + end.size());
    return taken;
  }

  void skipSpaceAndComments() {
    do {
      const std::size_t space = rest_.find_first_not_of(" \t\r\n");
      rest_.remove_prefix(space == std::string_view::npos ? rest_.size() : space);
    } while (take("<!--") && (takeUntil("-->"), true));
  }

  void expectEnd() const {
    if (!rest_.empty()) {
      throw std::invalid_argument("property list: goes on behind its end");
    }
  }

 private:
  std::string_view rest_;
};

std::string withoutEntities(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    if (text.front() == '<') {
      throw std::invalid_argument("property list: an element inside a string");
    }
    char next = text.front();
    std::size_t length = 1;
    if (next == '&') {
      length = 0;
      for (const auto& [entity, character] : kEntities) {
        if (text.starts_with(entity)) {
          next = character;
          length = entity.size();
        }
      }
      if (length == 0) {
        throw std::invalid_argument("property list: an unknown entity");
      }
    }
    plain.push_back(next);
    text.remove_prefix(length);
  }
  return plain;
}

void readProlog(Reader& reader) {
  reader.take("\xEF\xBB\xBF");
  if (reader.take("<?xml")) {
    reader.takeUntil("?>");
  }
  reader.skipSpaceAndComments();
  if (reader.take("<!DOCTYPE") && reader.takeUntil(">").find('[') != std::string_view::npos) {
    throw std::invalid_argument("property list: declarations of its own");
  }
  reader.skipSpaceAndComments();
}

}  // namespace

std::vector<std::string> readStringArray(ByteView propertyList) {
  const std::string text(propertyList.begin(), propertyList.end());
  Reader reader(text);
  readProlog(reader);
  reader.expect("<plist");
  reader.takeUntil(">");
  reader.skipSpaceAndComments();
  reader.expect("<array>");
  std::vector<std::string> strings;
  for (reader.skipSpaceAndComments(); !reader.take("</array>"); reader.skipSpaceAndComments()) {
    reader.expect("<string>");
    strings.push_back(withoutEntities(reader.takeUntil("</string>")));
  }
  reader.skipSpaceAndComments();
  reader.expect("</plist>");
  reader.skipSpaceAndComments();
  reader.expectEnd();
  return strings;
}

}  // namespace orlix
