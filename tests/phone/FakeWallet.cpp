#include "tests/phone/FakeWallet.h"

#include <boost/json.hpp>
#include <fmt/format.h>

namespace orlix::test {

std::string cardJson(int cardId, const std::string& hint, const std::string& more) {
  return fmt::format(R"({{"cardId":{},"cardHint":"{}","cardType":"visa"{}}})", cardId, hint, more);
}

FakeWallet::FakeWallet(ScriptedHttpClient& network) : network_(network) {
  always("/sms/send", answers::kSmsSent);
  always("/sms/activateSession", answers::kSmsSent);
  always("/card/link/", answers::kLinked);
  always("/card/delink/", R"({"status":"SUCCESS"})");
  always("/card/bin/", answers::kNothingNeeded);
  always("/card/validate/", answers::kValidated);
  always("/profile/updateTC", "{}");
  network.on("", [this](const RecordedRequest& request) { return answer(request); });
}

void FakeWallet::next(const std::string& part, ServerReply reply, int times) {
  auto& replies = next_[part];
  replies.insert(replies.end(), static_cast<std::size_t>(times), std::move(reply));
}

std::string FakeWallet::lastBody(const std::string& part) const {
  const std::vector<RecordedRequest> all = network_.requestsTo(part);
  return all.empty() ? "" : all.back().body.value_or("");
}

std::string FakeWallet::sent(const std::string& part, const std::string& key) const {
  const std::string body = lastBody(part);
  const auto value = boost::json::parse(body.empty() ? "{}" : body).as_object();
  const auto* found = value.if_contains(key);
  if (found == nullptr) {
    return "(none)";
  }
  return found->is_string() ? std::string(found->as_string()) : boost::json::serialize(*found);
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
  const std::string list = fmt::format(R"({{"cards":[{}]}})", fmt::join(cards, ","));
  if (holds("/session/new/")) {
    return ok(session);
  }
  if (holds("/lookup/query/v2/")) {
    return ok(fmt::format(R"({{{}"cardList":{}}})",
                          codeInfo.empty() ? "" : R"("codeInfo":)" + codeInfo + ",", list));
  }
  if (holds("/card/list/")) {
    return ok(list);
  }
  if (holds("/receipt/poll/")) {
    return ok(receipt);
  }
  if (holds("/purchase/") || holds("/auth3Ds/")) {
    return ok(purchase);
  }
  return ServerReply::of(404);
}

}  // namespace orlix::test
