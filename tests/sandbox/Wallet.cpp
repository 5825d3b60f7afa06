#include "tests/sandbox/Wallet.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

namespace orlix::sandbox::test {

namespace {

/// The root as a PEM file beside it, which is what cpp-httplib's client reads.
std::string pemBeside(const std::string& derFile) {
  std::ifstream file(derFile, std::ios::binary);
  const std::string der((std::istreambuf_iterator<char>(file)), {});
  const auto* bytes = reinterpret_cast<const unsigned char*>(der.data());
  X509* root = d2i_X509(nullptr, &bytes, static_cast<long>(der.size()));
  static std::atomic<int> made = 0;
  const std::string pemFile = derFile + ".pem";
  const std::string unfinished = pemFile + std::to_string(++made);
  if (FILE* out = std::fopen(unfinished.c_str(), "w")) {
    if (root != nullptr) PEM_write_X509(out, root);
    std::fclose(out);
    // In one step: another client of the same sandbox may be reading it.
    std::filesystem::rename(unfinished, pemFile);
  }
  X509_free(root);
  return pemFile;
}

std::string fromBase64(const std::string& text) {
  std::string bytes(3 * text.size() / 4 + 3, '\0');
  const int size = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                   reinterpret_cast<const unsigned char*>(text.data()),
                                   static_cast<int>(text.size()));
  bytes.resize(size < 16 ? 0 : 16);  // A PIN key; what is left is the padding's zeros.
  return bytes;
}

}  // namespace

EventLog::Sink Events::sink() {
  return [this](std::string_view line) {
    const std::lock_guard lock(mutex_);
    lines_.emplace_back(line);
  };
}

std::string Events::codeFor(std::string_view msisdn) const {
  const std::lock_guard lock(mutex_);
  std::string code;
  for (const std::string& line : lines_) {
    const auto event = parseObject(line);
    if (event && textOf(*event, "event") == "sms" && textOf(*event, "msisdn") == msisdn) {
      code = textOf(*event, "code");
    }
  }
  return code;
}

std::vector<std::string> Events::lines() const {
  const std::lock_guard lock(mutex_);
  return lines_;
}

Reply replyOf(const httplib::Result& result) {
  Reply reply;
  if (!result) return reply;
  reply.status = result->status;
  reply.text = result->body;
  reply.body = parseObject(reply.text).value_or(json::object{});
  return reply;
}

std::string enciphered(std::string_view clearBlock, std::string_view key) {
  const std::string tripleKey = std::string(key) + std::string(key.substr(0, 8));
  std::array<unsigned char, 64> out{};
  int size = 0;
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  EVP_EncryptInit_ex(context, EVP_des_ede3_ecb(), nullptr,
                     reinterpret_cast<const unsigned char*>(tripleKey.data()), nullptr);
  EVP_CIPHER_CTX_set_padding(context, 0);
  EVP_EncryptUpdate(context, out.data(), &size,
                    reinterpret_cast<const unsigned char*>(clearBlock.data()),
                    static_cast<int>(clearBlock.size()));
  EVP_CIPHER_CTX_free(context);
  std::string text;
  for (int i = 0; i < size; ++i) text += fmt::format("{:02X}", out.at(static_cast<size_t>(i)));
  return text;
}

Wallet::Wallet(const Sandbox& sandbox, std::string_view serial)
    : http("127.0.0.1", sandbox.port()),
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
  http.set_ca_cert_path(pemBeside(sandbox.anchorPath()).c_str());
  http.enable_server_certificate_verification(true);
  http.set_keep_alive(true);
  http.set_tcp_nodelay(true);
  http.set_read_timeout(20);
}

Reply Wallet::post(std::string_view path, const json::object& body) {
  httplib::Headers headers;
  if (!token1.empty()) headers.emplace("x-session-token1", token1);
  if (!token2.empty()) headers.emplace("x-session-token2", token2);
  return replyOf(http.Post(std::string(path), headers, json::serialize(body), "application/json"));
}

Reply Wallet::start() {
  device["ssToken"] = ssToken;
  const Reply reply = post("/vello/session/new/TALU", device);
  token1 = textOf(reply.body, "sessionId");
  token2 = textOf(reply.body, "sessionId2");
  pinKey = fromBase64(textOf(reply.body, "pinKey"));
  return reply;
}

Reply Wallet::enrol(const Events& events, const std::string& msisdn) {
  if (token1.empty()) start();
  post("/vello/sms/send", {{"msisdn", msisdn}});
  const Reply reply =
      post("/vello/sms/activateSession", {{"activationCode", events.codeFor(msisdn)}});
  ssToken = textOf(reply.body, "newSsToken");
  return reply;
}

Reply Wallet::lookUp(std::string_view code) {
  return post("/vello/lookup/query/v2/TALU", {{"qrValue", code}, {"method", "inapp"}});
}

std::int64_t Wallet::cardEnding(std::string_view hint) {
  const Reply reply = post("/vello/card/list/TALU", {});
  const json::value* cards = reply.body.if_contains("cards");
  if (cards == nullptr) return 0;
  for (const json::value& card : cards->get_array()) {
    if (textOf(card.get_object(), "cardHint") == hint) {
      return integerOf(card.get_object(), "cardId");
    }
  }
  return 0;
}

json::object Wallet::purchase(std::string_view code, std::string_view hint,
                              std::string_view amount) {
  return {{"code", code},        {"cardId", cardEnding(hint)}, {"billingListId", 0},
          {"shippingListId", 0}, {"amount", amount},           {"locationInfo", ""}};
}

json::object Wallet::withPin(json::object purchase, std::string_view pin) const {
  std::string field = fmt::format("0{}{}", pin.size(), pin);
  field.resize(16, 'F');
  std::string clear;
  for (size_t i = 0; i < field.size(); i += 2) {
    clear += static_cast<char>(std::stoi(field.substr(i, 2), nullptr, 16));
  }
  purchase["pinData"] = {{"pinBlock", enciphered(clear, pinKey)}};
  return purchase;
}

}  // namespace orlix::sandbox::test
