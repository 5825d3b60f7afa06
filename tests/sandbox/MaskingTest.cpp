// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "sandbox/Masking.h"
#include "sandbox/SeenRequests.h"
#include "tests/sandbox/Wallet.h"

namespace orlix::sandbox::test {
namespace {

TEST(Masking, ReplacesEverySecretByWordsWhereverItIs) {
  struct Row {
    const char* body;
    const char* secret;  ///< What must be gone.
    const char* words;   ///< What replaces it.
    const char* pointer;
  };
  for (const Row& row : std::vector<Row>{
           {R"({"cvv":"739"})", "739", "CVV", "/cvv"},
           {R"({"CVV":739})", "739", "CVV", "/CVV"},
           {R"({"pin":"8642"})", "8642", "PIN", "/pin"},
           {R"({"pinData":{"pinBlock":"0123456789ABCDEF"}})", "0123456", "PIN block",
            "/pinData/pinBlock"},
           {R"({"a/b~":[{"PaRes":"eJx1"}]})", "eJx1", "PaRes", "/a~1b~0/0/PaRes"},
           {R"({"cardNumber":"4000001000001111"})", "4000001000001", "16 digits, ends in 1111",
            "/cardNumber"},
           {R"({"cardNumber":4000001000001111})", "4000001000001", "card number", "/cardNumber"},
           {R"({"note":"4000 0010 0000 1111"})", "4000 0010", "ends in 1111", "/note"},
           {R"({"otp":"123456"})", "123456", "one-time code", "/otp"},
           {R"({"ssToken":"0123456789abcdef0123"})", "01234", "0123... (20 characters)",
            "/ssToken"},
           {R"({"sessionId":"short"})", "short", "... (5 characters)", "/sessionId"},
           {R"({"pinKey":"AAECAwQFBgc="})", "AAEC", "PIN key", "/pinKey"},
           {R"({"htmlContent":"<input name='PaReq' value='eJx1'>"})", "eJx1", "carries a PaReq",
            "/htmlContent"}}) {
    const MaskedBody masked = maskBody(row.body, "application/json", {});
    EXPECT_EQ(masked.text.find(row.secret), std::string::npos) << masked.text;
    EXPECT_NE(masked.text.find(row.words), std::string::npos) << masked.text;
    EXPECT_EQ(masked.masked, std::vector<std::string>{row.pointer});
  }
}

TEST(Masking, LeavesTheRestAndTellsOfWhatCannotBeReadItsSizeOnly) {
  const char* harmless =
      R"({"msisdn":"27821234567","transactionId":9007199254740993,"amount":"25.00","cvv":""})";
  EXPECT_EQ(maskBody(harmless, "application/json", {}).text, harmless);
  for (const char* unreadable : {R"({"cvv":"739")", R"(["739"])", "cvv=739"}) {
    EXPECT_EQ(maskBody(unreadable, "application/json", {}).text.find("739"), std::string::npos);
  }
  EXPECT_EQ(maskBody("<p>", "text/html; charset=utf-8", {}).text,
            "3 bytes of text/html, which are not kept");
  const MaskedBody large =
      maskBody(R"({"a":")" + std::string(100'000, 'x') + R"("})", "application/json", {});
  EXPECT_EQ(large.text.size(), kLongestKeptBody);
  EXPECT_TRUE(large.cut);
}

struct SeenByConsole {
  SeenRequests seen;
  std::int64_t add(size_t bytes = 0) {
    const MaskedBody body{.text = std::string(bytes, 'x')};
    const std::int64_t number = seen.arrived({.method = "POST", .path = "/p"}, {}, body, Moment{});
    seen.decided(number, {.status = 200, .body = body});
    return number;
  }
};

TEST(SeenRequests, AreBoundedInNumberAndTheirBodiesInBytes) {
  SeenByConsole account;
  constexpr size_t kCount = SeenRequests::kKept + 5;
  for (size_t i = 0; i < kCount; ++i) account.add();
  EXPECT_EQ(account.seen.count(), SeenRequests::kKept);
  EXPECT_EQ(account.seen.oldest(), 6);
  EXPECT_FALSE(account.seen.whole(5));

  std::int64_t last = 0;
  const size_t most = SeenRequests::kBytesKept / (2 * kLongestKeptBody);
  for (size_t i = 0; i < most + 3; ++i) last = account.add(kLongestKeptBody);
  const auto dropped = [&](std::int64_t number) {
    return booleanOf(account.seen.whole(number).value(), "bodiesDropped");
  };
  const std::int64_t kept = static_cast<std::int64_t>(most);
  EXPECT_FALSE(dropped(last));
  EXPECT_FALSE(dropped(last - kept + 1));
  EXPECT_TRUE(dropped(last - kept));
  EXPECT_EQ(account.seen.count(), SeenRequests::kKept) << "the requests stay in the list";
}

TEST(SeenRequests, TellWhatHasChangedSinceARevisionAndHowLongEachTook) {
  SeenByConsole account;
  account.add();
  const std::int64_t second = account.add();
  const std::int64_t revision = account.seen.revision();
  EXPECT_TRUE(account.seen.changedSince(revision).empty());
  account.seen.ended(second, Moment{std::chrono::milliseconds(12)});
  account.add();
  const json::array changed = account.seen.changedSince(revision);
  ASSERT_EQ(changed.size(), 2U);
  EXPECT_EQ(changed[0].at("number"), second);
  EXPECT_EQ(changed[0].at("milliseconds"), 12);
  EXPECT_FALSE(changed[1].get_object().contains("milliseconds")) << "under way";
  account.seen.clear();
  EXPECT_EQ(account.seen.oldest(), second + 2) << "a page knows what is gone";
  EXPECT_GT(account.seen.revision(), revision);
}

}  // namespace
}  // namespace orlix::sandbox::test
