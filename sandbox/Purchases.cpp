// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Purchases.h"

#include <algorithm>
#include <utility>

namespace orlix::sandbox {

namespace {

void hide(json::object& object, std::string_view key) {
  if (json::value* value = object.if_contains({key.data(), key.size()})) {
    if (!value->is_string() || !value->get_string().empty()) *value = "***";
  }
}

}  // namespace

json::value withoutSecrets(std::string_view body) {
  auto object = parseObject(body);
  if (!object) return nullptr;
  hide(*object, "cvv");
  if (auto* pin = object->if_contains("pinData"); pin != nullptr && pin->is_object()) {
    hide(pin->get_object(), "pinBlock");
  }
  if (auto* code = object->if_contains("secureCodeData"); code != nullptr && code->is_object()) {
    hide(code->get_object(), "PaRes");
  }
  return std::move(*object);
}

size_t Purchases::received(ReceivedPurchase purchase) {
  if (purchase.bytes > kLongestKeptBody) {
    purchase.body = nullptr;
    purchase.bytes = 0;
  }
  DeviceCount& device = devices_[purchase.origin.device];
  ++device.received;
  ++device.underWay;
  device.mostUnderWay = std::max(device.mostUnderWay, device.underWay);
  bytes_ += purchase.bytes;
  received_.push_back(std::move(purchase));
  ++receivedCount_;
  dropOldest();
  return dropped_ + received_.size() - 1;
}

void Purchases::dropOldest() {
  while (received_.size() > kKept || bytes_ > kBytesKept) {
    bytes_ -= received_.front().bytes;
    received_.pop_front();
    ++dropped_;
  }
  // Any but those that are to be counted down again.
  const auto idle = [](const auto& entry) { return entry.second.underWay == 0; };
  if (devices_.size() > kKept) {
    const auto found = std::find_if(devices_.begin(), devices_.end(), idle);
    if (found != devices_.end()) devices_.erase(found);
  }
  if (tries_.size() > kKept) tries_.erase(tries_.begin());
}

void Purchases::decided(size_t place, int status, std::string_view answer) {
  if (place < dropped_) return;  // The account was cleared meanwhile.
  ReceivedPurchase& entry = received_.at(place - dropped_);
  entry.status = status;
  if (const auto object = parseObject(answer)) {
    entry.outcome = textOf(*object, "status");
    entry.transactionId = integerOf(*object, "transactionId");
  }
}

void Purchases::ended(const std::string& device) { --devices_[device].underWay; }

void Purchases::clearAccount() {
  for (auto& [name, device] : devices_) {
    device.received = 0;
    device.mostUnderWay = device.underWay;
  }
  dropped_ += received_.size();
  received_.clear();
  bytes_ = 0;
  receivedCount_ = 0;
  paymentCount_ = 0;
}

json::object Purchases::account() const {
  json::array list;
  for (const ReceivedPurchase& entry : received_) {
    list.push_back(json::object{{"request", entry.request},
                                {"session", entry.origin.session},
                                {"device", entry.origin.device},
                                {"path", entry.path},
                                {"body", entry.body},
                                {"status", entry.status},
                                {"outcome", entry.outcome},
                                {"transactionId", entry.transactionId}});
  }
  json::array devices;
  for (const auto& [name, device] : devices_) {
    devices.push_back(json::object{{"device", name},
                                   {"received", device.received},
                                   {"underWay", device.underWay},
                                   {"mostUnderWay", device.mostUnderWay}});
  }
  return {{"received", receivedCount_},
          {"paid", paymentCount_},
          {"devices", std::move(devices)},
          {"purchases", std::move(list)}};
}

std::int64_t Purchases::pay(Payment payment, bool bigReference) {
  payment.held = holds_;
  payment.id = bigReference ? nextBigId_ : nextId_;
  // Odd steps, so that rounding a big identifier to a double always shows.
  (bigReference ? nextBigId_ : nextId_) += bigReference ? 2 : 1;
  const std::int64_t id = payment.id;
  payments_.emplace(id, std::move(payment));
  ++paymentCount_;
  if (payments_.size() > kKept) payments_.erase(payments_.begin());
  return id;
}

Payment* Purchases::find(std::int64_t id) {
  const auto found = payments_.find(id);
  return found == payments_.end() ? nullptr : &found->second;
}

bool Purchases::settle(std::int64_t id, const std::string& status) {
  Payment* payment = find(id);
  if (payment == nullptr) return false;
  payment->held = false;
  payment->receipt = {.status = status};
  return true;
}

std::int64_t Purchases::heldCount() const {
  return std::count_if(payments_.begin(), payments_.end(),
                       [](const auto& entry) { return entry.second.held; });
}

json::array Purchases::payments() const {
  json::array list;
  for (auto entry = received_.rbegin(); entry != received_.rend() && list.size() < kListed;
       ++entry) {
    json::object row{{"request", entry->request},
                     {"time", entry->arrived.time_since_epoch().count()},
                     {"device", entry->origin.device},
                     {"path", entry->path},
                     {"status", entry->status},
                     {"outcome", entry->outcome},
                     {"transactionId", std::to_string(entry->transactionId)}};
    if (const json::object* body = entry->body.if_object()) {
      row["code"] = textOf(*body, "code");
      row["amount"] = textOf(*body, "amount");
    }
    const auto payment = payments_.find(entry->transactionId);
    if (payment != payments_.end()) {
      const Payment& paid = payment->second;
      row["merchant"] = paid.merchant;
      row["amount"] = paid.amount;
      row["currency"] = paid.currency;
      row["wallet"] = paid.wallet;
      row["polls"] = paid.polls;
      row["held"] = paid.held;
      row["receipt"] = paid.hasReceipt() ? paid.receipt.status : "";
      row["receiptPlan"] = paid.receipt.pollsBefore < 0 ? "" : paid.receipt.status;
    }
    list.push_back(std::move(row));
  }
  return list;
}

int Purchases::countTry(const std::string& wallet, const std::string& code) {
  return ++tries_[{wallet, code}];
}

}  // namespace orlix::sandbox
