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

std::string cvvKey(int letter) {
  return "\xF0\x9D\x96" + std::string(1, static_cast<char>(letter));
}

MemoryScan::Needle named(const std::string& name) { return {name, {}}; }

char paResLetter(std::size_t index) { return static_cast<char>('A' + index * 7 % 26); }

/// Forty letters, which a request writes as they are.
MemoryScan::Needle paResText() {
  MemoryScan::Needle needle = named("PaRes");
  for (std::size_t i = 0; i < 40; ++i) {
    needle.add(static_cast<std::uint8_t>(paResLetter(i)));
  }
  return needle;
}

/// `grouped`: as the field shows it.
MemoryScan::Needle panText(bool grouped) {
  MemoryScan::Needle needle = named(grouped ? "shown PAN" : "PAN");
  for (std::size_t i = 0; i < kPanDigits.size(); ++i) {
    if (grouped && i > 0 && i % 4 == 0) {
      needle.add(static_cast<std::uint8_t>(' '));
    }
    needle.add(static_cast<std::uint8_t>(kPanDigits.at(i)));
  }
  return needle;
}

MemoryScan::Needle pinText() {
  MemoryScan::Needle needle = named("PIN");
  for (const char digit : kPinDigits) {
    needle.add(static_cast<std::uint8_t>(digit));
  }
  return needle;
}

/// The digits as a clear PIN block packs them, from the second on.
MemoryScan::Needle pinNibbles() {
  MemoryScan::Needle needle = named("packed PIN");
  for (std::size_t i = 1; i + 1 < kPinDigits.size(); i += 2) {
    needle.add(
        static_cast<std::uint8_t>((kPinDigits.at(i) - '0') * 16 + kPinDigits.at(i + 1) - '0'));
  }
  return needle;
}

MemoryScan::Needle cvvText() {
  MemoryScan::Needle needle = named("CVV");
  for (const int letter : kCvvLetters) {
    for (const char unit : cvvKey(letter)) {
      needle.add(static_cast<std::uint8_t>(unit));
    }
  }
  return needle;
}

/// The key of the session that is open, as bytes and as the answer's text had it.
std::vector<MemoryScan::Needle> pinKey() {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  MemoryScan::Needle raw = named("PIN key");
  MemoryScan::Needle text = named("PIN key's text");
  unsigned bits = 0;
  int held = 0;
  const DataStore store = OMVello::sharedOMVello().connection()->dataStore();
  for (const std::uint8_t byte : store.pinKey->reveal()) {
    raw.add(byte);
    bits = bits << 8U | byte;
    for (held += 8; held >= 6; held -= 6) {
      text.add(static_cast<std::uint8_t>(digits[bits >> static_cast<unsigned>(held - 6) & 0x3FU]));
    }
  }
  return {raw, text};
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
    for (const int letter : kCvvLetters) {
      user->type("cvvField", cvvKey(letter));
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
      for (std::size_t i = 0; i < 40; ++i) {
        markup += paResLetter(i);
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
    MemoryScan scan;
    scan.lookFor(pinText());
    scan.lookFor(pinNibbles());
    scan.lookFor(cvvText());
    scan.lookFor(paResText());
    scan.lookFor(panText(true));
    scan.lookFor(panText(false));
    MemoryScan keys;
    {
      User user(server.address);
      flow.run(user);
      ASSERT_THAT(user.app->heard, testing::ElementsAre(testing::HasSubstr(flow.heard)));
      // Whatever the host's callback interrupted has been released by then.
      user.runUntil([&user] { return user.screen().empty(); });
      user.log->clear();  // one of its lines is the PaRes
      EXPECT_THAT(scan.findings(), testing::IsEmpty());
      for (MemoryScan::Needle& needle : pinKey()) {
        keys.lookFor(std::move(needle));
      }
      EXPECT_THAT(keys.findings(), testing::ElementsAre(testing::HasSubstr("PIN key at")))
          << "the session's own, and no other";
    }
    EXPECT_THAT(keys.findings(), testing::IsEmpty());
    EXPECT_THAT(scan.findings(), testing::IsEmpty());
  }
}

TEST(Secrets, AWipedStackAndItsRegistersHoldNothingOfACopy) {
  MemoryScan::Needle needle = named("copy");
  for (std::size_t i = 0; i < 16; ++i) {
    needle.add(unitOfCopy(i));
  }
  MemoryScan scan;
  scan.lookFor(std::move(needle));
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
  MemoryScan scan;
  scan.lookFor(pinText());
  scan.lookFor(cvvText());
  EXPECT_EQ(scan.count("PIN"), 1U);
  EXPECT_EQ(scan.count("CVV"), 1U);
}

}  // namespace orlix::test
