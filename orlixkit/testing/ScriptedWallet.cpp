// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/testing/ScriptedWallet.h"

#include <boost/json.hpp>
#include <fmt/format.h>

namespace orlix {

std::string cardJson(int cardId, const std::string& hint, const std::string& more) {
  return fmt::format(R"({{"cardId":{},"cardHint":"{}","cardType":"visa"{}}})", cardId, hint, more);
}

ScriptedWallet::ScriptedWallet(ScriptedHttpClient& network) : network_(network) {
  always("/sms/send", answers::kSmsSent);
  always("/sms/activateSession", answers::kSmsSent);
  always("/card/link/", answers::kLinked);
  always("/card/delink/", R"({"status":"SUCCESS"})");
  always("/card/bin/", answers::kNothingNeeded);
  always("/card/validate/", answers::kValidated);
  always("/profile/updateTC", "{}");
  network.on("", [this](const RecordedRequest& request) { return answer(request); });
}

ScriptedWallet::~ScriptedWallet() { network_.on("", ServerReply().fail("no wallet server")); }

void ScriptedWallet::next(const std::string& part, const ServerReply& reply, int times) {
  auto& replies = next_[part];
  replies.insert(replies.end(), static_cast<std::size_t>(times), reply);
}

std::string ScriptedWallet::lastBody(const std::string& part) const {
  const std::vector<RecordedRequest> all = network_.requestsTo(part);
  return all.empty() ? "" : all.back().body.value_or("");
}

std::string ScriptedWallet::sent(const std::string& part, const std::string& key) const {
  const std::string body = lastBody(part);
  const auto value = boost::json::parse(body.empty() ? "{}" : body).as_object();
  const auto* found = value.if_contains(key);
  if (found == nullptr) {
    return "(none)";
  }
  return found->is_string() ? std::string(found->as_string()) : boost::json::serialize(*found);
}

ServerReply ScriptedWallet::answer(const RecordedRequest& request) {
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
    return ServerReply::ok(session);
  }
  if (holds("/lookup/query/v2/")) {
    return ServerReply::ok(fmt::format(
        R"({{{}"cardList":{}}})", codeInfo.empty() ? "" : R"("codeInfo":)" + codeInfo + ",", list));
  }
  if (holds("/card/list/")) {
    return ServerReply::ok(list);
  }
  if (holds("/receipt/poll/")) {
    return ServerReply::ok(receipt);
  }
  if (holds("/purchase/") || holds("/auth3Ds/")) {
    return ServerReply::ok(purchase);
  }
  return ServerReply::of(404);
}

}  // namespace orlix
