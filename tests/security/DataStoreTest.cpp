// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include <gtest/gtest.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <sys/mman.h>

#include "orlixkit/security/AnswerMemory.h"
#include "orlixkit/security/CryptoModule.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/Hex.h"
#include "orlixkit/security/OMStorage.h"
#include "orlixkit/security/PinBlock.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix {

namespace {

SecretBytes deviceKey() { return SecretBytes(Hex::convert("000102030405060708090A0B0C0D0E0F")); }

class StoredRecord : public testing::Test {
 protected:
  std::optional<Bytes> stored() { return host.userDefaults()->dataForKey("live.data"); }
  /// Whether the record is absent, and the failures logged beside the storage's own lines.
  std::size_t failuresOfLoad(const DataStore& by) {
    host.log().clear();
    EXPECT_EQ(by.load(storage), nullptr);
    return host.log().lines().size() - host.log().count("OMStorage - ");
  }

  MemoryHost host;
  OMStorage storage{"live.data"};
  DataStore store{deviceKey()};
};

TEST_F(StoredRecord, ComesBackAsItWasUnderTheSameKey) {
  const PersistableObject record{.ssToken = "tok\"en\\ \xE2\x82\xAC\n", .uid = ""};
  store.save(storage, record);
  EXPECT_EQ(stored().value().size() % 16, 0U);
  EXPECT_FALSE(host.userDefaults()->holds("tok"));
  storage.saveData(std::nullopt);
  OMStorage("test.data").saveData(Bytes{3});
  const auto loaded = DataStore(deviceKey()).load(storage);
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(loaded->ssToken, record.ssToken);
  EXPECT_EQ(loaded->uid, "");
  EXPECT_EQ(store.po, nullptr) << "what is loaded is for the caller to keep";
}

// Devices hold records that were written before. Cipher, vector and archive must go on reading
// them.
TEST_F(StoredRecord, OfAnEarlierReleaseIsStillRead) {
  storage.saveData(Hex::convert(
      "0E3E7A0CDE10A7D779F4A633E4B66A847E7862CECE5169CCD0FBEB5BE1A6C89C9D188C3319E78992"
      "2FC0037010E557B78BB24337A38B58A85D5673A85EF247990FB9627470EF7EB7960618FF85C3188D"));
  const auto loaded = store.load(storage);
  ASSERT_NE(loaded, nullptr) << host.log().text();
  EXPECT_EQ(loaded->ssToken, "token-1");
  EXPECT_EQ(loaded->uid, "device-2");
}

TEST_F(StoredRecord, ThatCannotBeReadIsLoggedAndCountsAsAbsent) {
  EXPECT_EQ(failuresOfLoad(store), 0U) << "the first start is no failure";
  for (const char* archive :
       {"bplist00", "[1]", R"({"ssToken":"a","uid":"b"})",
        R"({"root":"OtherObject","ssToken":"a","uid":"b"})",
        R"({"root":1,"ssToken":"a","uid":"b"})", R"({"root":"PersistableObject","uid":"b"})",
        R"({"root":"PersistableObject","ssToken":"a"})",
        R"({"root":"PersistableObject","ssToken":null,"uid":"b"})",
        R"({"root":"PersistableObject","ssToken":"a","uid":7})",
        R"({"root":"PersistableObject","ssToken":"a","uid":)",
        R"({"root":"PersistableObject","ssToken":"a","uid":"b"}x)"}) {
    storage.saveData(store._encrypt(toBytes(archive)));
    const auto before = stored();
    EXPECT_EQ(failuresOfLoad(store), 1U) << archive;
    EXPECT_EQ(stored(), before) << archive;
  }
  for (const PersistableObject& incomplete :
       {PersistableObject{.ssToken = std::nullopt, .uid = ""},
        PersistableObject{.ssToken = "token", .uid = std::nullopt}}) {
    store.save(storage, incomplete);
    EXPECT_EQ(failuresOfLoad(store), 1U) << "a record that lacks a text cannot be loaded again";
  }
  const std::string huge(std::size_t{17} * 1024 * 1024, 'x');
  storage.saveData(store._encrypt(toBytes(R"({"root":")" + huge + "\"}")));
  EXPECT_EQ(failuresOfLoad(store), 1U) << "nor one that would take more memory than a record needs";
  host.userDefaults()->setFailing(true);
  EXPECT_THROW(store.reset(storage), StoreException) << "the storage's own failures pass";
}

TEST_F(StoredRecord, UnderAnyOtherBlobOrKeyIsLoggedAndCountsAsAbsent) {
  store.save(storage, PersistableObject{.ssToken = "token", .uid = "u"});
  const Bytes blob = stored().value();
  for (const Bytes& damaged :
       {Bytes(blob.begin(), blob.end() - 1), Bytes(blob.begin(), blob.end() - 16), Bytes{1},
        Bytes(16, 0), Bytes(4096, 0x5A)}) {
    storage.saveData(damaged);
    EXPECT_EQ(failuresOfLoad(store), 1U);
  }
  storage.saveData(blob);
  // Among 600 keys some give a padding that looks right; the archive has to notice those.
  for (int i = 1; i <= 600; ++i) {
    SecretBytes other = deviceKey();
    other.data()[0] ^= static_cast<std::uint8_t>(i & 0xFF);
    other.data()[1] ^= static_cast<std::uint8_t>(i >> 8);
    ASSERT_EQ(failuresOfLoad(DataStore(other)), 1U) << i;
    ASSERT_FALSE(host.log().contains("token"));
  }
}

