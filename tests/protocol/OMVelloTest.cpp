#include <random>

#include <gtest/gtest.h>

#include "orlixkit/protocol/OMVello.h"
#include "tests/protocol/ClientAndServer.h"

namespace orlix {

namespace {

using std::chrono::seconds;

/// Notes what the driver asks for, in order.
struct UpperFloors : OMVelloEnvironment {
  std::string velloUrl() override {
    if (withoutUrl) {
      throw std::runtime_error("no address");
    }
    return OMVello::sharedOMVello().system() == 0 ? "https://live.example/vello"
                                                  : "https://test.example/vello";
  }
  std::string storageKeyForItem(const std::string& item) override {
    return (OMVello::sharedOMVello().system() == 0 ? "live." : "test.") + item;
  }
  std::string deviceModel() override { return "model"; }
  void showAlertWithTitle(const std::string& title,
                          const std::optional<std::string>& message) override {
    events.push_back(title + ": " + message.value_or("(none)"));
  }
  void showNetworkErrorRetry(Task retryTask, Task cancelTask) override {
    events.emplace_back("retry offered");
    retry = std::move(retryTask);
    cancel = std::move(cancelTask);
  }
  void showTemsAndConditionChangeScreen() override { events.emplace_back("terms screen"); }
  void returnUserDidCancel() override { events.emplace_back("cancelled"); }

  bool withoutUrl = false;
  std::vector<std::string> events;
  Task retry;
  Task cancel;
};

struct Delegate : OMVelloDelegate {
  explicit Delegate(std::shared_ptr<UpperFloors> upper_, std::string name_ = "")
      : upper(std::move(upper_)), name(std::move(name_)) {}
  void velloNotActivated() override { upper->events.push_back(name + "not activated"); }
  void velloSessionEstablished() override { upper->events.push_back(name + "established"); }
  std::shared_ptr<UpperFloors> upper;
  std::string name;
};

using Events = std::vector<std::string>;

struct Driver {
  explicit Driver(MemoryHostSettings settings = {}) : host(std::move(settings)) {
    host.connections().on(sessionPath, ServerReply::of(200, openedSession()));
    vello().setEnvironment(upper);
  }
  ~Driver() {
    // The tasks hold the start, which holds the delegate, which holds the upper floors.
    upper->retry = {};
    upper->cancel = {};
  }
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;
  static OMVello& vello() { return OMVello::sharedOMVello(); }
  void start(std::int64_t system = 0, const std::string& name = "") {
    vello().initSessionWithLibKey("key" + name, system, std::make_shared<Delegate>(upper, name));
  }

