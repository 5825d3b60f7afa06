// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "sandbox/Json.h"
#include "sandbox/Moment.h"

namespace orlix::sandbox {

/// The SMS that were "sent". Thread: the caller locks.
class Messages {
 public:
  struct Message {
    std::string msisdn;
    std::string code;
    std::string device;  ///< Serial of the device that asked for it.
    Moment sent{};
  };

  void add(Message message) {
    sent_.push_back(std::move(message));
    ++count_;
    if (sent_.size() > kKept) sent_.pop_front();
  }

  /// How many were ever sent.
  std::int64_t count() const { return count_; }

  /// The latest first, each with its number from 1.
  json::array list() const {
    json::array out;
    std::int64_t number = count_;
    for (auto message = sent_.rbegin(); message != sent_.rend(); ++message) {
      out.push_back(json::object{{"number", number--},
                                 {"time", message->sent.time_since_epoch().count()},
                                 {"msisdn", message->msisdn},
                                 {"code", message->code},
                                 {"device", message->device}});
    }
    return out;
  }

 private:
  static constexpr size_t kKept = 1000;  ///< The oldest are dropped.

  std::deque<Message> sent_;
  std::int64_t count_ = 0;
};

}  // namespace orlix::sandbox
