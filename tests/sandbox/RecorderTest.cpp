// SPDX-License-Identifier: Apache-2.0

#include <cstdlib>
#include <fstream>
#include <vector>

#include "sandbox/Recorder.h"
#include "tests/TemporaryFolder.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

std::vector<json::object> linesOf(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::vector<json::object> lines;
  for (std::string line; std::getline(in, line);) {
    lines.push_back(parseObject(line).value());
  }
  return lines;
}

std::string wholeOf(const std::filesystem::path& file) {
  std::ifstream in(file);
  return {std::istreambuf_iterator<char>(in), {}};
}

class Recording : public testing::Test {
 protected:
  Recording() {
    sandbox_.start();
    wallet_.emplace(sandbox_);
    wallet_->start();
  }
  json::object last() const { return linesOf(file_).back(); }

  orlix::test::TemporaryFolder folder_;
  std::filesystem::path file_ = folder_.path() / "exchanges.jsonl";
  Sandbox sandbox_{{.enrolled = true, .record = file_.string()}};
  std::optional<Wallet> wallet_;
};

TEST_F(Recording, HasTheWholeExchangeInOneLine) {
  wallet_->lookUp("NO-SUCH-CODE");
  const json::object line = last();
  EXPECT_EQ(textOf(line, "method"), "POST");
  EXPECT_EQ(textOf(line, "path"), "/vello/lookup/query/v2/TALU");
  EXPECT_EQ(textOf(line.at("headers").get_object(), "Content-Type"), "application/json");
  EXPECT_TRUE(line.at("headers").get_object().contains("Host"));
  EXPECT_EQ(textOf(line, "body"), R"({"qrValue":"NO-SUCH-CODE","method":"inapp"})");
  EXPECT_EQ(integerOf(line, "status"), 200);
  EXPECT_EQ(textOf(line, "contentType"), "application/json");
  EXPECT_EQ(textOf(line, "answer"), R"({"message":"This code is not known."})");
  EXPECT_EQ(linesOf(file_).size(), 2U) << "after the session start";
}

TEST_F(Recording, ReplacesEachSecretByATextOfTheSameForm) {
  const json::object payment = wallet_->purchase("FIXED-25", "4444", "25.00", "1234", "987");
  wallet_->post("purchase/TALU", payment);
  const std::string block = textOf(payment.at("pinData").get_object(), "pinBlock");
  const json::object body = parseObject(textOf(last(), "body")).value();
  EXPECT_EQ(textOf(body, "cvv"), "000");
  EXPECT_EQ(textOf(body, "code"), "FIXED-25");
  EXPECT_EQ(textOf(body.at("pinData").get_object(), "pinBlock").size(), block.size());

  wallet_->post("card/link/TALU", {{"cardNumber", "4100011000000111"}, {"cvv", 987}});
  EXPECT_EQ(textOf(last(), "body"), R"({"cardNumber":"4100011000000000","cvv":0})");

  wallet_->http.Post("/vello/secure_code.jsp",
                     httplib::Params{{"PaRes", "Zm9v+YmFyQmF6Rm9v/MQ=="}});
  EXPECT_EQ(textOf(last(), "body"), R"({"PaRes":"Aa0a+AaAaAaA0Aa0a/AA=="})");
  EXPECT_NE(textOf(last(), "answer").find(R"(Vello.handle("Aa0a+AaAaAaA0Aa0a/AA=="))"),
            std::string::npos);

  const std::string whole = wholeOf(file_);
  for (const std::string& secret : {wallet_->token1, wallet_->token2, block, std::string("987"),
                                    std::string("000000111"), std::string("shop-key")}) {
    EXPECT_EQ(whole.find(secret), std::string::npos) << secret;
  }
}

TEST_F(Recording, SaysWhatHasSpoiltAnAnswerAndLeavesItOut) {
  struct Row {
    const char *fault, *spoilt;
  };
  for (const Row& row : std::vector<Row>{{R"({"kind":"not-json"})", "not-json"},
                                         {R"({"kind":"status"})", "status"},
                                         {R"({"kind":"hang-up"})", "hang-up"},
                                         {R"({"kind":"delay","milliseconds":0})", ""},
                                         {R"({"kind":"last-answer"})", ""},
                                         {R"({"kind":"forget-session"})", ""}}) {
    sandbox_.control("POST", "/control/faults", row.fault);
    wallet_->post("card/list/TALU");
    EXPECT_EQ(textOf(last(), "spoilt"), row.spoilt) << row.fault;
    EXPECT_EQ(last().contains("answer"), *row.spoilt == '\0') << row.fault;
  }
}

TEST(Recorder, AppendsToTheFileAndRefusesOneThatCannotBeWritten) {
  const orlix::test::TemporaryFolder folder;
  const std::string file = (folder.path() / "exchanges.jsonl").string();
  for (size_t lines = 1; lines <= 2; ++lines) {
    Recorder(file).note({.method = "POST", .path = "/vello"}, {}, {});
    EXPECT_EQ(linesOf(file).size(), lines);
  }
  EXPECT_THROW(Recorder("/proc/no/file"), std::runtime_error);
}

TEST(Recorder, TakesAFileForEachProcessFromTheEnvironment) {
  const char* const before = std::getenv("ORLIX_RECORD");
  const std::optional<std::string> kept = before != nullptr ? std::optional(before) : std::nullopt;
  setenv("ORLIX_RECORD", "/some/folder", 1);
  EXPECT_EQ(Recorder::fileOfProcess(),
            "/some/folder/sandbox_tests-" + std::to_string(getpid()) + ".jsonl");
  unsetenv("ORLIX_RECORD");
  EXPECT_EQ(Recorder::fileOfProcess(), "");
  if (kept) setenv("ORLIX_RECORD", kept->c_str(), 1);
}

}  // namespace
}  // namespace orlix::sandbox::test
