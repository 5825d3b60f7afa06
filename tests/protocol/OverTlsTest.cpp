#include <filesystem>
#include <mutex>
#include <regex>
#include <stdlib.h>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryLog.h"
#include "orlixkit/platform/posix/PosixPorts.h"
#include "sandbox/Sandbox.h"
#include "tests/protocol/ClientAndServer.h"

namespace orlix {

namespace {

/// A client on the real ports, and the sandbox in this process.
class OverTls : public testing::Test {
 protected:
  OverTls() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orlix-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
    sandbox::Options options;
    options.enrolled = true;
    options.onEvent = [this](const auto&) {
      const std::lock_guard held(lock_);
      if (mainQueue_) {
        mainQueue_->async([] {});  // so that who waits there looks again
      }
    };
    server_ = std::make_unique<sandbox::Sandbox>(options);
    server_->start();
  }

  ~OverTls() override {
    client_.reset();
    Host::uninstall();
    server_.reset();
    std::filesystem::remove_all(folder_);
  }

  /// `anchor`: the certificate to trust besides the system's roots.
  void install(const std::optional<std::string>& anchor) {
    PosixOptions options;
    options.applicationName = "protocol-tests";
    options.stateDirectory = folder_;
    if (anchor) {
      options.anchorFile = *anchor;
    }
    Ports ports = makePosixPorts(options);
    ports.log = log_;
    {
      const std::lock_guard held(lock_);
      mainQueue_ = ports.mainQueue;
    }
    Serial serial;
    serial.phoneId = "8D1F2C3B-4A5E-4F60-9B7A-1C2D3E4F5A6B";
    Host::install(std::make_shared<Host>(
        ports, Deployment{server_->base(), server_->base(), server_->terms()}));
    client_ = std::make_shared<KCVelloConnection>(
        server_->base(), "TALU", serial, std::make_shared<OMStorage>("live.data"),
        std::make_shared<OMNetwork>(), "iPhone TALU 2.1.0",
        Platform{"IOS", "17.4", "TALU", "2.1.0", "x86_64", "shop-key"}, "+02:00");
  }

  std::shared_ptr<Outcome> begin(std::function<void(KCVelloConnection&)> call) {
    auto outcome = std::make_shared<Outcome>();
    const Ports& ports = Host::current().ports();
    ports.backgroundQueues->global(
        QualityOfService::high,
        [client = client_, call = std::move(call), outcome, mainQueue = ports.mainQueue] {
          std::exception_ptr failure;
          try {
            call(*client);
          } catch (...) {
            failure = std::current_exception();
          }
          mainQueue->async([outcome, failure] {
            outcome->failure = failure;
            outcome->ended = true;
          });
        });
    return outcome;
  }

  Outcome run(std::function<void(KCVelloConnection&)> call) {
    const auto outcome = begin(std::move(call));
    Host::current().ports().mainQueue->runUntil([&] { return outcome->ended; });
    return *outcome;
  }

  /// Whether the sandbox's counters hold this.
  testing::AssertionResult counted(const std::string& counter, int count) {
    const std::string state = server_->control("GET", "/control/state");
    const bool holds = std::regex_search(
        state, std::regex("\"" + counter + "\":" + std::to_string(count) + "[,}]"));
    return (holds ? testing::AssertionSuccess() : testing::AssertionFailure()) << state;
  }

