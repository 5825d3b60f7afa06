// SPDX-License-Identifier: Apache-2.0

#include "tests/phone/WalletServer.h"

#include <algorithm>
#include <mutex>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tests/phone/RequestRecord.h"

namespace orlix::test {

namespace {

using Names = std::vector<std::string>;

/// Part of the path, and what the walk calls such a request.
const std::vector<std::pair<std::string, std::string>> kKinds{
    {"/session/new/", "session"},  {"/lookup/", "lookup"},        {"/card/list/", "list"},
    {"/sms/send", "sms"},          {"/sms/activate", "activate"}, {"/card/bin/", "bin"},
    {"/card/link/", "link"},       {"/card/delink/", "delete"},   {"/card/validate/", "confirm"},
    {"/card/scUrl/", "page"},      {"/card/get3ds", "page"},      {"/purchase/", "purchase"},
    {"/auth3Ds/", "authenticate"}, {"/receipt/", "receipt"},      {"/profile/updateTC", "terms"}};

std::string kindOf(const std::string& url) {
  for (const auto& [part, kind] : kKinds) {
    if (url.find(part) != std::string::npos) {
      return kind;
    }
  }
  return "unknown";
}

std::string statusBody(const std::string& status) {
  return fmt::format(R"({{"status":"{}"}})", status);
}

std::vector<ServerCard> newWallet(int number) {
  const std::vector<std::string> kinds{
      R"(,"method":"AMT")", R"(,"method":"CNP","needCvv":true)", R"(,"method":"SECURE_CODE")",
      R"(,"validated":false,"validationtype":"3DS")",
      R"(,"method":"AMT","validated":false,"validationtype":"DOB")"};
  std::vector<ServerCard> wallet;
  // Every third wallet is empty.
  for (std::size_t i = 0; number % 3 != 2 && i < kinds.size(); ++i) {
    const auto id = static_cast<std::int64_t>(number * 100 + static_cast<int>(i) + 1);
    wallet.push_back({id, kinds[i]});
  }
  return wallet;
}

}  // namespace

std::string HeldRequest::text(const char* key) const {
  const auto* value = body.if_contains(key);
  return value != nullptr && value->is_string() ? std::string(value->get_string()) : std::string();
}

std::int64_t HeldRequest::integer(const char* key) const {
  const auto* value = body.if_contains(key);
  return value != nullptr && value->is_int64() ? value->get_int64() : 0;
}

const Names& WalletServer::answersTo(const std::string& kind) {
  static const std::map<std::string, Names> kAnswers{
      {"session", {"ok", "lost", "notice", "refused", "terms"}},
      {"lookup", {"ok", "variable", "403", "lost", "nothing", "unusable"}},
      {"list", {"ok", "403", "lost"}},
      {"sms", {"ok", "403", "lost", "failed"}},
      {"activate", {"ok", "403", "lost", "failed"}},
      {"bin", {"ok", "403", "lost", "unsupported", "account"}},
      {"link", {"ok", "403", "lost", "failed", "relink", "else"}},
      {"delete", {"ok", "403", "lost"}},
      {"confirm", {"ok", "403", "lost", "failed"}},
      {"page", {"ok", "403", "lost", "error", "unsupported"}},
      {"purchase", {"ok", "403", "lost", "refused"}},
      {"authenticate", {"ok", "403", "lost", "refused"}},
      {"receipt", {"ok", "none", "403", "lost", "failed"}},
      {"terms", {"ok", "403", "lost"}},
      {"unknown", {"ok"}}};
  return kAnswers.at(kind);
}

/// One exchange, whose caller waits for an answer.
struct WalletServer::Exchange {
  explicit Exchange(Clock& clock) : condition(clock.newCondition()) {}

  void end(HttpResult with, std::int64_t answerStatus = 0, std::string answerBody = {}) {
    const std::lock_guard lock(*condition);
    result = std::move(with);
    status = answerStatus;
    body = std::move(answerBody);
    condition->signal();
  }
  /// Returns at the deadline as well, and at the shutdown.
  void wait(SteadyTime deadline) {
    const std::lock_guard lock(*condition);
    while (!result && condition->waitUntil(deadline)) {
    }
  }

