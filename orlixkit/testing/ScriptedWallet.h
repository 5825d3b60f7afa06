// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "orlixkit/testing/ScriptedHttpClient.h"

namespace orlix {

/// Bodies of a wallet server's answers.
namespace answers {
inline const std::string kSession =
    R"({"sessionId":"s1","sessionId2":"s2","pinKey":"AAECAwQFBgcICQoLDA0ODw==",)"
    R"("activated":true,"allowConnection":true,"message":"","requestTCs":false})";
inline const std::string kNotActivated =
    R"({"sessionId":"s1","sessionId2":"s2","activated":false})";
inline const std::string kNewTerms =
    R"({"sessionId":"s1","sessionId2":"s2","activated":true,"allowConnection":true,)"
    R"("message":"","requestTCs":true})";
inline const std::string kLinked =
    R"({"status":"SUCCESS","cardList":{"cards":[{"cardId":11},{"cardId":12}]}})";
inline const std::string kFailed = R"({"status":"FAILED"})";
inline const std::string kRelink = R"({"status":"RELINK"})";
inline const std::string kSmsSent = R"({"status":"SUCCESS","newSsToken":"token"})";
inline const std::string kNothingNeeded = R"({"cardSupported":true})";
inline const std::string kValidated = R"({"message":"Your card has been added"})";
}  // namespace answers

/// A card of the wallet as the server writes it. `more` holds its other fields as JSON, each after
/// a comma: as given here a payment with it asks for nothing, `"method":"AMT"` asks for the PIN,
/// `"needCvv":true` for the CVV, and `"method":"SECURE_CODE"` opens the issuer's page.
std::string cardJson(int cardId, const std::string& hint,
                     const std::string& more = R"(,"method":"CNP")");

/// A wallet server for a test. As made, the device is enrolled, the wallet holds one card that
/// needs a PIN, the code is known and every payment succeeds. A test changes the fields, which
/// apply to the answers from then on, or sets what a path is answered. Not checked: PIN, CVV and
/// session.
///
/// Takes over the network's scripts; once it has gone, requests fail. Main thread, between the
/// world's runs.
class ScriptedWallet {
 public:
  explicit ScriptedWallet(ScriptedHttpClient& network);
  ~ScriptedWallet();
  ScriptedWallet(const ScriptedWallet&) = delete;
  ScriptedWallet& operator=(const ScriptedWallet&) = delete;

  std::string session = answers::kSession;  ///< answer to the opening of a session
  /// "codeInfo" of the code's lookup; empty for an unknown code.
  std::string codeInfo = R"({"code":"C-1","merchantName":"Corner Shop","amountString":"R 25.00",)"
                         R"("amount":"25.00","currency":"R"})";
  std::vector<std::string> cards{// see `cardJson`
                                 cardJson(5, "4242", R"(,"method":"AMT")")};
  std::string purchase = R"({"status":"SUCCESS","transactionId":9007199254740993})";
  std::string receipt = R"({"status":"SUCCESS"})";

  /// Answers the next request whose path holds `part`, after what `next` has been given before.
  void next(const std::string& part, const ServerReply& reply, int times = 1);
  /// Answers every request to such a path, except those that `next` answers.
  void always(const std::string& part, ServerReply reply) {
    always_.insert_or_assign(part, std::move(reply));
  }
  void always(const std::string& part, const std::string& body) {
    always(part, ServerReply::ok(body));
  }

  /// Number of requests to such a path that reached the server.
  std::size_t asked(const std::string& part) const { return network_.requestsTo(part).size(); }
  /// Body of the last such request; empty when there was none.
  std::string lastBody(const std::string& part) const;
  /// The value of that key in it, a string without its quotes; "(none)" when there is none.
  std::string sent(const std::string& part, const std::string& key) const;
  /// What it answers: for a script of the test's own that answers some requests otherwise.
  ServerReply answer(const RecordedRequest& request);

 private:
  ScriptedHttpClient& network_;
  std::map<std::string, std::deque<ServerReply>> next_;
  std::map<std::string, ServerReply> always_;
};

}  // namespace orlix
