// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/protocol/NetworkInterface.h"
#include "orlixkit/protocol/OpeningTurn.h"
#include "orlixkit/protocol/Platform.h"
#include "orlixkit/protocol/RequestScope.h"
#include "orlixkit/protocol/Serial.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/StorageInterface.h"

namespace orlix {

class AnswerReader;

/// Settings for opening a session: the server's address and the data of the device.
struct WalletClientSettings {
  std::string url;   ///< base address without a trailing slash
  std::string node;  ///< name of the calling system, last segment of most paths
  Serial serial;
  std::shared_ptr<StorageInterface> storage;
  std::shared_ptr<NetworkInterface> network;
  std::string appVersion;  ///< the device text
  Platform platform;
  std::string timeZone;  ///< such as "+02:00"
};

/// The client's session with the wallet server: holds its tokens and PIN key, opens and renews it.
/// The sessions of a client are numbered, so that two requests refused at the same time renew the
/// session once.
///
/// Thread: any. All operations but `values`, `serial` and `reset` may block for an exchange. Only
/// one caller at a time opens a session.
class WalletSession {
 public:
  /// The session values at one moment.
  struct Values {
    DataStore store;
    std::uint64_t number;  ///< 0 before the first session

    bool isOpen() const { return store.sessionId || store.sessionId2; }
  };

  /// Throws std::invalid_argument when storage or transport is null.
  explicit WalletSession(WalletClientSettings settings);

  const std::string& url() const { return settings_.url; }
  const std::string& node() const { return settings_.node; }
  Values values() const;
  Serial serial() const;

  /// Opens a new session in any case. Throws as `KCVelloConnection::establishSession` does.
  void open(const RequestScope& scope);
  /// The current session; opens one first when both tokens are absent.
  Values ensureOpen(const RequestScope& scope);
  /// Replaces session `number`, in which the server refused a request, unless it has been replaced
  /// already. True when this call has opened the new one.
  bool renew(std::uint64_t number, const RequestScope& scope);

  /// Posts to a path below the base address with the tokens of `values`. Marks the scope's
  /// departure, if any.
  NetworkResult post(const Values& values, const std::string& path,
                     const std::optional<SecretBytes>& body, const RequestScope& scope) const;

  /// Stores the device's token, encrypted, unless the scope is over or the credentials have been
  /// wiped since `wipes` was read. Exceptions of the storage propagate.
  void storeToken(const std::optional<std::string>& token, std::uint64_t wipes,
                  const RequestScope& scope);
  /// Makes the stored record unreadable for this device.
  void reset(StorageInterface& storage) const;

 private:
  void openInTurn(const RequestScope& scope);
  std::string serialText();
  void keep(const AnswerReader& answer, const std::string& request);
  static void judge(const AnswerReader& answer, const std::string& request);

  WalletClientSettings settings_;
  OpeningTurn opening_;
  mutable std::mutex lock_;  ///< guards the two below and `settings_.serial`; not held in exchanges
  DataStore store_;
  std::uint64_t number_ = 0;
};

}  // namespace orlix
