// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Sessions.h"

#include <algorithm>

#include <fmt/format.h>

#include "sandbox/Random.h"

namespace orlix::sandbox {

namespace {

std::string keyOf(std::string_view token1, std::string_view token2) {
  return fmt::format("{} {}", token1, token2);
}

}  // namespace

const Session& Sessions::open(std::string_view deviceSerial, std::string_view wallet) {
  size_t ofDevice = 1;
  sessions_.remove_if([&](const Session& session) {
    return session.deviceSerial == deviceSerial && ++ofDevice > keptForEachDevice_;
  });
  sessions_.push_front({.token1 = randomHex(16),
                        .token2 = randomHex(16),
                        .number = ++openedCount_,
                        .deviceSerial = std::string(deviceSerial),
                        .wallet = std::string(wallet),
                        .pinKey = randomBytes(16)});
  if (sessions_.size() > kKept) sessions_.pop_back();
  remember(sessions_.front());
  return sessions_.front();
}

void Sessions::remember(const Session& session) {
  openedTokens_.push_back(keyOf(session.token1, session.token2));
  origins_[openedTokens_.back()] = {.session = session.number, .device = session.deviceSerial};
  if (openedTokens_.size() > kKept) {
    origins_.erase(openedTokens_.front());
    openedTokens_.pop_front();
  }
}

Origin Sessions::originOf(std::string_view token1, std::string_view token2) const {
  const auto found = origins_.find(keyOf(token1, token2));
  return found == origins_.end() ? Origin{} : found->second;
}

Session* Sessions::find(std::string_view token1, std::string_view token2) {
  const auto found = std::find_if(sessions_.begin(), sessions_.end(), [&](const Session& session) {
    return session.token1 == token1 && session.token2 == token2;
  });
  return found == sessions_.end() ? nullptr : &*found;
}

void Sessions::forget(std::string_view token1) {
  sessions_.remove_if([&](const Session& session) { return session.token1 == token1; });
}

void Sessions::forgetDevice(std::string_view serial) {
  sessions_.remove_if([&](const Session& session) { return session.deviceSerial == serial; });
}

void Sessions::forgetAll() { sessions_.clear(); }

}  // namespace orlix::sandbox
