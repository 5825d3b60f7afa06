// SPDX-License-Identifier: Apache-2.0

#include "bench/BareCheckout.h"

#include <boost/json.hpp>
#include <fmt/format.h>

#include "orlixkit/security/Base64.h"
#include "orlixkit/security/PinBlock.h"

namespace orlix::bench {

namespace {

std::string textOf(const boost::json::object& object, const char* key) {
  return std::string(object.at(key).as_string());
}

}  // namespace

BareSession openSession(BareClient& client) {
  const auto answer =
      boost::json::parse(client.post("/session/new/TALU", kSessionBody)).as_object();
  BareSession session{textOf(answer, "sessionId"), textOf(answer, "sessionId2"),
                      Base64::decode(textOf(answer, "pinKey")).value()};
  client.setTokens(session.first, session.second);
  return session;
}

void payBare(BareClient& client, const Caller& call) {
  client.setTokens("", "");
  SecretBytes key;
  call([&] { key = openSession(client).pinKey; });
  boost::json::value lookup;
  call([&] {
    lookup = boost::json::parse(
        client.post("/lookup/query/v2/TALU", R"({"qrValue":"FIXED-25","method":"inapp"})"));
  });
  const auto cardId =
      lookup.at("cardList").at("cards").as_array().front().at("cardId").to_number<std::int64_t>();
  boost::json::value purchase;
  call([&] {
    const auto block = PinBlock::createPINBlock(key, SecretString("1234"), 0);
    purchase = boost::json::parse(client.post(
        "/purchase/TALU",
        fmt::format(R"({{"pinData":{{"pinBlock":"{}"}},"locationInfo":"","amount":"25.00",)"
                    R"("extraRefValue":"","cardId":{},"billingListId":0,"shippingListId":0,)"
                    R"("code":"FIXED-25"}})",
                    block.value(), cardId)));
  });
  const auto transaction = purchase.at("transactionId").to_number<std::int64_t>();
  call([&] {
    client.post("/receipt/poll/TALU", fmt::format(R"({{"transactionId":{}}})", transaction));
  });
}

}  // namespace orlix::bench
