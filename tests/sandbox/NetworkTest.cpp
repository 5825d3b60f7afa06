// SPDX-License-Identifier: Apache-2.0

// What a phone in the same network reaches, and the root that it trusts.

#include <fstream>

#include "tests/TemporaryFolder.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

using orlix::test::TemporaryFolder;

TEST(Network, AnotherAddressServesWalletsOnlyAndIsTheOneThatTheyAreTold) {
  Sandbox sandbox({.listen = "127.0.0.2", .enrolled = true, .console = true});
  sandbox.start();
  const std::string origin = "https://127.0.0.2:" + std::to_string(sandbox.port());
  EXPECT_EQ(sandbox.base(), origin + "/vello");
  EXPECT_EQ(sandbox.terms(), origin + "/terms/tavlo.html");
  Wallet here(sandbox);
  Wallet phone(sandbox, "[p:0F]", "127.0.0.2");
  EXPECT_EQ(phone.start().status, 200);
  const json::object payment = phone.purchase("FIXED-25", "0301", "25.00", "");
  const Reply page =
      phone.post("card/scUrl/TALU",
                 {{"cardId", payment.at("cardId")}, {"code", "FIXED-25"}, {"amount", "25.00"}});
  EXPECT_EQ(textOf(page.body, "url"), origin + "/issuer/acs");
  struct Row {
    const char* method;
    std::string path;
    int here, outside;
  };
  const std::string console = sandbox.console().substr(sandbox.console().find('/', 8));
  for (const Row& row : std::vector<Row>{{"GET", "/terms/tavlo.html", 200, 200},
                                         {"POST", "/issuer/acs", 200, 200},
                                         {"GET", "/control/state", 200, 404},
                                         {"POST", "/control/terms", 200, 404},
                                         {"GET", "/vello/../control/state", 404, 404},
                                         {"GET", "//control/state", 404, 404},
                                         {"GET", "/%63ontrol/state", 200, 404},
                                         {"GET", console, 404, 404}}) {
    const httplib::Params form{{"PaReq", textOf(page.body, "payload")},
                               {"TermUrl", origin + "/vello/secure_code.jsp"}};
    const bool posts = row.method == std::string("POST");
    const auto ask = [&](Wallet& wallet) {
      if (row.path.starts_with("/issuer")) return replyOf(wallet.http.Post(row.path.c_str(), form));
      return replyOf(posts ? wallet.http.Post(row.path.c_str())
                           : wallet.http.Get(row.path.c_str()));
    };
    EXPECT_EQ(ask(here).status, row.here) << row.path;
    EXPECT_EQ(ask(phone).status, row.outside) << row.path;
  }
  sandbox.control("DELETE", "/control/connections");
  EXPECT_EQ(phone.start().status, 200) << "over a new connection";
  EXPECT_NE(sandbox.control("GET", "/control/state").find("\"connections\":3"), std::string::npos);
}

class KeptRoot : public testing::Test {
 protected:
  Options keeping() const { return {.folder = folder_.path().string(), .keepRoot = true}; }
  /// The root that clients are given, once the sandbox has been started like this.
  std::string rootOf(Options options) const {
    Sandbox sandbox(std::move(options));
    sandbox.start();
    EXPECT_EQ(Wallet(sandbox).start().status, 200);
    std::ifstream file(folder_.path() / "certificateroot.pem");
    return {std::istreambuf_iterator<char>(file), {}};
  }
  /// Why it does not start.
  static std::string refusalOf(Options options) {
    try {
      Sandbox(std::move(options)).start();
    } catch (const std::runtime_error& failure) {
      return failure.what();
    }
    return "";
  }

  const TemporaryFolder folder_;
  const std::filesystem::path key_ = folder_.path() / "certificateroot.key";
};

TEST_F(KeptRoot, IsTheSameAtEachStartAndItsKeyIsTheOwnersOnly) {
  using std::filesystem::perms;
  const std::string first = rootOf(keeping());
  EXPECT_EQ(first.rfind("-----BEGIN CERTIFICATE-----", 0), 0U);
  EXPECT_EQ(std::filesystem::status(key_).permissions(), perms::owner_read | perms::owner_write);
  EXPECT_EQ(rootOf(keeping()), first);
  EXPECT_NE(rootOf({.folder = folder_.path().string()}), first) << "without the option a new one";
  EXPECT_EQ(rootOf(keeping()), first) << "and the kept one is still there";
}

TEST_F(KeptRoot, IsRefusedWithTheReasonWhenItCannotBeUsed) {
  rootOf(keeping());
  Options elsewhere = keeping();
  elsewhere.listen = "127.0.0.2";
  for (const char* told : {key_.c_str(), "127.0.0.2", "permitted subtree violation"}) {
    EXPECT_NE(refusalOf(elsewhere).find(told), std::string::npos) << refusalOf(elsewhere);
  }
  std::filesystem::permissions(key_, std::filesystem::perms(0640));
  EXPECT_NE(refusalOf(keeping()).find("chmod 600"), std::string::npos);
  std::filesystem::permissions(key_, std::filesystem::perms(0600));
  std::filesystem::resize_file(key_, std::filesystem::file_size(key_) / 2);
  EXPECT_NE(refusalOf(keeping()).find("no root with its key"), std::string::npos);
  std::filesystem::remove(key_);
  EXPECT_EQ(refusalOf(elsewhere), "");
}

}  // namespace
}  // namespace orlix::sandbox::test
