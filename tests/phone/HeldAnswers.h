#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/phone/Phone.h"

namespace orlix::test {

/// Holds the wallet's answers back until a test lets them go, in an order of its choice.
class HeldAnswers {
 public:
  explicit HeldAnswers(Phone& phone) : world_(phone.host.world()), wallet_(phone.wallet) {
    phone.host.connections().on("",
                                [this](const RecordedRequest& request) { return hold(request); });
  }

  /// From now on; until then, and once all have been let go, answers come at once.
  void begin() { holding_ = true; }
  std::size_t count() const { return held_.size(); }
  /// Path of the request that has waited longest, or shortest; empty when there is none.
  std::string path(bool newest = false) const {
    return held_.empty() ? "" : (newest ? held_.back() : held_.front())->path;
  }
  /// The requests that wait now belong to a flow that has been replaced.
  void replaced() {
    for (const auto& held : held_) {
      held->isStale = true;
    }
  }
  bool isStale(bool newest) const { return (newest ? held_.back() : held_.front())->isStale; }
  void letGo(bool newest = false, std::optional<ServerReply> instead = {}) {
    const auto chosen = newest ? held_.end() - 1 : held_.begin();
    const std::shared_ptr<Held> held = *chosen;
    held_.erase(chosen);
    held->instead = std::move(instead);
    held->isFree = true;
    world_.wake(held.get());
  }
  void letAllGo() {
    holding_ = false;
    while (!held_.empty()) {
      letGo();
    }
  }

 private:
  struct Held {
    std::string path;
    std::optional<ServerReply> instead;
    bool isFree = false;
    bool isStale = false;
  };

  ServerReply hold(const RecordedRequest& request) {
    const auto held = std::make_shared<Held>();
    held->path = request.path();
    if (holding_) {
      held_.push_back(held);
      while (!held->isFree &&
             world_.wait("holds an answer", held.get(), kNever) != Wake::shutDown) {
      }
    }
    return held->instead ? *held->instead : wallet_.answer(request);
  }

  VirtualWorld& world_;
  FakeWallet& wallet_;
  bool holding_ = false;
  std::vector<std::shared_ptr<Held>> held_;
};

}  // namespace orlix::test
