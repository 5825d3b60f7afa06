#include "sandbox/Sessions.h"

#include <algorithm>

#include "sandbox/Random.h"

namespace orlix::sandbox {

const Session& Sessions::open(std::string_view deviceSerial, std::string_view wallet) {
  size_t kept = 1;
  sessions_.remove_if([&](const Session& session) {
    return session.deviceSerial == deviceSerial && ++kept > keptForEachDevice_;
  });
  ++openedCount_;
  sessions_.push_front({.token1 = randomHex(16),
                        .token2 = randomHex(16),
                        .deviceSerial = std::string(deviceSerial),
                        .wallet = std::string(wallet),
                        .pinKey = randomBytes(16)});
  return sessions_.front();
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

void Sessions::forgetAll() { sessions_.clear(); }

}  // namespace orlix::sandbox
