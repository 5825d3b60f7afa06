// SPDX-License-Identifier: Apache-2.0

#include <thread>

#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

constexpr const char* kListPath = "/vello/card/list/TALU";

class Server : public SandboxTest {
 protected:
  void switchOn(json::object fault, const char* path = kListPath) {
    fault["path"] = path;
    sandbox_.control("POST", "/control/faults", json::serialize(fault));
  }
};

TEST(Certificates, AClientThatTrustsTheRootRefusesEveryFlaw) {
  for (const auto flaw :
       {CertificateFlaw::none, CertificateFlaw::wrongHost, CertificateFlaw::expired,
        CertificateFlaw::notYetValid, CertificateFlaw::otherRoot, CertificateFlaw::clientOnly}) {
    Sandbox sandbox({.enrolled = true, .certificateFlaw = flaw});
    sandbox.start();
    EXPECT_EQ(Wallet(sandbox).start().status, flaw == CertificateFlaw::none ? 200 : 0);
  }
  Sandbox old({.oldTlsOnly = true});
  old.start();
  EXPECT_EQ(Wallet(old).start().status, 0) << "TLS 1.1 only";
}

TEST_F(Server, StoppingEndsWhatIsHeldBackAndCanBeRepeated) {
  control("POST", "/control/terms", R"({"version":99,"waitMilliseconds":600000})");
  wallet_->start();  // From now on lookups wait for the acceptance.
  switchOn({{"kind", "delay"}, {"milliseconds", 600'000}});
  switchOn({{"kind", "hold"}}, "/vello/card/bin/TALU");
  // Not carried out: accepting the terms would let the lookup go.
  switchOn({{"kind", "silence"}, {"carriedOut", false}}, "/vello/profile/updateTC");
  std::vector<std::thread> threads;
  for (const char* path :
       {"card/list/TALU", "card/bin/TALU", "profile/updateTC", "lookup/query/v2/TALU"}) {
    threads.emplace_back([&, path = std::string(path)] {
      Wallet other(sandbox_);
      other.start();
      const bool looksUp = path.starts_with("lookup");
      EXPECT_EQ((looksUp ? other.lookUp("FIXED-25") : other.post(path)).status, 0) << path;
    });
  }
  // Wherever they have got to by then, none may get an answer or hold up the end.
  while (counted("handshakes") < 5) std::this_thread::yield();
  switchOn({{"kind", "hold-handshake"}}, "*");
  threads.emplace_back([&] { EXPECT_EQ(Wallet(sandbox_).start().status, 0); });
  while (counted("connections") < 6) std::this_thread::yield();
  sandbox_.stop();
  for (std::thread& thread : threads) thread.join();
  sandbox_.stop();
}

TEST_F(Server, EachFaultSpoilsOneAnswerInItsOwnWay) {
  struct Row {
    json::object fault;
    int status;              ///< 0: no whole answer arrives.
    const char* beginsWith;  ///< The body.
    size_t bytes;            ///< At least.
  };
  for (const Row& row : std::vector<Row>{
           {{{"kind", "forget-session"}}, 403, "{\"error\"", 0},
           {{{"kind", "huge-body"}, {"bytes", 3'000'000}}, 200, "{\"padding\"", 3'000'000},
           {{{"kind", "deep-json"}}, 200, "{\"deep\":[[[[", 200'000},
           {{{"kind", "not-utf8"}}, 200, "{\"status\":\"\xC3(", 0},
       }) {
    switchOn(row.fault);
    const Reply spoilt = wallet_->post("card/list/TALU");
    EXPECT_EQ(spoilt.status, row.status) << row.fault;
    EXPECT_EQ(spoilt.text.rfind(row.beginsWith, 0), 0U) << row.fault << spoilt.text.substr(0, 99);
    EXPECT_GE(spoilt.text.size(), row.bytes) << row.fault;
    if (spoilt.status == 403) wallet_->start();
    EXPECT_NE(wallet_->cardEnding("1111"), 0) << row.fault << ": it was for one request";
  }
  for (const char* kind : {"reset-connection", "refuse-handshake"}) {
    switchOn({{"kind", kind}}, "*");
    EXPECT_EQ(wallet_->post("card/list/TALU").status, 200) << "the open connection is not met";
    control("DELETE", "/control/connections");
    EXPECT_EQ(wallet_->post("card/list/TALU").status, 0) << kind;
    EXPECT_EQ(wallet_->post("card/list/TALU").status, 200) << kind;
  }
}

TEST_F(Server, AFaultMeetsItsPathAfterTheSkippedForItsCountAndSaysWhetherItIsCarriedOut) {
  switchOn({{"kind", "status"}, {"skip", 2}, {"count", 3}});
  std::string seen;
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(wallet_->lookUp("FIXED-25").status, 200) << "another path";
    seen += wallet_->post("card/list/TALU").status == 500 ? 'x' : '.';
  }
  EXPECT_EQ(seen, "..xxx..");
  std::int64_t paid = 0;
  for (const auto& [fault, makes] : std::vector<std::pair<json::object, int>>{
           {{{"kind", "hang-up"}}, 1},
           {{{"kind", "hang-up"}, {"carriedOut", false}}, 0},
           {{{"kind", "status"}, {"status", 500}}, 0},
           {{{"kind", "status"}, {"status", 500}, {"carriedOut", true}}, 1}}) {
    switchOn(fault, "/vello/purchase/TALU");
    EXPECT_EQ(wallet_->pay(wallet_->purchase()), "") << fault;
    EXPECT_EQ(counted("purchasesPaid"), paid += makes) << fault;
  }
  EXPECT_EQ(counted("purchasesReceived"), 4);
}

TEST(EventLines, TellOfARequestItsTimeMethodDurationAndWhyItIsRefused) {
  std::vector<json::object> requests;
  Sandbox sandbox({.onEvent = [&](std::string_view line) {
    const json::object event = parseObject(line).value();
    if (textOf(event, "event") == "request") requests.push_back(event);
  }});
  sandbox.start();
  Wallet wallet(sandbox);
  const std::int64_t before = now().time_since_epoch().count();
  wallet.start();
  wallet.post("card/list/TALU");
  sandbox.stop();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_GE(integerOf(requests[0], "time"), before);
  EXPECT_EQ(textOf(requests[0], "method"), "POST");
  EXPECT_GE(integerOf(requests[0], "milliseconds", -1), 0);
  EXPECT_FALSE(requests[0].contains("reason"));
  EXPECT_EQ(integerOf(requests[1], "status"), 401);
  EXPECT_EQ(textOf(requests[1], "reason"), "the device is not enrolled");
}

}  // namespace
}  // namespace orlix::sandbox::test
