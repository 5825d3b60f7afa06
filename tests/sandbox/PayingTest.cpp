// SPDX-License-Identifier: Apache-2.0

#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

using Paying = SandboxTest;

json::object with(json::object body, std::string_view key, json::value value) {
  body[{key.data(), key.size()}] = std::move(value);
  return body;
}

TEST_F(Paying, TakesTheCardsOwnWayAndTheCodesAmountOnly) {
  struct Row {
    const char *code, *hint, *amount, *pin, *cvv, *status;
  };
  for (const Row& row : std::vector<Row>{
           {"FIXED-25", "1111", "25.00", "1234", "", "SUCCESS"},
           {"FIXED-25", "1111", "25.00", "4321", "", "INVALID_PASSWORD"},
           {"FIXED-25", "1111", "25.00", "", "", "ERROR"},
           {"FIXED-25", "2222", "25.00", "", "", "SUCCESS"},
           {"FIXED-25", "2222", "25.00", "1234", "", "ERROR"},
           {"FIXED-25", "3333", "25.00", "", "1234", "SUCCESS"},
           {"FIXED-25", "3333", "25.00", "", "123", "ERROR"},
           {"FIXED-25", "4444", "25.00", "1234", "123", "SUCCESS"},
           {"FIXED-25", "6666", "25.00", "", "", "ERROR"},
           {"FIXED-25", "7777", "25.00", "987654321", "", "SUCCESS"},
           {"FIXED-25", "0301", "25.00", "", "", "ERROR"},
           {"FIXED-25", "9999", "25.00", "1234", "", "ERROR"},
           {"FIXED-25", "1111", "25", "1234", "", "ERROR"},
           {"OPEN", "1111", "12.5", "1234", "", "SUCCESS"},
           {"OPEN", "1111", "0.00", "1234", "", "ERROR"},
           {"RANGE", "1111", "9.99", "1234", "", "ERROR"},
           {"RANGE", "1111", "10.00", "1234", "", "SUCCESS"},
           {"RANGE", "1111", "100.01", "1234", "", "ERROR"},
           {"DECLINED", "1111", "25.00", "1234", "", "ERROR"},
           {"LOWER-CASE", "1111", "25.00", "1234", "", "success"},
       }) {
    EXPECT_EQ(wallet_->pay(wallet_->purchase(row.code, row.hint, row.amount, row.pin, row.cvv)),
              row.status)
        << row.code << " " << row.hint << " " << row.amount << " " << row.pin << " " << row.cvv;
  }
}

TEST_F(Paying, BodyThatIsNotTheProtocolsIsRefusedWithTheReason) {
  const json::object right = wallet_->purchase();
  for (const char* key : {"code", "cardId", "billingListId", "shippingListId"}) {
    json::object body = right;
    body.erase(key);
    EXPECT_EQ(wallet_->post("purchase/TALU", body).status, 400) << key;
  }
  const json::object secureCode{{"PaRes", "x"}, {"secureCodeId", 1}};
  for (const auto& [body, reason] : std::vector<std::pair<json::object, std::string>>{
           {with(right, "cardId", 1001.0), "is not an integer"},
           {with(right, "amount", 25), "is not a string"},
           {with(right, "amount", "25,00"), "no decimal number"},
           {with(right, "locationInfo", "[G:1,2],"), "locationInfo"},
           {with(right, "pin", "1234"), "unknown key"},
           {with(right, "pinData", json::object{{"pinBlock", "abcdef0123456789"}}), "upper-case"},
           {with(right, "secureCodeData", secureCode), "exclude each other"}}) {
    const Reply reply = wallet_->post("purchase/TALU", body);
    EXPECT_EQ(reply.status, 400) << reply.text;
    EXPECT_NE(reply.text.find(reason), std::string::npos) << reply.text;
  }
}

TEST_F(Paying, IssuersWordCountsOnceAndForItsOwnPaymentOnly) {
  json::object payment = wallet_->purchase("FIXED-25", "0301", "25.00", "");
  const Reply page =
      wallet_->post("card/scUrl/TALU",
                    {{"cardId", payment.at("cardId")}, {"code", "FIXED-25"}, {"amount", "25.00"}});
  const Reply back = replyOf(wallet_->http.Post(
      "/issuer/otp", httplib::Params{{"PaReq", textOf(page.body, "payload")},
                                     {"TermUrl", "https://127.0.0.1/vello/secure_code.jsp"},
                                     {"otp", "123456"}}));
  const std::string before = "name='PaRes' value='";
  const size_t at = back.text.find(before) + before.size();
  const std::string paRes = back.text.substr(at, back.text.find('\'', at) - at);
  const auto payWith = [&](const std::string& word) {
    payment["secureCodeData"] = {{"PaRes", word}, {"secureCodeId", page.body.at("secureCodeId")}};
    return textOf(wallet_->post("purchase/TALU", payment).body, "errorMessage");
  };
  EXPECT_EQ(payWith(paRes + "x"), "the PaRes is not the issuer's");
  EXPECT_EQ(payWith(paRes), "");
  EXPECT_EQ(payWith(paRes), "the authentication was for something else") << "used before";
}

}  // namespace
}  // namespace orlix::sandbox::test
