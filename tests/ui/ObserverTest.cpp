// SPDX-License-Identifier: Apache-2.0

// The host's observer may throw, and do anything, at any call: no step is lost by it.

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "tests/ui/PresentationStage.h"

namespace orlix {

namespace {

using test::Diary;

/// A short flow with screens, alerts and the indicator, every call of the observer in it.
class ShortFlow : public test::PresentationStage {
 public:
  void play() {
    const std::function<void()> steps[] = {
        [&] { root().present(screen("A"), true, note("A was presented")); },
        [&] { show("Busy"); },
        [&] { indicator().dismiss(note("first dismissed")); },
        [&] { host.application().showAlert(alert("One"), true); },
        [&] { host.application().showAlert(alert("Two"), true); },
        [&] { press(); },
        [&] { show("Busy again"); },
        [&] { root().dismiss(true, note("A was dismissed")); },
        [&] { root().present(screen("B"), true, note("B was presented")); },
        [&] { indicator().dismiss(note("second dismissed")); },
        [&] { root().dismiss(false, note("B was dismissed")); },
    };
    for (const auto& step : steps) {
      if (Host::isInstalled()) {
        step();
        settle();
      }
    }
  }
  void show(const std::string& status) {
    indicator().show(status, ProgressMask::gradient, ProgressStyle::activity,
                     root().presentedViewController());
  }
  void press() {
    if (const auto top = host.user().topAlert()) {
      top->press(0);
    }
  }
  void settle() {
    if (Host::isInstalled()) {
      host.runUntilIdle();
    }
  }
  /// Counts the observer's calls; does this at the given one.
  void actAt(int call, const std::function<void(const std::string&)>& act) {
    calls = 0;
    whenCalled = [this, call, act](const std::string& name) {
      if (++calls == call) {
        act(name);
      }
    };
  }
  int calls = 0;
};

class Observer : public testing::Test, protected ShortFlow {};

TEST_F(Observer, ThatThrowsAtOneCallChangesNothing) {
  actAt(0, {});
  play();
  const Diary expected = read();
  const int count = calls;
  ASSERT_GT(count, 15);
  const std::pair<std::string, Task> kinds[] = {
      {"broken", [] { throw std::runtime_error("broken"); }},
      {"no exception", [] { throw 5; }},
      {"memory ran out", [] { throw std::bad_alloc(); }}};
  for (const auto& [said, broken] : kinds) {
    for (int call = 1; call <= count; ++call) {
      std::string where;
      actAt(call, [&](const std::string& name) {
        where = name;
        broken();
      });
      play();
      EXPECT_EQ(read(), expected) << "call " << call;
      const std::string line = host.log().lines().back();
      EXPECT_NE(line.find("UiObserver::" + where + ": "), std::string::npos) << line;
      EXPECT_NE(line.find(said), std::string::npos) << line;
    }
  }
}

TEST_F(Observer, ThatRunsOutOfMemoryEndsTheFlowInATaskOfItsOwn) {
  int ended = 0;
  Host::current().endFlow = [&] { ++ended; };
  actAt(1, [](const std::string&) { throw std::bad_alloc(); });
  root().present(screen("A"), false);
  EXPECT_EQ(ended, 0) << "not inside the call, which may be the host's";
  host.runUntilIdle();
  EXPECT_EQ(ended, 1);
}

TEST_F(Observer, MayDoAnythingAtAnyCall) {
  const std::pair<std::string, Task> acts[] = {
      {"cut", [this] { root().dismiss(false, note("cut")); }},
      {"dismiss", [this] { root().dismiss(true, note("dismissed")); }},
      {"present a screen", [this] { root().present(screen("X"), true); }},
      {"present an alert", [this] { host.application().showAlert(alert("X"), false); }},
      {"press", [this] { press(); }},
      {"withdraw",
       [this] {
         if (const auto top = host.user().topAlert()) {
           top->withdraw();
         }
       }},
      {"show", [this] { show("X"); }},
      {"hide", [this] { indicator().dismiss(note("hidden")); }},
      {"run the main queue", [this] { settle(); }},
  };
  for (const auto& [name, act] : acts) {
    for (int call = 1; call == 1 || calls >= call - 1; ++call) {
      SCOPED_TRACE(name + " at call " + std::to_string(call));
      actAt(call, [&act](const std::string&) { act(); });
      play();
      indicator().dismiss(note("last hidden"));
      settle();
      for (int alerts = 0; host.user().topAlert() && alerts < 9; ++alerts) {
        press();
        settle();
      }
      root().dismiss(false);
      settle();
      EXPECT_EQ(root().presentedViewController(), nullptr);
      EXPECT_FALSE(indicator().visible());
      const Diary told = read();
      const auto times = [&told](const std::string& line) {
        return std::count(told.begin(), told.end(), line);
      };
      for (const char* const line : {"first dismissed", "second dismissed", "A was dismissed",
                                     "B was dismissed", "A was presented", "last hidden"}) {
        EXPECT_EQ(times(line), 1) << line;
      }
      for (const char* const one : {"A", "B", "alert One", "alert Two", "X", "alert X"}) {
        const std::string title(one);
        EXPECT_EQ(times(title + " presented"), times(title + " gone")) << one;
        const std::string alert = title.substr(title.find(' ') + 1);
        if (alert != title && name != "withdraw") {
          EXPECT_EQ(times("Ok on " + alert) + times(alert + " lost"), times(title + " gone"))
              << one;
        }
      }
    }
    ASSERT_GT(calls, 15);
  }
}

TEST(HostsEnd, MayComeAtAnyCallOfTheObserver) {
  for (const bool uninstalled : {false, true}) {
    int calls = 1;
    for (int call = 1; call <= calls; ++call) {
      SCOPED_TRACE("call " + std::to_string(call));
      ShortFlow flow;
      const std::shared_ptr<ViewController> root = flow.host.root();
      flow.actAt(call, [&](const std::string&) {
        uninstalled ? Host::uninstall() : flow.host.shutdown();
        flow.read();
      });
      flow.play();
      if (uninstalled && flow.calls >= call) {
        EXPECT_EQ(flow.read(), Diary{}) << "nothing is called back any more";
        EXPECT_EQ(root->presentedViewController(), nullptr);
      }
      calls = std::max(calls, flow.calls + 1);
    }
    EXPECT_GT(calls, 15);
  }
}

}  // namespace

}  // namespace orlix