  std::string folder_;
  std::mutex lock_;
  std::shared_ptr<MainQueue> mainQueue_;
  std::unique_ptr<sandbox::Sandbox> server_;
  std::shared_ptr<MemoryLog> log_ = std::make_shared<MemoryLog>();
  std::shared_ptr<KCVelloConnection> client_;
};

/// The purchase of a code with the card whose hint ends in these digits.
PurchaseRequest purchaseOf(KCVelloConnection& client, const std::string& code,
                           const std::string& digits) {
  const MTCodeResponse answer = client.getCodeInfoV2(code, "inapp");
  PurchaseRequest request;
  request.code = answer.codeInfo.value().code;
  request.amount = answer.codeInfo->amount;
  for (const CardOption& card : answer.cardList.value().cardsArray) {
    if (card.cardHint.value_or("").ends_with(digits)) {
      request.cardId = card.cardId;
    }
  }
  return request;
}

TEST_F(OverTls, APinCheckoutTakesOneConnectionAndOneHandshake) {
  install(server_->anchorPath());
  MTPinResponse paid;
  std::optional<MTReceipt> receipt;
  const Outcome outcome = run([&](auto& c) {
    c.establishSession();
    paid = c.purchaseAMT(purchaseOf(c, "FIXED-25", "1111"), SecretString("1234"));
    receipt = c.pollForReceipt(paid.transactionId);
  });
  EXPECT_EQ(outcome.failure, nullptr) << log_->text();
  EXPECT_EQ(paid.status, PinResponseStatus::success) << paid.errorMessage.value_or("");
  ASSERT_TRUE(receipt);
  EXPECT_EQ(receipt->status, "SUCCESS");
  EXPECT_TRUE(counted("connections", 1));
  EXPECT_TRUE(counted("handshakes", 1));
  EXPECT_TRUE(counted("purchasesPaid", 1));
}

TEST_F(OverTls, AForgottenSessionIsHealedWithABlockUnderTheNewKey) {
  install(server_->anchorPath());
  MTPinResponse wrong;
  MTPinResponse paid;
  const Outcome outcome = run([&](auto& c) {
    c.establishSession();
    const PurchaseRequest request = purchaseOf(c, "FIXED-25", "7777");
    wrong = c.purchaseAMT(request, SecretString("987654320"));
    server_->control("DELETE", "/control/sessions");
    paid = c.purchaseAMT(request, SecretString("987654321"));
  });
  EXPECT_EQ(outcome.failure, nullptr) << log_->text();
  EXPECT_EQ(wrong.status, PinResponseStatus::invalidPassword);
  EXPECT_EQ(paid.status, PinResponseStatus::success) << paid.errorMessage.value_or("");
  EXPECT_TRUE(counted("purchasesPaid", 1));
}

TEST_F(OverTls, APurchaseWhoseServerHangsUpArrivesOnce) {
  install(server_->anchorPath());
  const Outcome outcome = run([&](auto& c) {
    c.establishSession();
    c.purchaseAMT(purchaseOf(c, "HANG-UP", "1111"), SecretString("1234"));
  });
  EXPECT_TRUE(outcome.failedWith<NetworkException>());
  EXPECT_TRUE(counted("purchasesReceived", 1));
}

TEST_F(OverTls, AServerThatAnswersTheLetterOfTheProtocolTakesEveryRequest) {
  install(server_->anchorPath());
  const Outcome outcome = run([&](auto& c) {
    c.establishSession();
    c.sendMsisdn("27821112222");
    c.processActivationCode("000000");
    const MTCardList list = c.getCardList();
    const std::int64_t cardId = list.cardsArray.at(0).cardId;
    c.getBinInfo("4100002000000102");
    CardInfoResponse card;
    card.cardNumber = "4100002000000102";
    card.expiryDateMonth = "01";
    card.expiryDateYear = "30";
    EXPECT_EQ(c.linkCard(card).status, CardResponseStatus::success);
    c.validateCard(true, cardId, "");
    PurchaseRequest request = purchaseOf(c, "FIXED-25", "0301");
    const MTSecureCodeURLResponse page = c.getSecureCodeUrl(request.cardId, "FIXED-25", {});
    c.purchaseSecureCode(request, {page.secureCodeId, "none"});
    c.get3DAuthSecureCodeUrl(request.cardId);
    c.auth3DsCard(request, {page.secureCodeId, "none"});
    request = purchaseOf(c, "FIXED-25", "2222");
    request.location = Location{-26.5, 28.25, {}, {}, {}, {}};
    EXPECT_EQ(c.puchaseCNP(request).status, PinResponseStatus::success);
    c.updateTC();
    EXPECT_EQ(c.delinkCard(cardId).status, CardResponseStatus::success);
  });
  EXPECT_EQ(outcome.failure, nullptr) << log_->text();
  const std::string requests = server_->control("GET", "/control/requests");
  EXPECT_EQ(requests.find("\"status\":4"), std::string::npos) << requests;
}

TEST_F(OverTls, TheServersOwnCertificateIsAnAnchorToo) {
  install(server_->serverCertificatePath());
  EXPECT_EQ(run([](auto& c) { c.establishSession(); }).failure, nullptr) << log_->text();
  EXPECT_TRUE(log_->contains("SSL Pinning Successful: Certificate Chain Verified."));
}

TEST_F(OverTls, AnUnknownIssuerIsRefusedBeforeAnythingIsSent) {
  install(std::nullopt);
  EXPECT_TRUE(run([](auto& c) { c.establishSession(); }).failedWith<NetworkException>());
  EXPECT_TRUE(log_->contains("SSL Pinning Failed: Certificate Chain Verification Failed."));
  EXPECT_TRUE(log_->contains("Certificate validation failed: "));
  EXPECT_TRUE(counted("requests", 0));
}

TEST_F(OverTls, AShutdownCutsASilentRequestOffAtOnce) {
  install(server_->anchorPath());
  server_->control("POST", "/control/faults",
                   R"({"kind":"header-then-silence","path":"/card/list/TALU"})");
  EXPECT_EQ(run([](auto& c) { c.establishSession(); }).failure, nullptr);
  const auto silent = begin([](auto& c) { c.getCardList(); });
  Host::current().ports().mainQueue->runUntil(
      [&] { return static_cast<bool>(counted("requests", 2)); });
  const auto before = std::chrono::steady_clock::now();
  Host::current().shutdown();
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
  EXPECT_FALSE(silent->ended);
}

}  // namespace

}  // namespace orlix
