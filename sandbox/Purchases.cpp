#include "sandbox/Purchases.h"

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

size_t Purchases::received(std::string_view path, std::string_view body) {
  received_.push_back({.path = std::string(path), .body = withoutSecrets(body)});
  ++receivedCount_;
  if (received_.size() > kept) {
    received_.pop_front();
    ++dropped_;
  }
  return dropped_ + received_.size() - 1;
}

void Purchases::answered(size_t place, int status, std::string_view answer) {
  if (place < dropped_) return;  // The account was cleared meanwhile.
  ReceivedPurchase& entry = received_.at(place - dropped_);
  entry.status = status;
  if (const auto object = parseObject(answer)) {
    entry.outcome = textOf(*object, "status");
    entry.transactionId = integerOf(*object, "transactionId");
  }
}

void Purchases::clearAccount() {
  dropped_ += received_.size();
  received_.clear();
  receivedCount_ = 0;
  paymentCount_ = 0;
}

json::object Purchases::account() const {
  json::array list;
  for (const ReceivedPurchase& entry : received_) {
    list.push_back(json::object{{"path", entry.path},
                                {"body", entry.body},
                                {"status", entry.status},
                                {"outcome", entry.outcome},
                                {"transactionId", entry.transactionId}});
  }
  return {{"received", receivedCount_}, {"paid", paymentCount_}, {"purchases", std::move(list)}};
}

std::int64_t Purchases::pay(Payment payment, bool bigReference) {
  payment.id = bigReference ? nextBigId_ : nextId_;
  // Odd steps, so that rounding a big identifier to a double always shows.
  (bigReference ? nextBigId_ : nextId_) += bigReference ? 2 : 1;
  const std::int64_t id = payment.id;
  payments_.emplace(id, std::move(payment));
  ++paymentCount_;
  if (payments_.size() > kept) payments_.erase(payments_.begin());
  return id;
}

Payment* Purchases::find(std::int64_t id) {
  const auto found = payments_.find(id);
  return found == payments_.end() ? nullptr : &found->second;
}

int Purchases::countTry(const std::string& wallet, const std::string& code) {
  return ++tries_[{wallet, code}];
}

}  // namespace orlix::sandbox