TEST_F(StoredRecord, IsUnreadableAfterAResetAndStaysInTheStorage) {
  store.po = std::make_shared<PersistableObject>(PersistableObject{.ssToken = "t", .uid = "u"});
  store.save(storage, *store.po);
  store.reset(storage);
  EXPECT_EQ(store.load(storage), nullptr);
  EXPECT_EQ(store.po->ssToken, "t") << "the record in memory is left alone";
  const auto legacy = DataStore::_loadToVariables(DataStore::_decryptOld(stored().value()));
  ASSERT_NE(legacy, nullptr);
  EXPECT_EQ(legacy->ssToken, "t");

  store.save(storage, PersistableObject{.ssToken = "new", .uid = ""});
  EXPECT_EQ(store.load(storage)->ssToken, "new") << "a new activation brings it back";

  OMStorage empty("test.data");
  store.reset(empty);
  const auto archive = DataStore::_decryptOld(host.userDefaults()->dataForKey("test.data").value());
  EXPECT_EQ(std::string(archive->reveal().begin(), archive->reveal().end()), R"({"root":null})");
  EXPECT_EQ(DataStore::_loadToVariables(archive), nullptr);
}

TEST_F(StoredRecord, HasADeviceSerialOfThirtyTwoUpperCaseDigitsNewEachTime) {
  const std::string serial = DataStore::assignSerial(storage);
  EXPECT_EQ(serial.size(), 32U);
  EXPECT_EQ(serial.find_first_not_of("0123456789ABCDEF"), std::string::npos) << serial;
  EXPECT_NE(DataStore::assignSerial(storage), serial);
  EXPECT_FALSE(stored());
}

// In a process of its own, for OpenSSL looks its ciphers up once: a system in a restricted mode
// lacks some of them.
TEST(WithoutCiphers, NothingIsEncryptedOrDrawnAndNoErrorIsLeftBehind) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto check = [] {
    EVP_set_default_properties(nullptr, "provider=none");
    const bool encrypts = CryptoModule::aesEncrypt(deviceKey(), Bytes{1}) ||
                          CryptoModule::aesDecrypt(deviceKey(), Bytes(16, 0)) ||
                          PinBlock::createPINBlock(deviceKey(), SecretString("1234"), 0);
    const bool leavesError = ERR_peek_error() != 0;
    bool draws = true;
    try {
      OMStorage unused("live.data");
      DataStore::assignSerial(unused);
    } catch (const std::runtime_error&) {
      draws = false;
    }
    std::exit(encrypts || leavesError || draws ? 1 : 0);
  };
  EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

TEST_F(StoredRecord, ThatIsTooLargeToEncryptLeavesTheFormerOneInPlace) {
  store.save(storage, PersistableObject{.ssToken = "former", .uid = ""});
  // Address space only: the cipher counts in int, and looks at the size first.
  constexpr std::size_t kSize = std::size_t{1} << 31U;
  void* const pages =
      ::mmap(nullptr, kSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  storage.saveData(store._encrypt({static_cast<const std::uint8_t*>(pages), kSize}));
  ::munmap(pages, kSize);
  EXPECT_EQ(store.load(storage)->ssToken, "former");
}

TEST(AnswerMemory, IsLimitedByWhatWasHandedOutAndCountsItsRecordsApart) {
  AnswerMemory memory(100'000, 10);
  boost::json::memory_resource& resource = memory;
  EXPECT_THROW(resource.allocate(100'001), std::bad_alloc);
  for (std::size_t alignment = 1; alignment <= 64; alignment *= 2) {
    const auto place = reinterpret_cast<std::uintptr_t>(resource.allocate(10'000, alignment));
    EXPECT_EQ(place % alignment, 0U);
  }
  EXPECT_EQ(memory.used(), 70'000U);
  EXPECT_THROW(resource.allocate(30'001), std::bad_alloc);
  EXPECT_NE(resource.allocate(30'000), nullptr) << "a refusal takes nothing";
  EXPECT_TRUE(memory.countForRecords(10));
  EXPECT_FALSE(memory.countForRecords(1));
}

TEST(AesModule, PadsToWholeBlocksAndTakesSixteenBytesOfTheKey) {
  const SecretBytes key = deviceKey();
  SecretBytes longer = key;
  longer.append(Bytes{1, 2, 3});
  for (const std::size_t size : {0U, 1U, 15U, 16U, 17U, 5000U}) {
    const Bytes data(size, 0x41);
    const auto blob = CryptoModule::aesEncrypt(key, data);
    ASSERT_TRUE(blob);
    EXPECT_EQ(blob->size(), (size / 16 + 1) * 16);
    EXPECT_EQ(CryptoModule::aesEncrypt(longer, data), blob);
    const auto back = CryptoModule::aesDecrypt(key, *blob);
    ASSERT_TRUE(back);
    EXPECT_TRUE(*back == SecretBytes(data));
  }
  EXPECT_EQ(CryptoModule::aesEncrypt(SecretBytes(3, 0), Bytes{1}),
            CryptoModule::aesEncrypt(SecretBytes(16, 0), Bytes{1}));
  EXPECT_FALSE(CryptoModule::aesDecrypt(key, Bytes(15, 0)));
  EXPECT_FALSE(CryptoModule::aesDecrypt(key, Bytes()));
}

}  // namespace

}  // namespace orlix
