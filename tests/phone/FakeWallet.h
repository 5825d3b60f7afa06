#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "orlixkit/testing/ScriptedHttpClient.h"

namespace orlix::test {

/// Answers of a wallet server.
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

inline ServerReply ok(const std::string& body) { return ServerReply::of(200, body); }
inline ServerReply late(Duration after, const std::string& body) {
  return ServerReply().after(after).status(200).body(body);
}
inline ServerReply unreachable() { return ServerReply().fail("no network"); }

/// A card of the wallet as the server writes it, paid for without a PIN unless `more` says so.
std::string cardJson(int cardId, const std::string& hint,
                     const std::string& more = R"(,"method":"CNP")");

/// A wallet server of few words: answers by path what its fields say, and once or always something
/// else where a test wants it to.
class FakeWallet {
 public:
  explicit FakeWallet(ScriptedHttpClient& network);

  std::string session = answers::kSession;
  /// "codeInfo" of the code's lookup; empty for an unknown code.
  std::string codeInfo = R"({"code":"C-1","merchantName":"Corner Shop","amountString":"R 25.00",)"
                         R"("amount":"25.00","currency":"R"})";
  std::vector<std::string> cards{cardJson(5, "4242", R"(,"method":"AMT")")};
  std::string purchase = R"({"status":"SUCCESS","transactionId":9007199254740993})";
  std::string receipt = R"({"status":"SUCCESS"})";

  /// The next request whose path holds `part` is answered so, and the one after it by the next.
  void next(const std::string& part, ServerReply reply, int times = 1);
  /// From now on every answer to such a path is this one, but for those that are `next`.
  void always(const std::string& part, ServerReply reply) {
    always_.insert_or_assign(part, std::move(reply));
  }
  void always(const std::string& part, const std::string& body) { always(part, ok(body)); }

  std::size_t asked(const std::string& part) const { return network_.requestsTo(part).size(); }
  /// Body of the last such request; empty when there was none.
  std::string lastBody(const std::string& part) const;
  /// The value of that key in it, a string without its quotes; "(none)" when there is none.
  std::string sent(const std::string& part, const std::string& key) const;
  ServerReply answer(const RecordedRequest& request);

 private:
  ScriptedHttpClient& network_;
  std::map<std::string, std::deque<ServerReply>> next_;
  std::map<std::string, ServerReply> always_;
};

}  // namespace orlix::test
