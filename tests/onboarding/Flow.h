#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/platform/memory/MemoryHost.h"

namespace orlix {

/// A host application that writes down what it hears.
class RecordingHost : public OXOrlixDelegate {
 public:
  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    calls.push_back("succeeded " + reference);
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    calls.push_back("failed " + reference);
  }
  void orlixError(int code) override { calls.push_back("error " + std::to_string(code)); }
  void orlixUserDidCancel() override { calls.emplace_back("cancelled"); }
  void orlixUserRegistered() override { calls.emplace_back("registered"); }
  void orlixUserCompletedWallet() override { calls.emplace_back("completed"); }
  void orlixInvalidCode() override { calls.emplace_back("invalid code"); }

  std::vector<std::string> calls;
};

using Calls = std::vector<std::string>;

/// A wallet server's answers, as far as a test does not set others.
struct Answers {
  static constexpr const char* kSession =
      R"({"sessionId":"s1","sessionId2":"s2","pinKey":"MTIzNDU2Nzg5MDEyMzQ1Ng==",)"
      R"("activated":true,"allowConnection":true,"message":"","requestTCs":false})";
  static constexpr const char* kNotActivated =
      R"({"sessionId":"s1","sessionId2":"s2","activated":false})";
  static constexpr const char* kNewTerms =
      R"({"sessionId":"s1","sessionId2":"s2","activated":true,"allowConnection":true,)"
      R"("message":"","requestTCs":true})";
  static constexpr const char* kLinked =
      R"({"status":"SUCCESS","cardList":{"cards":[{"cardId":11},{"cardId":12}]}})";
  static constexpr const char* kFailed = R"({"status":"FAILED"})";
  static constexpr const char* kRelink = R"({"status":"RELINK"})";
  static constexpr const char* kSmsSent = R"({"status":"SUCCESS","newSsToken":"token"})";
  static constexpr const char* kNothingNeeded = R"({"cardSupported":true})";
};

/// A card of the wallet as the server writes it.
std::string cardJson(std::int64_t cardId, const std::string& hint, const std::string& more = "");

enum class Entry { checkout, preRegister, wallet };

/// The library on a phone in memory, with a scripted server and one flow under way.
class Flow {
 public:
  explicit Flow(MemoryHostSettings settings = {});

  /// The server answers this path with this body from now on.
  void answer(const std::string& path, const std::string& body, Duration after = {});
  /// The server does not answer this path; with `then`, only so many times.
  void fail(const std::string& path, int times = 1'000'000, const std::string& then = "{}");
  /// The wallet's cards, in lookup and card list.
  void setCards(const std::vector<std::string>& cards);

  /// An entry call of a new facade, for `application`.
  void begin(Entry entry, const std::string& preMSISDN = "");
  /// The same, up to the screen that the server's answers lead to.
  void begin(Entry entry, const std::string& screen, const std::string& preMSISDN);
  /// An enrolment up to the screen for the code.
  void beginEnrolment(Entry entry);
  /// A wallet flow up to the form for a card.
  void beginAddCard(Entry entry);
  /// Fills in number and name of the form for a card, and proceeds.
  void proceedWithCard(const std::string& number = "4000123412341234");

  std::string screen() const { return host.topController()->identifier(); }
  /// Title and message of the alert on top; empty without one.
  std::string alert() const;
  /// The text that an outlet of the top screen shows.
  std::string shown(const std::string& outlet);
  bool indicatorIsUp() const;
  std::size_t requestsTo(const std::string& path);
  /// The text under that key in the last request to that path.
  std::string sent(const std::string& path, const std::string& key);
  std::int64_t lastUsedCard();

  MemoryHost host;
  std::shared_ptr<RecordingHost> application = std::make_shared<RecordingHost>();
  std::shared_ptr<OXOrlix> facade;
};

/// A test with a flow, and with a new one for each row of a table: there is one host at a time.
class FlowTest : public testing::Test {
 protected:
  Flow& anew(MemoryHostSettings settings = {}) {
    held_.reset();
    return held_.emplace(std::move(settings));
  }

 private:
  std::optional<Flow> held_{std::in_place};

 protected:
  Flow& flow = *held_;
};

}  // namespace orlix
