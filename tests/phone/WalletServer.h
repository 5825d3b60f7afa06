// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <boost/json.hpp>

#include "orlixkit/ports/HttpClient.h"

namespace orlix::test {

/// A request as the wallet server receives it, until it is answered.
struct HeldRequest {
  std::size_t number = 0;  ///< in the order of sending, from 1
  std::string kind;        ///< "purchase", "lookup", …: see `answersTo`
  std::int64_t system = 0;
  std::string session;  ///< token of the session it was sent in; empty for the opening of one
  boost::json::object body;
  std::weak_ptr<void> asker;  ///< for the test: the screen that was shown when it was sent
  int flow = 0;               ///< for the test: the entry call whose session it belongs to
  bool late = false;          ///< for the test: it follows from an answer to a screen that was left

  std::string text(const char* key) const;
  std::int64_t integer(const char* key) const;
};

/// A card of a wallet; its hint is its number.
struct ServerCard {
  std::int64_t id = 0;
  std::string more;  ///< its other fields as JSON, each after a comma
};

/// A session that the server has opened.
struct ServerSession {
  std::string libKey;
  std::int64_t system = 0;
  std::string deviceToken;
  std::string pinKey;  ///< base64
};

/// The transport of a walk: a wallet server that knows device tokens, wallets and sessions, and
/// holds every answer back until the walk releases it. Runs in virtual time without a thread.
class WalletServer : public HttpClient {
 public:
  using Request = std::shared_ptr<HeldRequest>;

  /// The callers wait on `clock`. To be called before the first request.
  void setClock(std::shared_ptr<Clock> clock) { clock_ = std::move(clock); }

  /// Runs when a request is sent, on the sender's thread. Returns how to answer at once, or nothing
  /// to hold the answer back.
  std::function<std::optional<std::string>(HeldRequest&)> onSent;
  /// Runs when a device token has been issued for that request.
  std::function<void(const HeldRequest&, const std::string& token)> onActivated;

  /// Runs when the client gives an exchange up.
  std::function<void(const HeldRequest&)> onCancelled;

  /// Unanswered requests, in the order of sending.
  const std::vector<Request>& held() const { return held_; }
  std::size_t sent() const { return sent_; }
  /// The answers that the server knows for this kind of request, the usual one first.
  static const std::vector<std::string>& answersTo(const std::string& kind);
  void answer(const Request& request, const std::string& how);
  /// Refused with 403 whatever the answer was to be.
  bool isForgotten(const HeldRequest& request) const;

  const ServerSession* session(const std::string& token) const;
  /// The newest session that was opened with this library key; empty when there is none.
  std::string newestSession(const std::string& libKey) const;
  /// Keep the newest session only: what is sent in another one is refused with 403.
  void keepOneSession() { oneSession_ = true; }
  /// Treat a device without a token as enrolled.
  void knowDevice() { knowsDevice_ = true; }

  HttpResult perform(const HttpRequest& request, HttpDelegate& delegate) override;
  void close() override;

 private:
  struct Exchange;
  using Wallet = std::vector<ServerCard>;

  void receive(const HttpRequest& sent, Exchange& exchange);
  void drop(const Request& request);
  Wallet& walletOf(const HeldRequest& request);
  std::string bodyOf(const HeldRequest& request, const std::string& how);
  std::string openSession(const HeldRequest& request, const std::string& how);
  std::string cardsOf(const HeldRequest& request);

  std::vector<Request> held_;
  std::map<const HeldRequest*, Exchange*> exchanges_;  ///< of those that are held
  std::shared_ptr<Clock> clock_;
  std::map<std::string, ServerSession> sessions_;
  std::string newestSession_;
  std::map<std::string, std::string> newestByKey_;
  std::map<std::string, Wallet> wallets_;  ///< by device token
  std::size_t sent_ = 0;
  int issued_ = 0;  ///< numbers given to sessions, tokens, cards, transactions, pages
  bool closed_ = false;
  bool oneSession_ = false;
  bool knowsDevice_ = false;
};

}  // namespace orlix::test