  const std::unique_ptr<Condition> condition;
  Request held;
  std::optional<HttpResult> result;
  std::int64_t status = 0;
  std::string body;
};

HttpResult WalletServer::perform(const HttpRequest& request, HttpDelegate& delegate) {
  using End = HttpResult::End;
  if (closed_) {
    return {End::closed};
  }
  if (!delegate.mayBeSent()) {
    return {End::stopped};
  }
  Exchange exchange(*clock_);
  receive(request, exchange);
  exchange.wait(request.deadline);
  if (!exchange.result) {
    drop(exchange.held);
    onCancelled(*exchange.held);
    return {clock_->steadyNow() < request.deadline ? End::closed : End::timedOut};
  }
  if (exchange.result->end == End::complete) {
    delegate.didReceiveResponse(exchange.status);
    delegate.didReceiveData(toBytes(exchange.body));
  }
  return *exchange.result;
}

void WalletServer::close() {
  closed_ = true;
  for (const auto& [held, exchange] : std::exchange(exchanges_, {})) {
    exchange->end({HttpResult::End::closed});
  }
}

void WalletServer::receive(const HttpRequest& sent, Exchange& exchange) {
  RequestRecord::note(sent);
  const auto request = std::make_shared<HeldRequest>();
  request->number = ++sent_;
  request->kind = kindOf(sent.url);
  request->system = sent.url.find("//test") == std::string::npos ? 0 : 1;
  for (const auto& [name, value] : sent.headers) {
    if (name == "x-session-token1") {
      request->session = value;
    }
  }
  if (sent.body) {
    const auto bytes = sent.body->reveal();
    request->body = boost::json::parse(std::string(bytes.begin(), bytes.end())).as_object();
  }
  exchange.held = request;
  held_.push_back(request);
  exchanges_[request.get()] = &exchange;
  if (const std::optional<std::string> how = onSent ? onSent(*request) : std::nullopt) {
    answer(request, *how);
  }
}

void WalletServer::drop(const Request& request) {
  std::erase(held_, request);
  exchanges_.erase(request.get());
}

void WalletServer::answer(const Request& request, const std::string& how) {
  const auto found = exchanges_.find(request.get());
  if (found == exchanges_.end()) {
    return;
  }
  Exchange& exchange = *found->second;
  drop(request);
  if (how == "lost") {
    exchange.end({HttpResult::End::failed, "The server is unreachable."});
  } else if (how == "403" || isForgotten(*request)) {
    exchange.end({HttpResult::End::complete}, 403);
  } else {
    exchange.end({HttpResult::End::complete}, 200, bodyOf(*request, how));
  }
}

bool WalletServer::isForgotten(const HeldRequest& request) const {
  return oneSession_ && request.kind != "session" && request.session != newestSession_;
}

const ServerSession* WalletServer::session(const std::string& token) const {
  const auto found = sessions_.find(token);
  return found == sessions_.end() ? nullptr : &found->second;
}

std::string WalletServer::newestSession(const std::string& libKey) const {
  const auto found = newestByKey_.find(libKey);
  return found == newestByKey_.end() ? "" : found->second;
}

WalletServer::Wallet& WalletServer::walletOf(const HeldRequest& request) {
  const ServerSession* const found = session(request.session);
  const std::string token = found == nullptr ? "" : found->deviceToken;
  const auto known = wallets_.find(token);
  return known != wallets_.end() ? known->second
                                 : wallets_[token] = newWallet(static_cast<int>(wallets_.size()));
}

std::string WalletServer::openSession(const HeldRequest& request, const std::string& how) {
  const int number = ++issued_;
  ServerSession opened;
  opened.system = request.system;
  opened.deviceToken = request.text("ssToken");
  opened.libKey = request.body.at("platform").as_object().at("libKey").as_string().c_str();
  opened.pinKey = fmt::format("{:A>22}==", number);
  const bool isKnown = knowsDevice_ || !opened.deviceToken.empty();
  newestSession_ = fmt::format("s{}", number);
  newestByKey_[opened.libKey] = newestSession_;
  const std::string body =
      fmt::format(R"({{"sessionId":"{}","sessionId2":"x","pinKey":"{}","activated":{},)"
                  R"("allowConnection":{},"message":"{}","requestTCs":{}}})",
                  newestSession_, opened.pinKey, isKnown, how != "refused",
                  how == "notice" ? "Please note." : "", how == "terms");
  sessions_[newestSession_] = std::move(opened);
  return body;
}

std::string WalletServer::cardsOf(const HeldRequest& request) {
  std::vector<std::string> cards;
  for (const ServerCard& card : walletOf(request)) {
    cards.push_back(fmt::format(R"({{"cardId":{0},"cardHint":"{0}"{1}}})", card.id, card.more));
  }
  return fmt::format(R"({{"cards":[{}]}})", fmt::join(cards, ","));
}

std::string WalletServer::bodyOf(const HeldRequest& request, const std::string& how) {
  const std::string& kind = request.kind;
  if (kind == "session") {
    return openSession(request, how);
  }
  if (kind == "lookup") {
    const std::string code = request.text("qrValue");
    const std::string info = fmt::format(
        R"("codeInfo":{{"code":"{}","merchantName":"Shop {}","shortDescription":"{}",{}{}}},)",
        code, code, request.number,
        how == "variable" ? R"("amountString":"","amount":"")"
                          : R"("amountString":"R 25.00","amount":"25.00")",
        how == "unusable" ? R"(,"requestTip":true)" : "");
    return fmt::format(R"({{{}"cardList":{}}})", how == "nothing" ? "" : info, cardsOf(request));
  }
  if (kind == "list") {
    return cardsOf(request);
  }
  if (kind == "activate" && how == "ok") {
    const std::string token = fmt::format("token-{}", ++issued_);
    onActivated(request, token);
    return fmt::format(R"({{"status":"SUCCESS","newSsToken":"{}"}})", token);
  }
  if (kind == "bin") {
    return fmt::format(R"({{"cardSupported":{},"needAccount":{},"needExp":true}})",
                       how != "unsupported", how == "account");
  }
  if (kind == "link" && how == "ok") {
    const std::int64_t id = 10'000 + ++issued_;
    Wallet& wallet = walletOf(request);
    const auto place = request.text("linkedMsisdn").empty() ? wallet.begin() : wallet.end();
    wallet.insert(place, {id, R"(,"method":"AMT")"});
    return fmt::format(R"({{"status":"SUCCESS","cardList":{}}})", cardsOf(request));
  }
  if (kind == "delete" || (kind == "confirm" && how == "failed")) {
    std::erase_if(walletOf(request),
                  [&](const ServerCard& card) { return card.id == request.integer("cardId"); });
    return kind == "delete" ? statusBody("SUCCESS") : R"({"message":"no"})";
  }
  if (kind == "confirm") {
    for (ServerCard& card : walletOf(request)) {
      if (card.id == request.integer("cardId")) {
        card.more = R"(,"method":"SECURE_CODE","validated":true)";
      }
    }
    return R"({"message":"Your card has been added"})";
  }
  if (kind == "page") {
    const int number = ++issued_;
    return fmt::format(R"({{"cardSupported":{},"secureCodeId":{},"url":"https://issuer.example",)"
                       R"("payload":"PAGE-{}-"{}}})",
                       how != "unsupported", number, number,
                       how == "error" ? R"(,"error":"no")" : "");
  }
  if (kind == "purchase" || kind == "authenticate") {
    return fmt::format(R"({{"status":"{}","transactionId":{}}})", how == "ok" ? "SUCCESS" : "ERROR",
                       ++issued_);
  }
  const std::map<std::string, std::string> statuses{
      {"ok", "SUCCESS"}, {"failed", "FAILED"}, {"relink", "RELINK"}};
  const auto status = statuses.find(how);
  return status == statuses.end() ? "{}" : statusBody(status->second);
}

}  // namespace orlix::test
