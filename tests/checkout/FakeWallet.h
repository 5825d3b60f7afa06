#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "orlixkit/platform/memory/ScriptedConnections.h"

namespace orlix::test {

/// A wallet server of few words: answers by path what its fields say, and once or twice something
/// else where a test wants it to.
class FakeWallet {
 public:
  explicit FakeWallet(ScriptedConnections& network);

  std::string session =
      R"({"sessionId":"s1","sessionId2":"s2","pinKey":"AAECAwQFBgcICQoLDA0ODw==",)"
      R"("activated":true,"allowConnection":true})";
  /// JSON object of what the code stands for; empty for a code that stands for nothing.
  std::string codeInfo = R"({"code":"C-1","merchantName":"Corner Shop","amountString":"R 25.00",)"
                         R"("amount":"25.00","currency":"R"})";
  /// JSON array.
  std::string cards = R"([{"cardId":5,"cardHint":"4242","cardType":"visa","method":"AMT"}])";
  std::string purchase = R"({"status":"SUCCESS","transactionId":9007199254740993})";
  std::string receipt = R"({"status":"SUCCESS"})";

  /// The next request whose path holds `part` is answered so, and the one after it by the next.
  void next(const std::string& part, ServerReply reply) { next_[part].push_back(std::move(reply)); }
  void nextFails(const std::string& part) { next(part, ServerReply().fail("no network")); }
  /// From now on every answer to such a path is this one.
  void always(const std::string& part, ServerReply reply) {
    always_.insert_or_assign(part, std::move(reply));
  }

  std::size_t asked(const std::string& part) const { return network_.requestsTo(part).size(); }
  /// Body of the last such request; empty when there was none.
  std::string lastBody(const std::string& part) const;

 private:
  ServerReply answer(const RecordedRequest& request);

  ScriptedConnections& network_;
  std::map<std::string, std::deque<ServerReply>> next_;
  std::map<std::string, ServerReply> always_;
};

}  // namespace orlix::test