  MemoryHost host;
  std::shared_ptr<UpperFloors> upper = std::make_shared<UpperFloors>();
};

TEST(OMVello, EachOutcomeLeadsToItsNextStep) {
  struct Case {
    std::string name;
    ServerReply reply;
    Events events;
    std::string logged;
  };
  const std::string notice = R"({"activated":true,"allowConnection":true,"message":"m"})";
  const std::vector<Case> cases = {
      {"established", ServerReply::of(200, openedSession()), {"established"}, ""},
      {"not activated",
       ServerReply::of(200, "{}"),
       {"not activated"},
       "SMSException caught - Need to start activation flow"},
      {"no network", ServerReply().fail("reset"), {"retry offered"}, "NetworkException caught"},
      {"refused", ServerReply::of(200, R"({"activated":true,"message":"m"})"), {"Error: m"}, ""},
      {"refused without a word",
       ServerReply::of(200, R"({"activated":true})"),
       {"Error: (none)"},
       ""},
      {"notice", ServerReply::of(200, notice), {"Warning: m", "established"}, ""},
      {"new terms",
       ServerReply::of(200, R"({"activated":true,"allowConnection":true,"requestTCs":true})"),
       {"terms screen", "established"},
       ""},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Driver driver;
    driver.host.connections().on(sessionPath, row.reply);
    driver.start();
    driver.host.runUntilIdle();
    EXPECT_EQ(driver.upper->events, row.events);
    Events expected = {"OMVello - initSession", "API version: 3.1", "TimeZone:+02:00",
                       "establishSession"};
    Events lines = driver.host.log().lines();
    std::erase_if(lines, [](const std::string& line) {
      return line.starts_with("OMStorage") || line.starts_with("OMNetwork");
    });
    if (!row.logged.empty()) {
      expected.push_back(row.logged);
    }
    EXPECT_EQ(lines, expected);
    EXPECT_NE(driver.vello().connection(), nullptr);
  }
}

TEST(OMVello, TheDeviceIsDescribedToTheChosenSystem) {
  Driver driver;
  driver.start(1);
  driver.host.runUntilIdle();
  const RecordedRequest& request = driver.host.requests().at(0);
  EXPECT_EQ(request.url, "https://test.example/vello/session/new/TALU");
  EXPECT_EQ(request.body,
            object({"\"deviceSerial\" : \"[p:" + driver.host.device().vendor + "]\"",
                    R"("appVersion" : "iPhone TALU 2.1.0")", R"("hasDoubleSession" : true)",
                    R"("ssToken" : "")", R"("timeZone" : "+02:00")",
                    "\"platform\" : {\n    \"appVersion\" : \"2.1.0\",\n"
                    "    \"device\" : \"model\",\n    \"node\" : \"TALU\",\n"
                    "    \"os\" : \"IOS\",\n    \"libKey\" : \"key\",\n"
                    "    \"osVersion\" : \"17.4\"\n  }"}));
}

TEST(OMVello, ARetryRunsTheWholeStartAgainWithANewClient) {
  Driver driver;
  driver.host.device().vendor = "";
  driver.host.connections().on(sessionPath, ServerReply().fail("reset"));
  driver.start();
  driver.host.runUntilIdle();
  const auto former = driver.vello().connection();
  driver.upper->retry();
  driver.host.runUntilIdle();
  driver.host.connections().on(sessionPath, ServerReply::of(200, openedSession()));
  driver.upper->retry();
  driver.host.runUntilIdle();
  EXPECT_EQ(driver.upper->events, (Events{"retry offered", "retry offered", "established"}));
  EXPECT_NE(driver.vello().connection(), former);
  // The identifier that stands in for the vendor's is made once per start.
  EXPECT_EQ(driver.host.requests().at(0).body, driver.host.requests().at(2).body);
  driver.start();
  driver.host.runUntilIdle();
  EXPECT_NE(driver.host.requests().at(3).body, driver.host.requests().at(2).body);
}

TEST(OMVello, GivingUpTellsTheCheckout) {
  Driver driver;
  driver.host.connections().on(sessionPath, ServerReply().fail("reset"));
  driver.start();
  driver.host.runUntilIdle();
  driver.upper->cancel();
  EXPECT_EQ(driver.upper->events, (Events{"retry offered", "cancelled"}));
  EXPECT_TRUE(driver.host.log().contains("Canceling the process"));
}

TEST(OMVello, ASupersededStartReportsNothingAndLeavesTheClientAlone) {
  const auto slowly = [](const std::string& answer) {
    return ServerReply().after(seconds(5)).status(200).body(answer);
  };
  const std::vector<ServerReply> outcomes = {
      slowly(openedSession()),
      slowly("{}"),
      slowly(R"({"activated":true})"),
      slowly(R"({"activated":true,"allowConnection":true,"message":"m"})"),
      slowly(R"({"activated":true,"allowConnection":true,"requestTCs":true})"),
      ServerReply().after(seconds(5)).fail("reset"),
  };
  for (const ServerReply& outcome : outcomes) {
    Driver driver;
    driver.host.connections().on(sessionPath, [&](const RecordedRequest& request) {
      const bool isFirst = request.url.find("live") != std::string::npos;
      return isFirst ? outcome : ServerReply::of(200, openedSession(2));
    });
    driver.start(0, "first ");
    driver.host.runFor(seconds(1));
    driver.start(1, "second ");
    driver.host.runFor(seconds(10));
    EXPECT_EQ(driver.upper->events, Events{"second established"});
    EXPECT_EQ(driver.vello().connection()->dataStore().sessionId, "one-2");
    EXPECT_EQ(driver.host.requests().size(), 2U);
  }
}

TEST(OMVello, TheLastOfTwoStartsAtOnceWinsWhateverOrderTheThreadsRunIn) {
  for (unsigned seed = 0; seed < 100; ++seed) {
    MemoryHostSettings settings;
    settings.chooser = [random = std::mt19937(seed)](std::size_t candidates) mutable {
      return random() % candidates;
    };
    settings.preemptive = true;
    Driver driver(settings);
    driver.host.connections().on(sessionPath, [](const RecordedRequest& request) {
      // Not by the address: a start that was superseded may already read the new one.
      const bool isFirst = request.body->find("keyfirst") != std::string::npos;
      return ServerReply::of(200, openedSession(isFirst ? 1 : 2));
    });
    driver.start(0, "first ");
    driver.start(1, "second ");
    driver.host.runUntilIdle();
    ASSERT_EQ(driver.upper->events.back(), "second established");
    ASSERT_EQ(driver.upper->events.size(), 1U);
    ASSERT_EQ(driver.vello().connection()->dataStore().sessionId, "one-2");
  }
}

TEST(OMVello, ARetryOfASupersededStartDoesNothing) {
  Driver driver;
  driver.host.connections().on(sessionPath, ServerReply().fail("reset"));
  driver.start();
  driver.host.runUntilIdle();
  const Task retry = driver.upper->retry;
  const Task cancel = driver.upper->cancel;
  driver.host.connections().on(sessionPath, ServerReply::of(200, openedSession()));
  driver.start(0, "second ");
  driver.host.runUntilIdle();
  retry();
  cancel();
  driver.host.runUntilIdle();
  EXPECT_EQ(driver.upper->events, (Events{"retry offered", "second established"}));
  EXPECT_EQ(driver.host.requests().size(), 2U);
}

TEST(OMVello, AClientThatCannotBeMadeLeavesTheFormerOneOrNoneAndGoesOn) {
  Driver driver;
  driver.upper->withoutUrl = true;
  driver.start();
  driver.host.runUntilIdle();
  EXPECT_EQ(driver.vello().connection(), nullptr);
  EXPECT_EQ(driver.upper->events, Events{"established"});
  EXPECT_EQ(driver.host.log().count("Exception caught"), 1U);

  driver.upper->withoutUrl = false;
  driver.start();
  driver.host.runUntilIdle();
  const auto former = driver.vello().connection();
  driver.upper->withoutUrl = true;
  driver.start();
  driver.host.runUntilIdle();
  EXPECT_EQ(driver.vello().connection(), former);
  EXPECT_EQ(driver.host.requests().size(), 2U);
}

TEST(OMVello, StartsWithoutADelegateEndInSilence) {
  for (const std::string& answer : {openedSession(), std::string("{}")}) {
    Driver driver;
    driver.host.connections().on(sessionPath, ServerReply::of(200, answer));
    driver.vello().initSessionWithLibKey("key", 0, nullptr);
    driver.host.runUntilIdle();
    driver.vello().velloSessionEstablished();
    driver.host.runUntilIdle();
    EXPECT_TRUE(driver.upper->events.empty());
  }
}

TEST(OMVello, NothingIsReportedAfterTheShutdown) {
  Driver driver;
  driver.host.connections().on(sessionPath, ServerReply().silence());
  driver.start();
  driver.host.runFor(seconds(1));
  driver.host.shutdown();
  EXPECT_TRUE(driver.upper->events.empty());
}

TEST(OMVello, TheTimeZoneIsTheOffsetInHoursAndMinutes) {
  const std::vector<std::pair<int, std::string>> rows = {
      {0, "+00:00"},      {19800, "+05:30"}, {-12600, "-03:30"},
      {-36000, "-10:00"}, {50400, "+14:00"}, {-1500, "-00:25"},
      {20, "+00:00"},     {-20, "+00:00"},   {1172, "+00:19"},
  };
  MemoryHost host;
  for (const auto& [offset, text] : rows) {
    host.clock().setUtcOffset(seconds(offset));
    EXPECT_EQ(OMVello::sharedOMVello().getTimeZone(), text);
    EXPECT_EQ(host.log().lines().back(), "TimeZone:" + text);
  }
}

}  // namespace

}  // namespace orlix
