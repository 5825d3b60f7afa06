// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <httplib.h>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "sandbox/Json.h"
#include "sandbox/Sandbox.h"

namespace orlix::sandbox::test {

/// What a request came to. `status` is 0 when no whole answer arrived.
struct Reply {
  int status = 0;
  std::string text;
  json::object body;
};

Reply replyOf(const httplib::Result& result);

/// A client of the wallet protocol with one device, over one TLS connection that trusts the
/// sandbox's root alone.
class Wallet {
 public:
  explicit Wallet(const Sandbox& sandbox, std::string_view device = "[p:0F]",
                  const std::string& address = "127.0.0.1");

  /// Opens a session with the token that is held and takes up its tokens and PIN key.
  Reply start();
  /// To a path below /vello; in most of them the node is the last part.
  Reply post(std::string_view path, const json::object& body = {});
  /// "status" of the answer.
  std::string statusOf(std::string_view path, const json::object& body) {
    return textOf(post(path, body).body, "status");
  }
  Reply lookUp(std::string_view code) {
    return post("lookup/query/v2/TALU", {{"qrValue", code}, {"method", "inapp"}});
  }
  /// The card with these last digits in the present list; 0 when there is none.
  std::int64_t cardEnding(std::string_view hint);
  /// A purchase body; without what is empty, and with a block of the PIN.
  json::object purchase(std::string_view code = "FIXED-25", std::string_view hint = "1111",
                        std::string_view amount = "25.00", std::string_view pin = "1234",
                        std::string_view cvv = "");
  std::string pay(const json::object& purchase) { return statusOf("purchase/TALU", purchase); }

  httplib::SSLClient http;
  std::string token1, token2, ssToken;
  std::string pinKey;  ///< 16 bytes.
  json::object device;
};

/// A sandbox, the codes that it sent by SMS, and a wallet.
class Bench {
 public:
  explicit Bench(bool enrolled = true, const std::string& database = "");

  /// Enrols the wallet's device by `msisdn` and keeps the token that was issued. Returns the answer
  /// to the code.
  Reply enrol(Wallet& wallet, const std::string& msisdn);
  /// The code last "sent" to this number; empty when there is none.
  std::string codeFor(const std::string& msisdn);
  json::object control(std::string_view method, std::string_view path, std::string_view body = {}) {
    return parseObject(sandbox_.control(method, path, body)).value_or(json::object{});
  }
  std::int64_t counted(std::string_view name) {
    return integerOf(control("GET", "/control/state"), name);
  }

 private:
  std::mutex mutex_;
  json::object codes_;

 protected:
  Sandbox sandbox_;

 public:
  std::optional<Wallet> wallet_;
};

class SandboxTest : public testing::Test, protected Bench {
 protected:
  using Bench::Bench;
};

}  // namespace orlix::sandbox::test
