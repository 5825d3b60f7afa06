// SPDX-License-Identifier: Apache-2.0

// Answers of the server. An input is the name of a record, a line end and the answer's body.

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <boost/json.hpp>

#include "fuzz/Target.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/records/Failures.h"
#include "orlixkit/records/JsonText.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/records/MTApiResponse.h"
#include "orlixkit/records/MTBinInfo.h"
#include "orlixkit/records/MTCardResponse.h"
#include "orlixkit/records/MTCardValidateResponse.h"
#include "orlixkit/records/MTCodeResponse.h"
#include "orlixkit/records/MTPinResponse.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"
#include "orlixkit/records/MTSmsResponse.h"

namespace orlix::fuzz {

namespace {

using Text = std::optional<std::string>;

std::optional<JsonObject> decoded(ByteView body) {
  try {
    return KCVelloUtil::getJson(body);
  } catch (const NetworkException& failure) {
    check(failure.name == "Parse data" && failure.reason, "an undecodable answer says so");
    return std::nullopt;
  }
}

/// Flags follow the key alone, whatever its value.
void follow(const JsonDictionary& answer,
            std::initializer_list<std::pair<const char*, bool>> flags) {
  for (const auto& [key, flag] : flags) {
    check(flag == answer.contains(key), key);
  }
}

/// Texts go on to screens, requests and the log, which all take UTF-8.
void areUtf8(std::initializer_list<const Text*> texts) {
  for (const Text* text : texts) {
    check(!*text || isUtf8(**text), "texts are UTF-8");
  }
}

bool same(const JsonValue& one, const JsonValue& other);

bool same(const JsonDictionary& one, const JsonDictionary& other) {
  return one.size() == other.size() && std::equal(one.begin(), one.end(), other.begin(),
                                                  [](const auto& mine, const auto& theirs) {
                                                    return mine.key() == theirs.key() &&
                                                           same(mine.value(), theirs.value());
                                                  });
}

bool same(const JsonValue& one, const JsonValue& other) {
  if (one.is_object() && other.is_object()) {
    return same(one.get_object(), other.get_object());
  }
  if (one.is_array() && other.is_array()) {
    const auto& mine = one.get_array();
    const auto& theirs = other.get_array();
    return std::equal(mine.begin(), mine.end(), theirs.begin(), theirs.end(),
                      [](const JsonValue& a, const JsonValue& b) { return same(a, b); });
  }
  if (one.is_double()) {
    return other.is_number() && one.get_double() == other.to_number<double>();
  }
  return one == other;
}

const JsonDictionary& nested(const JsonDictionary& answer, const char* key) {
  return answer.at(key).as_object();
}

void holds(const CardOption& card, const JsonDictionary& answer) {
  follow(answer, {{"cardHint", card.hasCardHint},
                  {"method", card.hasMethod},
                  {"needCvv", card.hasNeedCvv},
                  {"imageId", card.hasImageId},
                  {"issuer", card.hasIssuer},
                  {"allowCnp", card.allowCnp}});
  areUtf8({&card.cardHint, &card.cardType, &card.drawLine, &card.product, &card.validationtype,
           &card.issuer});
  check(card.method >= CardOptionMethod::notSet && card.method <= CardOptionMethod::cnp,
        "a card has a known method or none");
}

void holds(const MTCardList& list, const JsonDictionary& answer) {
  const auto* const cards = answer.if_contains("cards");
  check(list.cardsArray.size() == static_cast<std::size_t>(list.cardsArray_Count) &&
            list.cardsArray.size() == (cards != nullptr ? cards->as_array().size() : 0),
        "every card is in the list");
  for (std::size_t i = 0; i < list.cardsArray.size(); ++i) {
    holds(list.cardsArray[i], cards->as_array()[i].as_object());
  }
}

void holds(const MTReceipt& receipt, const JsonDictionary& answer) {
  follow(answer, {{"receiptId", receipt.hasReceiptId},
                  {"preview1", receipt.hasPreview1},
                  {"htmlContent", receipt.hasHtmlContent},
                  {"status", receipt.hasStatus},
                  {"amount", receipt.hasAmount}});
  areUtf8({&receipt.preview1, &receipt.preview2, &receipt.htmlContent, &receipt.status,
           &receipt.amount});
}

void holds(const SecureCodeAutomator& automator, const JsonDictionary& answer) {
  follow(answer, {{"javascript", automator.hasJavascript}, {"smsRegex", automator.hasSmsRegex}});
  areUtf8({&automator.javascript, &automator.smsRegex, &automator.inputPrompt});
}

void holds(const MTCodeInfo& info, const JsonDictionary& answer) {
  follow(answer, {{"code", info.hasCode},
                  {"amountString", info.hasAmountString},
                  {"amount", info.hasAmount},
                  {"requestTip", info.hasRequestTip},
                  {"vasProfileId", info.hasVasProfileId},
                  {"extraInput", info.hasExtraInput},
                  {"amountOptions", info.hasAmountOptions},
                  {"vasAccountsList", info.hasVasAccountsList}});
  areUtf8({&info.code, &info.amountString, &info.currency, &info.merchantName,
           &info.shortDescription, &info.amount, &info.tipFixed});
  if (info.vasAccountsList) {
    const auto* const accounts = nested(answer, "vasAccountsList").if_contains("vasAccounts");
    check(info.vasAccountsList->vasAccountsArray_Count ==
              (accounts != nullptr ? accounts->as_array().size() : 0),
          "every account is in the list");
  }
}

void holds(const MTCodeResponse& response, const JsonDictionary& answer) {
  follow(answer, {{"message", response.hasMessage},
                  {"codeInfo", response.hasCodeInfo},
                  {"cardList", response.hasCardList},
                  {"URLResponse", response.hasURLResponse}});
  if (response.codeInfo) {
    holds(*response.codeInfo, nested(answer, "codeInfo"));
  }
  if (response.cardList) {
    holds(*response.cardList, nested(answer, "cardList"));
  }
  check(!response.URLResponse || same(*response.URLResponse, answer.at("URLResponse")),
        "a value that is kept as it stands is the answer's");
}

void holds(const MTCardResponse& response, const JsonDictionary& answer) {
  follow(answer, {{"receipt", response.hasReceipt}, {"cardList", response.hasCardList}});
  check(response.hasStatus == (response.status != CardResponseStatus::notSet),
        "a card response is flagged with a known status only");
  if (response.receipt) {
    holds(*response.receipt, nested(answer, "receipt"));
  }
  if (response.cardList) {
    holds(*response.cardList, nested(answer, "cardList"));
  }
}

void holds(const MTCardValidateResponse& response, const JsonDictionary& answer) {
  follow(answer, {{"message", response.hasMessage}, {"cardList", response.hasCardList}});
  areUtf8({&response.message});
}

void holds(const MTPinResponse& response, const JsonDictionary& answer) {
  follow(answer, {{"status", response.hasStatus},
                  {"transactionId", response.hasTransactionId},
                  {"errorMessage", response.hasErrorMessage}});
  areUtf8({&response.errorMessage});
  check(response.status <= PinResponseStatus::invalidPassword, "a purchase's status is known");
}

void holds(const MTSmsResponse& response, const JsonDictionary& answer) {
  const auto* const status = answer.if_contains("status");
  const bool success =
      status != nullptr && status->is_string() && status->get_string() == "SUCCESS";
  check(response.hasStatus && success == (response.status == SmsResponseStatus::success),
        "only the exact text is a success");
  check(success || !response.newSsToken, "without success there is no token");
  areUtf8({&response.newSsToken});
}

void holds(const MTBinInfo& info, const JsonDictionary& answer) {
  follow(answer, {{"cardSupported", info.hasCardSupported},
                  {"needAccount", info.hasNeedAccount},
                  {"needExp", info.hasNeedExp},
                  {"needDob", info.hasNeedDob},
                  {"needCardHolderName", info.hasNeedCardHolderName}});
}

void holds(const MTSecureCodeURLResponse& response, const JsonDictionary& answer) {
  follow(answer, {{"cardSupported", response.hasCardSupported},
                  {"secureCodeId", response.hasSecureCodeId},
                  {"url", response.hasURL},
                  {"automator", response.hasAutomator},
                  {"payload", response.hasPayload},
                  {"error", response.hasError},
                  {"htmlPresent", response.hasHtmlPresent}});
  areUtf8({&response.URL, &response.payload, &response.error, &response.htmlContent});
  if (response.automator) {
    holds(*response.automator, nested(answer, "automator"));
  }
}

/// Reads the body as this record. A failure of another kind passes through and ends the process.
template <class Record>
void readAs(ByteView body, const std::optional<JsonObject>& answer) {
  try {
    Record record;
    record.parseFromData(body);
    check(answer.has_value(), "what cannot be decoded is no record");
    holds(record, answer->dictionary());
    record.parseFromData(body);  // lists grow, nothing fails that has not failed before
  } catch (const NetworkException&) {
    check(!answer, "what can be decoded is no network failure");
  } catch (const std::invalid_argument&) {
    check(answer.has_value(), "a value is refused only in an answer that can be decoded");
  }
}

/// A value's text reads back as the same value: it is what a request sends on and a screen shows.
void textReadsBack(const JsonObject& answer) {
  const auto again = decoded(toBytes(jsonText(answer.dictionary())));
  check(again && same(answer.dictionary(), again->dictionary()),
        "a value's text reads back as the value");
}

}  // namespace

void records(ByteView input) {
  std::string_view rest = textOf(input);
  const std::string_view name = takeLine(rest);
  const ByteView body = input.last(rest.size());
  const auto answer = decoded(body);
  if (answer) {
    textReadsBack(*answer);
  }
  constexpr std::pair<std::string_view, void (*)(ByteView, const std::optional<JsonObject>&)>
      kinds[] = {{"MTBinInfo", readAs<MTBinInfo>},
                 {"MTCardList", readAs<MTCardList>},
                 {"MTCardResponse", readAs<MTCardResponse>},
                 {"MTCardValidateResponse", readAs<MTCardValidateResponse>},
                 {"MTCodeResponse", readAs<MTCodeResponse>},
                 {"MTPinResponse", readAs<MTPinResponse>},
                 {"MTReceipt", readAs<MTReceipt>},
                 {"MTSecureCodeURLResponse", readAs<MTSecureCodeURLResponse>},
                 {"MTSmsResponse", readAs<MTSmsResponse>}};
  for (const auto& [kind, read] : kinds) {
    if (kind == name) {
      read(body, answer);
    }
  }
  // The body of an answer without data is never parsed.
  MTApiResponse bare;
  check(!bare.parseFromData(body).hasStatus, "the bare answer has no status");
}

}  // namespace orlix::fuzz
