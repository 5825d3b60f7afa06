// SPDX-License-Identifier: Apache-2.0

// The hot paths of a checkout, each run the given number of times, independent of the machine: no
// server, no disk, no real time. `scripts/budget` counts their instructions.
//
// usage: orlix-hot-paths NAME TIMES      orlix-hot-paths --names

#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

#include "orlixkit/records/MTCardList.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/PinBlock.h"
#include "orlixkit/security/StorageInterface.h"
#include "tests/phone/Phone.h"

namespace {

using namespace orlix;

void expect(bool held, const char* what) {
  if (!held) {
    throw std::runtime_error(what);
  }
}

void pinBlock() {
  const SecretBytes key(16, 0x3A);
  expect(PinBlock::createPINBlock(key, SecretString("1234"), 0).has_value(), "no PIN block");
}

void cardList() {
  static const std::string text = [] {
    std::string cards;
    for (int i = 0; i < 100; ++i) {
      cards += fmt::format(
          R"({}{{"cardId":{},"cardHint":"{:04}","needCvv":false,"cardType":"visa","method":"AMT"}})",
          cards.empty() ? "" : ",", i, i);
    }
    return R"({"cards":[)" + cards + "]}";
  }();
  const ByteView bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  expect(MTCardList().parseFromData(bytes).cardsArray_Count == 100, "cards are missing");
}

struct InMemory : StorageInterface {
  Bytes kept;
  Bytes loadData() override { return kept; }
  void saveData(const std::optional<Bytes>& data) override { kept = data.value_or(Bytes()); }
};

void recordSavedAndLoaded() {
  InMemory storage;
  const DataStore store(SecretBytes(16, 0x11));
  PersistableObject record;
  record.ssToken = "wallet-token";
  store.save(storage, record);
  expect(store.load(storage) != nullptr, "the record was not read back");
}

void checkout() {
  test::Phone phone;
  phone.showPaymentScreen();
  phone.pay();
  phone.runUntilOutcome();
  expect(phone.app->heard.front().starts_with("succeeded"), "not paid");
}

void receiptThatNeverComes() {
  test::Phone phone;
  phone.wallet.receipt = "{}";
  phone.showPaymentScreen();
  phone.pay();
  phone.host.runUntil([&] { return !phone.alert().empty(); });
}

const std::map<std::string, std::function<void()>> paths = {
    {"pin-block", pinBlock},
    {"card-list", cardList},
    {"record-saved-and-loaded", recordSavedAndLoaded},
    {"checkout", checkout},
    {"receipt-that-never-comes", receiptThatNeverComes},
};

}  // namespace

int main(int count, char** values) {
  try {
    if (count == 2 && std::string(values[1]) == "--names") {
      for (const auto& [name, path] : paths) {
        fmt::print("{}\n", name);
      }
      return 0;
    }
    if (count != 3 || !paths.contains(values[1])) {
      fmt::print(stderr, "usage: orlix-hot-paths NAME TIMES | --names\n");
      return 2;
    }
    for (int i = std::stoi(values[2]); i > 0; --i) {
      paths.at(values[1])();
    }
    return 0;
  } catch (const std::exception& failure) {
    fmt::print(stderr, "orlix-hot-paths: {}\n", failure.what());
    return 1;
  }
}
