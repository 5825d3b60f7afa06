// SPDX-License-Identifier: Apache-2.0

// What the shop says at the end of a visit.
#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "examples/shop/Notice.h"
#include "orlixkit/testing/ScriptedWallet.h"
#include "tests/shop/ShopInMemory.h"

namespace orlix::shop {
namespace {

using State = PurchaseState;
using Obstacle = VisitEnd::Obstacle;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kSucceeded = "orlixPaymentSucceededWithTransactionReference";
const std::string kFailed = "orlixPaymentFailedWithTransactionReference";
const ServerReply kUnreachable = ServerReply().fail("no network");
const std::string kNotKnown = "We don't know yet whether the payment went through";

/// Every way in which a visit can end.
std::vector<VisitEnd> everyEnd(State state, bool hasReference = true, bool pinRefused = false) {
  std::vector<std::optional<Outcome>> outcomes{std::nullopt, Outcome{kFailed, std::string("77")},
                                               Outcome{"orlixUserDidCancel", {}},
                                               Outcome{"orlixUserCompletedWallet", {}}};
  for (const int code : {2, 4, 6, 7}) {
    outcomes.push_back(Outcome{"orlixError", code});
  }
  std::vector<VisitEnd> ends;
  for (const auto& outcome : outcomes) {
    for (const Obstacle obstacle :
         {Obstacle::none, Obstacle::noSession, Obstacle::versionStopped}) {
      const auto reference = hasReference ? std::optional<std::string>("77") : std::nullopt;
      ends.push_back({outcome, "C-1", {state, reference, pinRefused}, obstacle});
    }
  }
  return ends;
}

}  // namespace

TEST(Notice, NeverSaysThatNothingWasTakenWhereThatIsNotKnown) {
  for (const bool hasReference : {true, false}) {
    for (const VisitEnd& end : everyEnd(State::unknown, hasReference)) {
      const Notice notice = noticeFor(end);
      EXPECT_EQ(notice.title, kNotKnown);
      EXPECT_THAT(notice.detail, HasSubstr(hasReference ? "Reference 77" : "Code C-1"));
    }
  }
  for (const VisitEnd& end : everyEnd(State::paid)) {
    EXPECT_EQ(noticeFor(end).title, "Thank you, it is paid");
  }
  // A purchase whose answer was lost may have been made besides the one that succeeded.
  EXPECT_EQ(noticeFor({Outcome{kSucceeded, std::string("9")}, "C-1", {State::unknown}, {}}).detail,
            "Reference 9");
}

TEST(Notice, SaysWhatHappenedAndWhatToDoNext) {
  struct Case {
    std::optional<Outcome> outcome;
    PurchaseStatus purchase;
    Obstacle obstacle;
    std::string happened, next;
  };
  const auto error = [](int code) { return Outcome{"orlixError", code}; };
  const Outcome cancelled{"orlixUserDidCancel", {}};
  const PurchaseStatus none, refused{State::refused, {}, false}, wrongPin{State::refused, {}, true};
  for (const Case& row : std::vector<Case>{
           {error(2), refused, {}, "did not accept the payment", "try another card"},
           {error(2), wrongPin, {}, "did not accept the PIN", "check the PIN, or use another card"},
           {error(2), none, {}, "went wrong on this device", "try again"},
           {error(4), none, {}, "cannot be paid for in the app", "pay at the counter"},
           {error(6), none, {}, "takes no part", "choose another card"},
           {error(7), none, {}, "fixed in two places", "tell the shop"},
           {cancelled, none, Obstacle::noSession, "connection failed", "check your network"},
           {{}, none, Obstacle::versionStopped, "stopped this version", "update the app"}}) {
    const Notice notice = noticeFor({row.outcome, "C-1", row.purchase, row.obstacle});
    EXPECT_THAT(notice.detail, AllOf(HasSubstr(row.happened), HasSubstr("nothing was taken"),
                                     HasSubstr(row.next)));
    EXPECT_EQ(std::count(notice.detail.begin(), notice.detail.end(), '.'), 2) << notice.detail;
  }
}

TEST(NoticeOfAFlow, FollowsFromTheCallbackTheQueryAndTheAlerts) {
  struct Case {
    std::string name;
    std::function<void(ScriptedWallet&)> server;
    std::string script, expected;  ///< part of the notice's line
  };
  const std::string pay = "wait screen Product\ntype pinField 1234\ntap proceedAction\n";
  const std::string failure = "wait alert \"Connection problem\"\nbutton Cancel\n";
  const std::string leave = "tap cancelAction\nwait outcome orlixUserDidCancel\n";
  const auto answer = [](const std::string& path, const ServerReply& reply) {
    return [path, reply](ScriptedWallet& wallet) { wallet.always(path, reply); };
  };
  const auto silence = ServerReply().silence();
  for (const Case& row : std::vector<Case>{
           {"paid", {}, pay + "wait outcome", R"("purchase":"paid","reference":"90071992547)"},
           {"left before paying", {}, "wait screen Product\n" + leave, R"("purchase":"none")"},
           {"left while paying", answer("/purchase/", silence),
            pay + "expect-no-outcome 1\n" + leave, kNotKnown},
           {"left while the receipt stays away", answer("/receipt/", ServerReply::ok("{}")),
            pay + "expect-no-outcome 1\n" + leave, "Reference 9007199254740993"},
           {"left when the receipt has stayed away", answer("/receipt/", ServerReply::ok("{}")),
            pay + failure + leave, "Reference 9007199254740993"},
           {"left after a purchase that failed", answer("/purchase/", ServerReply::of(500)),
            pay + failure + leave, "Code C-1"},
           {"no session", answer("/session/", kUnreachable),
            failure + "wait outcome orlixUserDidCancel\n", "The wallet could not be reached"},
           {"no session at first", [](auto& wallet) { wallet.next("/session/", kUnreachable); },
            "wait alert \"Connection problem\"\nbutton Retry\nwait screen Product\n" + leave,
            "\"title\":\"Cancelled\""},
           {"a wrong PIN",
            answer("/purchase/", ServerReply::ok(R"({"status":"INVALID_PASSWORD"})")),
            pay + "wait outcome orlixError 2", "check the PIN"}}) {
    SCOPED_TRACE(row.name);
    ShopInMemory shop;
    ScriptedWallet wallet(shop.phone().connections());
    if (row.server) {
      row.server(wallet);
    }
    EXPECT_EQ(shop.run("checkout C-1\n" + row.script), "");
    EXPECT_THAT(shop.lines(), HasSubstr("\"event\":\"notice\""));
    EXPECT_THAT(shop.lines(), HasSubstr(row.expected));
  }
}

TEST(NoticeOfAFlow, TheWaitingScreenOfAStoppedVersionGoesWhenItsAlertHasBeenRead) {
  ShopInMemory shop;
  ScriptedWallet wallet(shop.phone().connections());
  wallet.session = R"({"sessionId":"s","activated":true,"allowConnection":false,"message":"Old"})";
  EXPECT_EQ(shop.run("checkout C-1\nwait alert Error Old\nwait screen Waiting"), "");
  EXPECT_THAT(shop.lines(), Not(HasSubstr("\"event\":\"notice\"")));
  EXPECT_EQ(shop.run("button Ok\nwait idle\nexpect-no-outcome 100\ndump"), "");
  EXPECT_THAT(shop.lines(), HasSubstr("This version can no longer be used"));
  EXPECT_THAT(shop.lines(), HasSubstr(R"({"event":"state","screen":null,)"));
  wallet.session = answers::kSession;
  EXPECT_EQ(shop.run("checkout C-1\nwait screen Product"), "");
}

}  // namespace orlix::shop
