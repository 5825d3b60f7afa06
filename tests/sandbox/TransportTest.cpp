#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "tests/sandbox/EnrolledTest.h"

namespace orlix::sandbox::test {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Transport, ClientThatTrustsTheRootRefusesEveryFlawedCertificate) {
  struct Row {
    const char* what;
    CertificateFlaw flaw;
    bool accepted;
  };
  for (const Row& row :
       std::vector<Row>{{"none", CertificateFlaw::none, true},
                        {"wrong host", CertificateFlaw::wrongHost, false},
                        {"expired", CertificateFlaw::expired, false},
                        {"not yet valid", CertificateFlaw::notYetValid, false},
                        {"other root", CertificateFlaw::otherRoot, false},
                        {"for clients only", CertificateFlaw::clientOnly, false}}) {
    Sandbox sandbox({.enrolled = true, .certificateFlaw = row.flaw});
    sandbox.start();
    Wallet wallet(sandbox);
    EXPECT_EQ(wallet.start().status == 200, row.accepted) << row.what;
  }
  Sandbox old({.oldTlsOnly = true});
  old.start();
  EXPECT_EQ(Wallet(old).start().status, 0) << "TLS 1.1 only";
}

TEST(Transport, BothLoopbackNamesAreInTheCertificate) {
  Sandbox sandbox({.enrolled = true});
  sandbox.start();
  Wallet wallet(sandbox);
  httplib::SSLClient named("localhost", sandbox.port());
  named.set_ca_cert_path((sandbox.anchorPath() + ".pem").c_str());
  named.set_address_family(AF_INET);
  named.enable_server_certificate_verification(true);
  EXPECT_EQ(replyOf(named.Get("/terms/tavlo.html")).status, 200);
}

TEST(Transport, EachStartMakesItsOwnRootAndWritesNoPrivateKey) {
  Sandbox one;
  Sandbox other;
  one.start();
  other.start();
  EXPECT_NE(contents(one.anchorPath()), contents(other.anchorPath()));
  const fs::path folder = fs::path(one.anchorPath()).parent_path();
  for (const auto& entry : fs::directory_iterator(folder)) {
    EXPECT_EQ(entry.path().extension(), ".cer") << entry.path();
  }
  one.stop();
  EXPECT_FALSE(fs::exists(folder)) << "the temporary folder goes with the sandbox";
}

TEST(Transport, TakenPortIsAClearFailure) {
  Sandbox first;
  first.start();
  Sandbox second({.port = first.port()});
  try {
    second.start();
    FAIL() << "two servers share a port";
  } catch (const std::runtime_error& failure) {
    EXPECT_NE(std::string(failure.what()).find(std::to_string(first.port())), std::string::npos);
  }
}

TEST(Transport, ManyClientsAreServedAtOnceEachOverOneHandshake) {
  Sandbox sandbox({.enrolled = true});
  sandbox.start();
  constexpr int clients = 12;
  std::vector<std::thread> threads;
  std::atomic<int> answered = 0;
  for (int client = 0; client < clients; ++client) {
    threads.emplace_back([&, client] {
      Wallet wallet(sandbox, "[p:" + std::to_string(client) + "]");
      wallet.start();
      for (int i = 0; i < 20; ++i) {
        const json::object body =
            wallet.withPin(wallet.purchase("FIXED-25", "1111", "25.00"), "1234");
        const Reply reply = wallet.post("/vello/purchase/TALU", body);
        if (textOf(reply.body, "status") == "SUCCESS") ++answered;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(answered, clients * 20);
  const json::object state = *parseObject(sandbox.control("GET", "/control/state"));
  EXPECT_EQ(integerOf(state, "handshakes"), clients);
  EXPECT_EQ(integerOf(state, "purchasesPaid"), clients * 20);
}

TEST_F(EnrolledTest, StoppingEndsWhatIsHeldBackAndCanBeRepeated) {
  sandbox_.control("POST", "/control/terms");  // A new version: lookups wait for its acceptance.
  wallet_->start();
  switchOn({{"kind", "delay"}, {"path", "/vello/card/list/TALU"}, {"milliseconds", 600'000}});
  // Not carried out: accepting the terms would let the lookup go.
  switchOn({{"kind", "silence"}, {"path", "/vello/profile/updateTC"}, {"carriedOut", false}});
  const std::vector<std::pair<std::string, json::object>> requests{
      {"/vello/card/list/TALU", {}},
      {"/vello/profile/updateTC", {}},
      {"/vello/lookup/query/v2/TALU", {{"qrValue", "FIXED-25"}, {"method", "inapp"}}}};
  sandbox_.control("POST", "/control/terms", R"({"version":99,"waitMilliseconds":600000})");
  std::vector<std::thread> threads;
  for (const auto& [path, body] : requests) {
    threads.emplace_back([&, path = path, body = body] {
      Wallet other(sandbox_);
      other.start();
      EXPECT_EQ(other.post(path, body).status, 0) << path;
    });
  }
  // Wherever the three have got to by then, none may get an answer or hold up the end.
  while (integerOf(control("/control/state"), "handshakes") < 4) std::this_thread::yield();
  sandbox_.stop();
  for (std::thread& thread : threads) thread.join();
  sandbox_.stop();
}

TEST_F(EnrolledTest, EventLinesTellTheReadyBaseAndEachRequest) {
  wallet_->lookUp("FIXED-25");
  wallet_->post("/vello/card/bin/TALU", {{"bin", 1}});
  switchOn({{"kind", "hang-up"}, {"path", "/vello/card/list/TALU"}});
  wallet_->post("/vello/card/list/TALU", {});
  const std::string base = "https://127.0.0.1:" + std::to_string(sandbox_.port());
  const std::vector<std::string> expected{
      R"({"event":"ready","base":")" + base + R"(/vello","anchor":")" + sandbox_.anchorPath() +
          R"(","terms":")" + base + R"(/terms/tavlo.html"})",
      R"({"event":"request","path":"/vello/session/new/TALU","status":200})",
      R"({"event":"request","path":"/vello/lookup/query/v2/TALU","status":200})",
      R"({"event":"request","path":"/vello/card/bin/TALU","status":400})",
      R"({"event":"request","path":"/vello/card/list/TALU","status":0})"};
  EXPECT_EQ(events_.lines(), expected);
}

}  // namespace
}  // namespace orlix::sandbox::test
