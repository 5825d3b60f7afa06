// SPDX-License-Identifier: Apache-2.0

// The record that is kept on the device. An input is a blob, an archive, and damage to a blob.

#include <memory>
#include <optional>

#include "fuzz/Target.h"
#include "orlixkit/ports/Utf8.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/PinBlock.h"

namespace orlix::fuzz {

namespace {

class Blob : public StorageInterface {
 public:
  explicit Blob(Bytes blob = {}) : stored(std::move(blob)) {}
  Bytes loadData() override { return stored; }
  void saveData(const std::optional<Bytes>& data) override {
    check(data && !data->empty(), "what is stored has been encrypted");
    stored = *data;
    ++saves;
  }

  Bytes stored;
  int saves = 0;
};

DataStore newStore() {
  return DataStore(PinBlock::nibblePackSerial("6B29FC40-CA47-1067-B31D-00DD010662DA"));
}

std::shared_ptr<PersistableObject> loaded(const DataStore& store, Blob& blob) {
  const Bytes before = blob.stored;
  const int saves = blob.saves;
  const auto record = store.load(blob);
  check(blob.saves == saves && blob.stored == before, "a blob that is read stays in place");
  check(!record || (record->ssToken && record->uid), "a record that is read is whole");
  return record;
}

bool same(const std::shared_ptr<PersistableObject>& one, const PersistableObject& other) {
  return one && one->ssToken == other.ssToken && one->uid == other.uid;
}

/// Whatever was read is written and read again, and gone once the device is deregistered.
void survivesAndEnds(const DataStore& store, const PersistableObject& record) {
  Blob blob;
  store.save(blob, record);
  check(same(loaded(store, blob), record), "a saved record comes back as it was");
  store.reset(blob);
  check(!loaded(store, blob) && !blob.stored.empty(), "after a reset nothing is found");
}

}  // namespace

void store(ByteView input) {
  const DataStore store = newStore();
  Blob foreign(Bytes(input.begin(), input.end()));
  if (const auto record = loaded(store, foreign)) {
    survivesAndEnds(store, *record);
  }
  const std::optional<Bytes> encrypted = store._encrypt(input);
  check(encrypted.has_value(), "the cipher takes data of any length");
  Blob archived(*encrypted);
  if (const auto record = loaded(store, archived)) {
    survivesAndEnds(store, *record);
  }

  std::string_view rest = textOf(input);
  const std::string_view token = takeLine(rest);
  const PersistableObject record{std::string(token), std::string(rest)};
  // The server's texts have passed the JSON decoder by the time they get here.
  if (!isUtf8(token) || !isUtf8(rest)) {
    return;
  }
  survivesAndEnds(store, record);
  Blob damaged;
  store.save(damaged, record);
  for (std::size_t i = 0; i < input.size(); ++i) {
    damaged.stored[(input[i] + i) % damaged.stored.size()] ^= input[i];
  }
  loaded(store, damaged);
}

}  // namespace orlix::fuzz
