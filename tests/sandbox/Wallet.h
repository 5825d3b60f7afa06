#pragma once

#include <httplib.h>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Json.h"
#include "sandbox/Sandbox.h"

namespace orlix::sandbox::test {

/// The lines of a sandbox, kept. Thread: any.
class Events {
 public:
  EventLog::Sink sink();

  /// The code last "sent" to this number; empty when there is none.
  std::string codeFor(std::string_view msisdn) const;
  std::vector<std::string> lines() const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

/// What a request came to. `status` is 0 when no whole answer arrived.
struct Reply {
  int status = 0;
  std::string text;
  json::object body;
};

/// A client of the wallet protocol with one device, over one TLS connection that trusts the
/// sandbox's root alone.
class Wallet {
 public:
  explicit Wallet(const Sandbox& sandbox, std::string_view device = "[p:0F]");

  /// Opens a session with the token that is held and takes up its tokens and PIN key.
  Reply start();

  /// Enrols the device by `msisdn`, the code taken from `events`, and keeps the token that was
  /// issued. Returns the answer to the code.
  Reply enrol(const Events& events, const std::string& msisdn);

  Reply post(std::string_view path, const json::object& body);
  Reply lookUp(std::string_view code);

  /// The card with these last digits in the present list; 0 when there is none.
  std::int64_t cardEnding(std::string_view hint);

  /// A purchase body without the part that the way of paying adds.
  json::object purchase(std::string_view code, std::string_view hint, std::string_view amount);

  /// The purchase with the PIN block of `pin` added.
  json::object withPin(json::object purchase, std::string_view pin) const;

  httplib::SSLClient http;
  std::string token1;
  std::string token2;
  std::string ssToken;
  std::string pinKey;  ///< 16 bytes.
  json::object device;
};

Reply replyOf(const httplib::Result& result);

/// Enciphers a clear block under a two-key triple-DES key, as 16 upper-case hexadecimal digits.
std::string enciphered(std::string_view clearBlock, std::string_view key);

}  // namespace orlix::sandbox::test
