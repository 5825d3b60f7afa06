// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Database.h"

namespace orlix::sandbox {

/// A device that has opened a session, identified by its serial.
struct Device {
  std::string serial;
  std::string token{};      ///< Its wallet token; empty when it has none.
  std::string wallet{};     ///< The wallet that the token opens.
  std::string nextStart{};  ///< What its next session start is answered with, once; see Codes.
};

/// A code "sent" by SMS and waiting to be typed.
struct PendingSms {
  std::string msisdn;
  std::string code;
  std::int64_t wrongTries = 0;
};

/// Devices, their tokens and their pending SMS codes. Thread: the caller locks.
class Devices {
 public:
  explicit Devices(Database& database);

  std::optional<Device> find(const std::string& serial) const;
  /// The latest `kMostKept` devices are kept.
  void put(const Device& device);
  /// With its pending SMS code. Its wallet stays.
  void remove(const std::string& serial);
  /// The latest devices, at most `most` of them.
  std::vector<Device> list(std::int64_t most) const;

  std::optional<PendingSms> pendingSms(const std::string& serial) const;
  void putSms(const std::string& serial, const PendingSms& sms);
  void dropSms(const std::string& serial);

 private:
  Database& database_;
};

}  // namespace orlix::sandbox
