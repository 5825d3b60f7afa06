// SPDX-License-Identifier: Apache-2.0

#include <stdexcept>

#include <gtest/gtest.h>

#include "orlixkit/protocol/OMVello.h"
#include "tests/protocol/ClientAndServer.h"

namespace orlix::test {

namespace {

/// The floors above the driver: record what it calls, in one text.
struct UpperFloors : OMVelloEnvironment, OMVelloDelegate {
  std::string heard;
  bool isBroken = false;
  std::shared_ptr<Flow> flow = std::make_shared<Flow>();
  Task retry, cancel;

  std::string velloUrl() override {
    return isBroken ? throw std::runtime_error("no address") : "https://live.example/vello";
  }
  std::string storageKeyForItem(const std::string& item) override { return "live." + item; }
  std::string deviceModel() override { return "x86_64"; }
  std::shared_ptr<const Flow> currentFlow() override { return flow; }
  void showAlertWithTitle(const std::string&, const std::optional<std::string>&) override {}
  void showNetworkErrorRetry(Task again, Task leave) override {
    heard += "failed ";
    retry = std::move(again);
    cancel = std::move(leave);
  }
  void showTemsAndConditionChangeScreen() override {}
  void returnUserDidCancel() override { heard += "cancelled "; }
  void velloNotActivated() override { heard += "activate "; }
  void velloSessionEstablished() override { heard += "open "; }
};

/// A driver with the floors above it and a server.
struct Driver : ClientAndServer {
  std::shared_ptr<UpperFloors> upper = std::make_shared<UpperFloors>();
  OMVello& driver = OMVello::sharedOMVello();

  Driver() { driver.setEnvironment(upper); }
  /// The alert's tasks hold the delegate, which holds them.
  ~Driver() { upper->retry = upper->cancel = {}; }
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;
  /// What is heard of a start.
  std::string start(std::shared_ptr<OMVelloDelegate> delegate) {
    driver.initSessionWithLibKey("key", 0, std::move(delegate));
    return heard();
  }
  std::string heard() {
    host.runUntilIdle();
    return std::exchange(upper->heard, "");
  }
};

}  // namespace

TEST(SessionStart, NeedsTheFloorsAboveItFirst) {
  MemoryHost host;
  EXPECT_THROW(OMVello::sharedOMVello().initSessionWithLibKey("key", 0, nullptr), std::logic_error);
}

TEST(SessionStart, ThatCannotMakeAClientKeepsTheFormerOneAndCountsAsOpenWithoutOne) {
  Driver test;
  test.upper->isBroken = true;
  EXPECT_EQ(test.start(test.upper), "open ");
  EXPECT_EQ(test.driver.connection(), nullptr);
  EXPECT_TRUE(test.host.log().contains("Exception caught"));
  EXPECT_TRUE(test.host.requests().empty());
  test.upper->isBroken = false;
  test.driver.tryInitSession();
  EXPECT_EQ(test.heard(), "open ");
  const auto former = test.driver.connection();
  test.upper->isBroken = true;
  test.host.backgroundQueues().global(QualityOfService::high,
                                      [&] { test.driver.performInitSession(); });
  EXPECT_EQ(test.heard(), "open ");
  EXPECT_EQ(test.driver.connection(), former);
  EXPECT_EQ(test.requestsTo(kSessionPath).size(), 2U);
}

TEST(SessionStart, OfAnEndedFlowOrWithoutADelegateIsReportedToNoOne) {
  for (const std::string& answer : {openedSession(), std::string("{}")}) {
    Driver test;
    test.host.connections().on(kSessionPath, ServerReply::of(200, answer));
    EXPECT_EQ(test.start(test.upper), answer == "{}" ? "activate " : "open ");
    EXPECT_EQ(test.start(nullptr), "");
    test.upper->flow->end();
    EXPECT_EQ(test.start(test.upper), "");
  }
  Driver test;
  test.host.connections().on(kSessionPath, ServerReply().fail("reset"));
  EXPECT_EQ(test.start(test.upper), "failed ");
  test.upper->cancel();
  EXPECT_EQ(test.heard(), "cancelled ");
  test.upper->flow->end();
  test.upper->retry();
  test.upper->cancel();
  EXPECT_EQ(test.heard(), "");
  EXPECT_EQ(test.requestsTo(kSessionPath).size(), 1U);
}

}  // namespace orlix::test
