// SPDX-License-Identifier: Apache-2.0

// The markup of a page from which the issuer's answer is lifted.

#include <algorithm>
#include <stdexcept>
#include <string>

#include <boost/json.hpp>

#include "fuzz/Target.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/protocol/RequestBody.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/securecode/IssuerPage.h"

namespace orlix::fuzz {

namespace {

void isFirstQuotedValue(const std::string& pares, std::string_view markup) {
  check(pares.find('"') == std::string::npos, "a PaRes holds no quote");
  if (std::count(markup.begin(), markup.end(), '"') < 2) {
    check(pares.empty(), "without a whole quoted value there is no PaRes");
    return;
  }
  const std::string quoted = '"' + pares + '"';
  check(markup.substr(markup.find('"')).starts_with(quoted), "the PaRes is the first quoted value");
}

/// What a page holds must not break the request that it goes into.
void reachesTheServerAsItIs(const std::string& pares) {
  const RequestBody body{{"secureCodeId", std::int64_t{1}}, {"PaRes", pares}};
  try {
    const auto sent = KCVelloUtil::getJson(body.write().reveal());
    const JsonValue& value = sent.dictionary().at("PaRes");
    check(std::string_view(value.as_string()) == pares && sent.dictionary().size() == 2,
          "the server is sent the PaRes as it is");
    check(isUtf8(pares), "what is no UTF-8 is not sent");
  } catch (const std::invalid_argument&) {
    check(!isUtf8(pares), "only what is no UTF-8 is not sent");
  }
}

}  // namespace

void pares(ByteView input) {
  const std::string_view markup = textOf(input);
  const std::string pares(IssuerPage::parsePaRes(markup).text());
  isFirstQuotedValue(pares, markup);
  reachesTheServerAsItIs(pares);
  const std::string withMarker = "<script>Vello.handle(" + std::string(markup);
  check(IssuerPage::isTerminationPage(withMarker) &&
            IssuerPage::parsePaRes(withMarker).text() == pares,
        "a termination page may hold anything");
}

}  // namespace orlix::fuzz
