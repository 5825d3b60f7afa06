#include "tests/checkout/FakeWallet.h"

namespace orlix::test {

FakeWallet::FakeWallet(ScriptedConnections& network) : network_(network) {
  network.on("", [this](const RecordedRequest& request) { return answer(request); });
}

std::string FakeWallet::lastBody(const std::string& part) const {
  const std::vector<RecordedRequest> all = network_.requestsTo(part);
  return all.empty() ? "" : all.back().body.value_or("");
}

ServerReply FakeWallet::answer(const RecordedRequest& request) {
  const std::string path = request.path();
  const auto holds = [&path](const std::string& part) {
    return path.find(part) != std::string::npos;
  };
  for (auto& [part, replies] : next_) {
    if (holds(part) && !replies.empty()) {
      ServerReply reply = replies.front();
      replies.pop_front();
      return reply;
    }
  }
  for (const auto& [part, reply] : always_) {
    if (holds(part)) {
      return reply;
    }
  }
  if (holds("/session/new/")) {
    return ServerReply::of(200, session);
  }
  if (holds("/lookup/query/v2/")) {
    const std::string info = codeInfo.empty() ? "" : R"("codeInfo":)" + codeInfo + ",";
    return ServerReply::of(200, "{" + info + R"("cardList":{"cards":)" + cards + "}}");
  }
  if (holds("/card/list/")) {
    return ServerReply::of(200, R"({"cards":)" + cards + "}");
  }
  if (holds("/receipt/poll/")) {
    return ServerReply::of(200, receipt);
  }
  if (holds("/purchase/")) {
    return ServerReply::of(200, purchase);
  }
  return ServerReply::of(404);
}

}  // namespace orlix::test
