// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "sandbox/Bounds.h"
#include "sandbox/Codes.h"
#include "sandbox/Json.h"
#include "sandbox/Moment.h"
#include "sandbox/SeenRequests.h"

namespace orlix::sandbox {

/// A payment that was made, and how far the polling for its receipt has come.
struct Payment {
  std::int64_t id = 0;
  std::string wallet;
  std::string amount;
  std::string currency = "R";
  std::string merchant;
  ReceiptPlan receipt;
  int polls = 0;
  bool held = false;  ///< Polls find no status until it is settled.

  /// Whether a poll finds the receipt now.
  bool hasReceipt() const {
    return !held && receipt.pollsBefore >= 0 && polls > receipt.pollsBefore;
  }
};

/// Every purchase body that reached the server, whatever became of it. What is secret in it is
/// replaced by "***" before it is kept.
struct ReceivedPurchase {
  std::int64_t request = 0;  ///< Number among the requests seen.
  Moment arrived{};
  Origin origin{};
  std::string path{};
  size_t bytes = 0;       ///< Of the body as it came.
  json::value body{};     ///< Null when it is no JSON object, or too long to be kept.
  int status = 0;         ///< HTTP status of the answer.
  std::string outcome{};  ///< "status" of the answer, when it had one.
  std::int64_t transactionId = 0;
};

/// Payments and the account of the purchase requests behind them. Thread: the caller locks.
class Purchases {
 public:
  /// Counts a purchase request that has arrived; returns its place in the account.
  size_t received(ReceivedPurchase purchase);
  void decided(size_t place, int status, std::string_view answer);
  /// The answer of one of the device's purchases has been sent, or never will be.
  void ended(const std::string& device);
  void clearAccount();
  json::object account() const;
  std::int64_t receivedCount() const { return receivedCount_; }

  /// Makes a payment; returns its transaction identifier.
  std::int64_t pay(Payment payment, bool bigReference);
  Payment* find(std::int64_t id);
  std::int64_t paymentCount() const { return paymentCount_; }

  /// Whether payments that are made from now on wait until they are settled. Those that wait
  /// already go on waiting.
  void hold(bool held) { holds_ = held; }
  bool holds() const { return holds_; }
  /// The next poll finds a receipt of this status; false when the payment is not known.
  bool settle(std::int64_t id, const std::string& status);
  /// The latest purchases with their payments and receipts, the latest first.
  json::array payments() const;
  std::int64_t heldCount() const;

  /// How often this wallet has bought by this code, this time included.
  int countTry(const std::string& wallet, const std::string& code);

 private:
  static constexpr size_t kKept = kMostKept;              ///< Of each; the oldest are dropped.
  static constexpr size_t kBytesKept = size_t{16} << 20;  ///< Of bodies; so are the oldest.
  static constexpr size_t kListed = 500;                  ///< By `payments`, at most.

  void dropOldest();

  struct DeviceCount {
    std::int64_t received = 0;
    std::int64_t underWay = 0;
    std::int64_t mostUnderWay = 0;
  };

  std::map<std::string, DeviceCount> devices_;
  std::deque<ReceivedPurchase> received_;
  size_t bytes_ = 0;    ///< Of their bodies.
  size_t dropped_ = 0;  ///< Entries that are gone; places count on from there.
  std::int64_t receivedCount_ = 0;
  std::int64_t paymentCount_ = 0;
  bool holds_ = false;
  std::map<std::int64_t, Payment> payments_;
  std::map<std::pair<std::string, std::string>, int> tries_;
  std::int64_t nextId_ = 7'000'000'001;
  std::int64_t nextBigId_ = 9'007'199'254'740'993;  // 2^53 + 1: lost by a reader that uses doubles.
};

/// `body` with CVV, PIN block and PaRes replaced by "***".
json::value withoutSecrets(std::string_view body);

}  // namespace orlix::sandbox
