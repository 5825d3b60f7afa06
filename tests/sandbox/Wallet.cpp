// SPDX-License-Identifier: Apache-2.0

#include "tests/sandbox/Wallet.h"

#include <array>
#include <fstream>
#include <iterator>

#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

namespace orlix::sandbox::test {

namespace {

X509_STORE* storeOf(const std::string& derFile) {
  std::ifstream file(derFile, std::ios::binary);
  const std::string der((std::istreambuf_iterator<char>(file)), {});
  const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
  X509* root = d2i_X509(nullptr, &bytes, static_cast<long>(der.size()));
  X509_STORE* store = X509_STORE_new();
  X509_STORE_add_cert(store, root);
  X509_free(root);
  return store;
}

std::string fromBase64(const std::string& text) {
  std::string bytes(3 * text.size() / 4 + 3, '\0');
  const int size = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                   reinterpret_cast<const unsigned char*>(text.data()),
                                   static_cast<int>(text.size()));
  bytes.resize(size < 16 ? 0 : 16);  // A PIN key; what is left is the padding's zeros.
  return bytes;
}

/// The PIN's clear block (ISO 9564 format 0) under a two-key triple-DES key.
std::string pinBlock(std::string_view pin, std::string_view key) {
  std::string field = fmt::format("0{}{}", pin.size(), pin);
  field.resize(16, 'F');
  std::array<unsigned char, 8> clear{};
  for (size_t i = 0; i < clear.size(); ++i) {
    clear.at(i) = static_cast<unsigned char>(std::stoi(field.substr(2 * i, 2), nullptr, 16));
  }
  const std::string tripleKey = std::string(key) + std::string(key.substr(0, 8));
  std::array<unsigned char, 16> out{};
  int size = 0;
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  EVP_EncryptInit_ex(context, EVP_des_ede3_ecb(), nullptr,
                     reinterpret_cast<const unsigned char*>(tripleKey.data()), nullptr);
  EVP_EncryptUpdate(context, out.data(), &size, clear.data(), 8);
  EVP_CIPHER_CTX_free(context);
  std::string text;
  for (size_t i = 0; i < 8; ++i) text += fmt::format("{:02X}", out.at(i));
  return text;
}

}  // namespace

Reply replyOf(const httplib::Result& result) {
  Reply reply;
  if (!result) return reply;
  reply.status = result->status;
  reply.text = result->body;
  reply.body = parseObject(reply.text).value_or(json::object{});
  return reply;
}

Wallet::Wallet(const Sandbox& sandbox, std::string_view serial, const std::string& address)
    : http(address, sandbox.port()),
      device{{"deviceSerial", serial},
             {"appVersion", "iPhone TALU 2.1.0"},
             {"hasDoubleSession", true},
             {"ssToken", ""},
             {"timeZone", "+02:00"},
             {"platform",
              {{"appVersion", "2.1.0"},
               {"device", "x86_64"},
               {"node", "TALU"},
               {"os", "IOS"},
               {"libKey", "shop-key"},
               {"osVersion", "12"}}}} {
  http.set_ca_cert_store(storeOf(sandbox.anchorPath()));
  http.enable_server_certificate_verification(true);
  http.set_keep_alive(true);
  http.set_tcp_nodelay(true);
  http.set_read_timeout(20);
}

Reply Wallet::post(std::string_view path, const json::object& body) {
  httplib::Headers headers;
  if (!token1.empty()) headers.emplace("x-session-token1", token1);
  if (!token2.empty()) headers.emplace("x-session-token2", token2);
  return replyOf(
      http.Post("/vello/" + std::string(path), headers, json::serialize(body), "application/json"));
}

Reply Wallet::start() {
  device["ssToken"] = ssToken;
  const Reply reply = post("session/new/TALU", device);
  token1 = textOf(reply.body, "sessionId");
  token2 = textOf(reply.body, "sessionId2");
  pinKey = fromBase64(textOf(reply.body, "pinKey"));
  return reply;
}

std::int64_t Wallet::cardEnding(std::string_view hint) {
  const Reply reply = post("card/list/TALU");
  const json::value* cards = reply.body.if_contains("cards");
  if (cards == nullptr) return 0;
  for (const json::value& card : cards->get_array()) {
    if (textOf(card.get_object(), "cardHint") == hint) {
      return integerOf(card.get_object(), "cardId");
    }
  }
  return 0;
}

json::object Wallet::purchase(std::string_view code, std::string_view hint, std::string_view amount,
                              std::string_view pin, std::string_view cvv) {
  json::object body{{"code", code},        {"cardId", cardEnding(hint)}, {"billingListId", 0},
                    {"shippingListId", 0}, {"amount", amount},           {"locationInfo", ""}};
  if (!pin.empty()) body["pinData"] = {{"pinBlock", pinBlock(pin, pinKey)}};
  if (!cvv.empty()) body["cvv"] = cvv;
  return body;
}

Bench::Bench(bool enrolled, const std::string& database)
    : sandbox_({.database = database,
                .enrolled = enrolled,
                .console = true,
                .onEvent = [this](std::string_view line) {
                  const json::object event = parseObject(line).value();
                  const std::lock_guard lock(mutex_);
                  if (textOf(event, "event") == "sms")
                    codes_[textOf(event, "msisdn")] = event.at("code");
                }}) {
  sandbox_.start();
  wallet_.emplace(sandbox_);
  EXPECT_EQ(wallet_->start().status, 200);
}

Reply Bench::enrol(Wallet& wallet, const std::string& msisdn) {
  if (wallet.token1.empty()) wallet.start();
  wallet.post("sms/send", {{"msisdn", msisdn}});
  const Reply reply = wallet.post("sms/activateSession", {{"activationCode", codeFor(msisdn)}});
  wallet.ssToken = textOf(reply.body, "newSsToken");
  return reply;
}

std::string Bench::codeFor(const std::string& msisdn) {
  const std::lock_guard lock(mutex_);
  return textOf(codes_, msisdn);
}

}  // namespace orlix::sandbox::test
