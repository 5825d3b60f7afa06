#pragma once

#include <memory>
#include <optional>
#include <string>

#include "orlixkit/platform/Bytes.h"
#include "orlixkit/platform/Secret.h"
#include "orlixkit/security/PersistableObject.h"
#include "orlixkit/security/StorageInterface.h"

namespace orlix {

/// The values of the live session, and the way of the persistent record through encryption to its
/// storage.
///
/// Used from one background task at a time; it has no lock of its own. The session values live in
/// memory only and are replaced at every session establishment.
class DataStore {
 public:
  std::optional<std::string> sessionId;
  std::optional<std::string> sessionId2;
  std::optional<SecretBytes> pinKey;  ///< 16 bytes, two-key triple DES
  /// The record in memory. Set by whoever loads or makes it, never by this class.
  std::shared_ptr<PersistableObject> po;

  /// `key`: the 16 bytes of the device scheme, from `PinBlock::nibblePackSerial`.
  explicit DataStore(SecretBytes key);

  /// The stored record, also when it is left out of `po`. None when nothing is stored, and, with a
  /// line in the log, when the blob is foreign, damaged or under another key; it stays as it is.
  /// What the storage throws passes through.
  std::shared_ptr<PersistableObject> load(StorageInterface& storage) const;

  /// Encrypts the record with the device scheme and stores it. What the storage throws passes
  /// through.
  void save(StorageInterface& storage, const PersistableObject& record) const;

  /// Deregistration: stores the record (or nothing, when there is none) under the legacy scheme,
  /// after which `load` finds nothing. `po` stays as it is.
  void reset(StorageInterface& storage) const;

  /// A fresh random device serial of 32 upper-case hex digits. The storage is not used: keeping the
  /// serial is the caller's business.
  /// Throws std::runtime_error when the system has no random bytes to give.
  static std::string assignSerial(StorageInterface& storage);

  /// The steps of the above. Device scheme:
  std::optional<Bytes> _encrypt(ByteView data) const;
  std::optional<SecretBytes> _decrypt(ByteView data) const;
  /// Legacy scheme, with a fixed key. Nothing reads a legacy record back in the library.
  static std::optional<Bytes> _encryptOld(ByteView data);
  static std::optional<SecretBytes> _decryptOld(ByteView data);
  static SecretBytes _readFromVariables(const PersistableObject* record);
  /// Throws std::invalid_argument for no data (the decryption failed) and for a foreign archive.
  static std::shared_ptr<PersistableObject> _loadToVariables(
      const std::optional<SecretBytes>& data);

 private:
  SecretBytes encryptKey_;
};

}  // namespace orlix
