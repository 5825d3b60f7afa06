// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Bytes.h"
#include "orlixkit/ports/Secret.h"
#include "orlixkit/security/PersistableObject.h"
#include "orlixkit/security/StorageInterface.h"

namespace orlix {

/// Holds the values of the current session, and encrypts the persistent record for its storage.
///
/// Not synchronised: one thread at a time. Session values are kept in memory only and replaced
/// whenever a session is opened.
class DataStore {
 public:
  std::optional<std::string> sessionId;
  std::optional<std::string> sessionId2;
  std::optional<SecretBytes> pinKey;  ///< 16 bytes, two-key triple DES
  /// The record in memory. Set by the caller, never by this class.
  std::shared_ptr<PersistableObject> po;

  /// `key`: the 16 bytes of the device scheme, from `PinBlock::nibblePackSerial`.
  explicit DataStore(SecretBytes key);

  /// Returns the stored record without changing `po`. Absent when nothing is stored and, with a log
  /// line, when the blob is foreign, damaged or encrypted under another key; the blob is left
  /// unchanged. Exceptions of the storage propagate.
  std::shared_ptr<PersistableObject> load(StorageInterface& storage) const;

  /// Encrypts the record with the device scheme and stores it. Exceptions of the storage propagate.
  void save(StorageInterface& storage, const PersistableObject& record) const;

  /// Deregisters: stores the record (or an archive of nothing) under the legacy scheme, after which
  /// `load` finds nothing. `po` is unchanged.
  void reset(StorageInterface& storage) const;

  /// A fresh random device serial of 32 upper-case hex digits. Does not use the storage: the caller
  /// keeps the serial.
  /// Throws std::runtime_error when the system provides no random bytes.
  static std::string assignSerial(StorageInterface& storage);

  /// The steps of the above. Device scheme:
  std::optional<Bytes> _encrypt(ByteView data) const;
  std::optional<SecretBytes> _decrypt(ByteView data) const;
  /// Legacy scheme, with a fixed key. The library never reads a legacy record back.
  static std::optional<Bytes> _encryptOld(ByteView data);
  static std::optional<SecretBytes> _decryptOld(ByteView data);
  static SecretBytes _readFromVariables(const PersistableObject* record);
  /// Throws std::invalid_argument for absent data (the decryption failed) and for a foreign
  /// archive.
  static std::shared_ptr<PersistableObject> _loadToVariables(
      const std::optional<SecretBytes>& data);

 private:
  SecretBytes encryptKey_;
};

}  // namespace orlix
