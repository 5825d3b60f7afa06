// SPDX-License-Identifier: Apache-2.0

#include <csignal>
#include <cstring>
#include <vector>

#include <gmock/gmock.h>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/protocol/OMVello.h"
#include "tests/faults/MemoryScan.h"
#include "tests/faults/SandboxProcess.h"

namespace orlix::test {

namespace {

// Typed key by key, so that this test never holds them in one piece. The PIN is the one of card
// 7777; the CVV has four characters that are nowhere else, each of four bytes in UTF-8. The PAN is
// one whose bank wants the mobile number confirmed.
constexpr std::array<char, 9> kPinDigits{'9', '8', '7', '6', '5', '4', '3', '2', '1'};
constexpr std::array<char, 16> kPanDigits{'4', '1', '0', '0', '0', '0', '8', '0',
                                          '0', '0', '0', '0', '0', '1', '0', '8'};
constexpr std::array<int, 4> kCvvLetters{0x93, 0x8B, 0xA1, 0x97};
constexpr std::size_t kPaResLength = 40;  // letters, which a request writes as they are

int paResLetter(std::size_t index) { return 'A' + static_cast<int>(index * 7 % 26); }

int cvvByte(std::size_t index) {
  constexpr std::array<int, 3> kLead{0xF0, 0x9D, 0x96};
  return index % 4 < kLead.size() ? kLead.at(index % 4) : kCvvLetters.at(index / 4);
}

/// What the user enters and the issuer returns, as text, and the PAN also as its field shows it.
MemoryScan secretsOfTheUser() {
  MemoryScan scan;
  scan.lookFor("PIN", kPinDigits.size(), [](std::size_t i) { return kPinDigits.at(i); });
  scan.lookFor("packed PIN", 4, [](std::size_t i) {  // as a clear PIN block has it, from its second
    return (kPinDigits.at(2 * i + 1) - '0') * 16 + kPinDigits.at(2 * i + 2) - '0';
  });
  scan.lookFor("CVV", 4 * kCvvLetters.size(), cvvByte);
  scan.lookFor("PaRes", kPaResLength, paResLetter);
  scan.lookFor("PAN", kPanDigits.size(), [](std::size_t i) { return kPanDigits.at(i); });
  scan.lookFor("shown PAN", kPanDigits.size() + 3,
               [](std::size_t i) { return i % 5 == 4 ? ' ' : kPanDigits.at(i - i / 5); });
  return scan;
}

/// The key of the session that is open, as bytes and as the answer's text had it.
MemoryScan keyOfTheSession() {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const DataStore store = OMVello::sharedOMVello().connection()->dataStore();
  const ByteView key = store.pinKey->reveal();
  MemoryScan scan;
  scan.lookFor("PIN key", key.size(), [key](std::size_t i) { return key[i]; });
  scan.lookFor("PIN key's text", key.size() * 8 / 6, [&](std::size_t i) {
    const std::size_t at = i * 6 / 8;
    const unsigned two = key[at] * 256U + (at + 1 < key.size() ? key[at + 1] : 0U);
    return kDigits[two >> (10 - i * 6 % 8) & 0x3FU];
  });
  return scan;
}

/// Sixteen bytes, the least that a vector register holds.
std::uint8_t unitOfCopy(std::size_t index) {
  return static_cast<std::uint8_t>(index % 16 * 37 + 11);
}

/// Copies a text as a request does: it stays on the stack, at a depth that later calls leave alone,
/// and in the registers of the copying function.
[[gnu::noinline]] void leaveCopies() {
  std::array<std::uint8_t, 32768> deep;
  std::array<std::uint8_t, 1024> copy;
  for (std::size_t i = 0; i < copy.size(); ++i) {
    copy.at(i) = unitOfCopy(i);
  }
  std::memcpy(deep.data(), copy.data(), copy.size());
}

/// Has the kernel write all registers to `memory`, as it does for a signal's handler.
void saveRegisters(std::vector<std::uint8_t>& memory) {
  stack_t own{};
  own.ss_sp = memory.data();
  own.ss_size = memory.size();
  stack_t before{};
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_ONSTACK;
  sigaltstack(&own, &before);
  sigaction(SIGUSR1, &action, nullptr);
  std::raise(SIGUSR1);
  std::signal(SIGUSR1, SIG_DFL);
  sigaltstack(&before, nullptr);
}

struct User : TlsPhone {
  using TlsPhone::TlsPhone;

