// SPDX-License-Identifier: Apache-2.0

// What the tests of the flows take for granted of the phone in memory: each of these, broken, would
// let them pass for the wrong reason.

#include <exception>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "orlixkit/testing/Interleavings.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix {

namespace {

/// Of what is thrown; empty when nothing is.
std::string messageOf(const std::function<void()>& act) {
  try {
    act();
    return "";
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

TEST(MemoryHost, AUserIsToldWhatItCannotReach) {
  struct Form : ViewController {
    Form() {
      outlet<TextField>("pin", outlet<View>("group"))->superview()->setHidden(true);
      outlet<TextField>("name")->setEnabled(false);
      outlet<Button>("pay")->setEnabled(false);
      action("leaveAction", [] {});
    }
  };
  MemoryHost host;
  host.root()->present(std::make_shared<Form>(), false);
  EXPECT_THROW(host.type("pin", "1"), std::logic_error);
  EXPECT_THROW(host.type("name", "1"), std::logic_error);
  EXPECT_THROW(host.tap("pay"), std::logic_error);
  EXPECT_THROW(host.pressAlert("Ok"), std::logic_error) << "no alert is shown";
  host.tap("leaveAction");
  host.application().progressIndicator().show("Wait", ProgressMask::gradient);
  EXPECT_THROW(host.tap("leaveAction"), std::logic_error);
}

TEST(MemoryHost, AStoreFindsWhatItHoldsAndARefusalReachesTheCaller) {
  MemoryUserDefaults store;
  store.setValue("test.data", toBytes("a1234b"));
  store.setValue("test.customerId", "C1");
  store.setFailing(true);
  EXPECT_EQ(messageOf([&] { store.setValue("test.customerId", "C2"); }),
            "MemoryUserDefaults: the value of test.customerId cannot be kept");
  EXPECT_TRUE(store.holds("C1") && store.holds("1234"));
  EXPECT_FALSE(store.holds("4321"));
}

TEST(Host, NamesThePortThatIsMissing) {
  MemoryHost phone;
  const Ports whole = Host::current().ports();
  const std::pair<const char*, void (*)(Ports&)> rows[] = {
      {"log", [](Ports& ports) { ports.log.reset(); }},
      {"clock", [](Ports& ports) { ports.clock.reset(); }},
      {"mainQueue", [](Ports& ports) { ports.mainQueue.reset(); }},
      {"backgroundQueues", [](Ports& ports) { ports.backgroundQueues.reset(); }},
      {"httpClient", [](Ports& ports) { ports.httpClient.reset(); }},
      {"userDefaults", [](Ports& ports) { ports.userDefaults.reset(); }},
      {"device", [](Ports& ports) { ports.device.reset(); }},
      {"bundle", [](Ports& ports) { ports.bundle.reset(); }},
  };
  for (const auto& [name, leaveOut] : rows) {
    Ports ports = whole;
    leaveOut(ports);
    EXPECT_EQ(messageOf([&ports] { const Host host(ports, {}); }),
              std::string("Host: the port ") + name + " is missing");
  }
}

TEST(Interleavings, TryEveryOrderOnce) {
  std::set<std::string> orders;
  Interleavings search;
  EXPECT_EQ(search.run([&orders](const Chooser& chooser) {
    MemoryHost host({.chooser = chooser});
    std::string order;
    for (const char* name : {"0", "1", "2", "3"}) {
      host.backgroundQueues().global(QualityOfService::high, [&order, name] { order += name; });
    }
    host.runUntilIdle();
    orders.insert(order);
  }),
            24u);
  EXPECT_EQ(orders.size(), 24u);
  EXPECT_TRUE(search.complete());
}

TEST(Interleavings, FindALostUpdateWhereOneMayBeOvertaken) {
  for (const bool preemptive : {false, true}) {
    std::set<int> ends;
    Interleavings().run([&](const Chooser& chooser) {
      MemoryHost host({.chooser = chooser, .preemptive = preemptive});
      int counter = 0;
      for (int i = 0; i < 2; ++i) {
        host.backgroundQueues().global(QualityOfService::high, [&] {
          const int read = counter;
          host.mainQueue().async([] {});  // any call of a port
          counter = read + 1;
        });
      }
      host.runUntilIdle();
      ends.insert(counter);
    });
    EXPECT_EQ(ends, preemptive ? (std::set<int>{1, 2}) : (std::set<int>{2}));
  }
}

}  // namespace

}  // namespace orlix