  void typePin() {
    for (const char digit : kPinDigits) {
      user->type("pinField", std::string(1, digit));
    }
  }
  void typeCvv() {
    for (std::size_t letter = 0; letter < kCvvLetters.size(); ++letter) {
      std::string key;
      for (std::size_t i = 0; i < 4; ++i) {
        key += static_cast<char>(cvvByte(4 * letter + i));
      }
      user->type("cvvField", key);
    }
  }
  void typePan() {
    for (const char digit : kPanDigits) {
      user->type("cardNumberField", std::string(1, digit));
    }
  }
  /// The issuer's page comes back at once.
  void returnFromIssuer() {
    pages->onLoad = [](FakeWebView& page) {
      std::string markup = "<script>Vello.handle(\"";
      markup.reserve(100);
      for (std::size_t i = 0; i < kPaResLength; ++i) {
        markup += static_cast<char>(paResLetter(i));
      }
      markup += "\")</script>";
      page.finishNavigation(markup);
      wipe(markup.data(), markup.size());
    };
  }
  void payByPin(const std::string& code) {
    showPayment(code, "7777");
    typePin();
    user->tap("proceedButton");
    runUntilOutcomeOrAlert();
  }
  void payByPinAndCvv(const std::string& code) {
    showPayment(code, "4444");
    typeCvv();
    typePin();
    user->tap("proceedButton");
    runUntilOutcomeOrAlert();
  }
  void cancel() {
    if (user->topAlert()) {
      user->pressAlert("Cancel");
    }
    runUntilScreen("Product");
    user->tap("cancelAction");
    runUntil([this] { return !app->heard.empty(); });
  }
};

struct Flow {
  std::string name;
  void (*run)(User&);
  std::string heard;
};

const std::vector<Flow> kFlows{
    {"a payment by PIN", [](User& user) { user.payByPin("FIXED-25"); }, "succeeded"},
    {"a payment sent again under a new session", [](User& user) { user.payByPin("FORGET"); },
     "succeeded"},
    {"a refused payment by PIN and CVV", [](User& user) { user.payByPinAndCvv("FIXED-25"); },
     "error 2"},
    {"a payment without an answer, and cancel",
     [](User& user) {
       user.payByPin("HANG-UP");
       user.cancel();
     },
     "cancelled"},
    {"a payment that times out, and retry",
     [](User& user) {
       user.showPayment("SILENCE", "7777");
       user.typePin();
       user.user->tap("proceedButton");
       user.runUntil([&] {
         user.clock->letPass(std::chrono::seconds(1));
         return user.user->topAlert() != nullptr;
       });
       user.user->pressAlert("Retry");
       user.runUntil([&] { return !user.app->heard.empty(); });
     },
     "succeeded"},
    {"a 3-D Secure payment with a CVV",
     [](User& user) {
       user.returnFromIssuer();
       user.showPayment("FIXED-25", "0309");
       user.typeCvv();
       user.user->tap("proceedButton");
       user.runUntil([&] { return !user.app->heard.empty(); });
     },
     "error 2"},
    {"a card that is added",
     [](User& user) {
       user.showPayment("FIXED-25", "7777");
       OXSession::currentSession()->showAddCardScreen();
       user.runUntilScreen("AddCard");
       user.typePan();
       user.user->type("cardHolderField", "A Customer");
       user.user->type("expiryDateField", "1299");
       user.user->tap("proceedButton");
       user.runUntilScreen("MsisdnRelink");
       user.user->type("msisdnField", "0821234567");
       user.user->tap("proceedButton");
       user.cancel();
     },
     "cancelled"},
    {"second thoughts",
     [](User& user) {
       user.showPayment("FIXED-25", "4444");
       user.typeCvv();
       user.typePin();
       user.user->erase("pinField", 2);
       user.cancel();
     },
     "cancelled"},
};

}  // namespace

TEST(Secrets, NoneOfThemIsInMemoryOnceTheFlowHasEnded) {
  for (const Flow& flow : kFlows) {
    SCOPED_TRACE(flow.name);
    SandboxProcess server("--enrolled");
    const MemoryScan scan = secretsOfTheUser();
    MemoryScan keys;
    {
      User user(server.address);
      flow.run(user);
      ASSERT_THAT(user.app->heard, testing::ElementsAre(testing::HasSubstr(flow.heard)));
      // Whatever the host's callback interrupted has been released by then.
      user.runUntil([&user] { return user.screen().empty(); });
      user.log->clear();  // one of its lines is the PaRes
      EXPECT_THAT(scan.findings(), testing::IsEmpty());
      keys = keyOfTheSession();
      EXPECT_THAT(keys.findings(), testing::ElementsAre(testing::HasSubstr("PIN key at")))
          << "the session's own, and no other";
    }
    EXPECT_THAT(keys.findings(), testing::IsEmpty());
    EXPECT_THAT(scan.findings(), testing::IsEmpty());
  }
}

TEST(Secrets, AWipedStackAndItsRegistersHoldNothingOfACopy) {
  MemoryScan scan;
  scan.lookFor("copy", 16, unitOfCopy);
  std::vector<std::uint8_t> registers(std::size_t{256} << 10U);
  for (const bool wiped : {false, true}) {
    leaveCopies();
    if (wiped) {
      wipeStack();
    }
    saveRegisters(registers);
    EXPECT_EQ(scan.count("copy") == 0, wiped);
    wipe(registers.data(), registers.size());
    EXPECT_EQ(scan.count("copy") == 0, wiped) << "on the stack alone";
  }
}

TEST(Secrets, AreFoundByTheScanWhileTheyAreTyped) {
  SandboxProcess server("--enrolled");
  User user(server.address);
  user.showPayment("FIXED-25", "4444");
  user.typeCvv();
  user.typePin();
  const MemoryScan scan = secretsOfTheUser();
  EXPECT_EQ(scan.count("PIN"), 1U);
  EXPECT_EQ(scan.count("CVV"), 1U);
}

}  // namespace orlix::test
