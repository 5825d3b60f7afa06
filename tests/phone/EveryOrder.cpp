#include "tests/phone/EveryOrder.h"

#include <iostream>
#include <random>

#include "orlixkit/platform/memory/Interleavings.h"
#include "orlixkit/protocol/OMVello.h"

namespace orlix::test {

OrderedFlow::OrderedFlow(MemoryHostSettings settings, int strayTouches)
    : phone_(std::make_unique<Phone>(std::move(settings))), strayTouches_(strayTouches) {
  answers_.emplace(*phone_);
  addCommonEvents();
}

void OrderedFlow::addCommonEvents() {
  const auto someHeld = [this] { return answers_->count() > 0; };
  event("answer", someHeld, [this] { letGo(); });
  event(
      "later answer first", [this] { return answers_->count() > 1; }, [this] { letGo(true); });
  event("no network", someHeld, [this] {
    failure_ = answers_->path();
    letGo(false, unreachable());
  });
  for (const std::string button : {"Cancel", "Retry", "Ok"}) {
    const auto shown = [this, button] {
      const auto alert = phone_->host.user().topAlert();
      return alert &&
             (alert->actions().front().title == button || alert->actions().back().title == button);
    };
    event(button, shown, [this, button] { pressAlert(button); });
  }
  secondCall("second entry call", false);
}

void OrderedFlow::secondCall(const std::string& name, bool sameFacade) {
  event(
      name, [this] { return hosts_.size() == 1; },
      [this, sameFacade] {
        former_ = screens_;
        former_.erase("");  // the host's own
        if (sameFacade) {
          phone_->app = std::make_shared<HostApp>();
          phone_->checkout();
        } else {
          phone_->beginAnew(Entry::checkout);
        }
        hosts_.push_back(phone_->app);
        cancelled_ = endsInSilence_ = false;
        answers_->replaced();
        replaced();
      });
}

void OrderedFlow::letGo(bool newest, std::optional<ServerReply> instead) {
  mustStay_ = answers_->isStale(newest) ? phone_->host.topController() : nullptr;
  answers_->letGo(newest, std::move(instead));
}

void OrderedFlow::pressAlert(const std::string& button) {
  const auto alert = phone_->host.user().topAlert();
  if (goesOn() && button != "Ok") {
    button == "Retry" ? retried(alerts_[alert]) : givenUp(alerts_[alert]);
  }
  if (button == "Cancel") {
    noteGivenUp(alert);
  }
  phone_->host.pressAlert(button);
}

/// Who gives up while the first screen is being looked up may be left without one, and no host
/// told.
void OrderedFlow::noteGivenUp(const std::shared_ptr<AlertController>& alert) {
  const std::string& path = alerts_[alert];
  for (const char* silent : {"/lookup/", "/card/list/"}) {
    endsInSilence_ = endsInSilence_ || path.find(silent) != std::string::npos;
  }
}

void OrderedFlow::begin() {
  hosts_.push_back(phone_->app);
  look();
  answers_->begin();
}

void OrderedFlow::answer(const std::string& name, const std::string& body) {
  event(
      name, [this] { return answers_->count() > 0; }, [this, body] { letGo(false, ok(body)); });
}

bool OrderedFlow::isOnTop(const std::string& screen) {
  return screens_[screen].lock() == phone_->host.topController();
}

void OrderedFlow::touch(const std::string& screen, const std::string& action, Task before) {
  const auto possible = [this, screen] {
    return !screens_[screen].expired() && (isOnTop(screen) || strayTouches_ > 0);
  };
  event(screen + "." + action, possible, [this, screen, action, before] {
    const auto touched = screens_[screen].lock();
    strayTouches_ -= isOnTop(screen) ? 0 : 1;
    for (const auto& [field, text] :
         std::map<std::string, std::string>{{"pinField", "1234"},
                                            {"msisdnField", "0821234567"},
                                            {"codeField", "1234"},
                                            {"cardNumberField", "4000123412341234"},
                                            {"cardHolderField", "A N Other"}}) {
      if (const auto found = std::dynamic_pointer_cast<TextField>(touched->outletNamed(field))) {
        found->setText(text);
      }
    }
    if (before && goesOn() && former_[screen].lock() != touched) {
      before();
    }
    touched->performAction(action);
  });
}

void OrderedFlow::happen(const Event& event) {
  mustStay_.reset();
  event.happen();
  phone_->host.runUntilIdle();
  look();
  check();
  if (mustStay_) {
    EXPECT_EQ(phone_->host.topController(), mustStay_) << "an answer of the former flow";
  }
}

void OrderedFlow::happenAtOnce(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    phone_->host.later({}, [this, name] {
      for (const Event& event : events_) {
        if (event.name == name && event.possible()) {
          event.happen();
          look();
        }
      }
    });
  }
  phone_->host.runUntilIdle();
  look();
}

/// Remembers what is there: the screens to touch, the alerts and what they tell of, and all that
/// must be gone in the end.
void OrderedFlow::look() {
  for (auto next = phone_->host.root(); next; next = next->presentedViewController()) {
    const auto screen = next->visibleChild() ? next->visibleChild() : next;
    screens_[screen->identifier()] = screen;
    mortals_.emplace_back(screen);
  }
  if (const auto alert = phone_->host.user().topAlert()) {
    alerts_.emplace(alert, failure_);
  }
  mortals_.emplace_back(OXSession::currentSession());
  mortals_.emplace_back(OMVello::sharedOMVello().connection());
  mortals_.emplace_back(phone_->facade);
}

void OrderedFlow::check() const {
  for (const auto& host : hosts_) {
    EXPECT_LE(host->heard.size(), 1U);
  }
  if (!hosts_.back()->heard.empty()) {
    EXPECT_EQ(phone_->host.topController(), phone_->host.root()) << "the flow is over";
    EXPECT_FALSE(phone_->busy());
  }
  for (const auto& [name, screen] : former_) {
    EXPECT_NE(phone_->host.topController(), screen.lock()) << name << " of the former flow";
  }
  checkMore();
  const std::size_t sent = phone_->wallet.asked("/purchase") + phone_->wallet.asked("/auth3Ds");
  EXPECT_LE(sent, wanted_);
  // What the user wanted may still be on its way when he leaves, and is not sent any more then.
  EXPECT_TRUE(sent == wanted_ || !goesOn() || hosts_.size() > 1);
}

void OrderedFlow::leave() {
  answers_->letAllGo();
  phone_->host.runFor(100s);
  for (auto top = phone_->host.topController(); top != phone_->host.root();
       top = phone_->host.topController()) {
    if (const auto alert = std::dynamic_pointer_cast<AlertController>(top)) {
      noteGivenUp(alert);
      alert->press(0);
    } else if (top->identifier() == "Waiting") {
      break;
    } else {
      top->performAction(top->hasAction("cancelAction") ? "cancelAction"
                         : top->hasAction("back")       ? "back"
                                                        : "DoneClicked");
    }
    phone_->host.runFor(100s);
  }
  check();
  EXPECT_TRUE(endsInSilence_ || hosts_.back()->heard.size() == 1U);
}

void OrderedFlow::end() {
  std::vector<Heard> heard;
  for (const auto& host : hosts_) {
    heard.push_back(host->heard);
  }
  mustStay_.reset();
  const SteadyTime before = phone_->host.clock().steadyNow();
  phone_->host.shutdown();
  EXPECT_EQ(phone_->host.clock().steadyNow(), before) << "at once, whatever waits";
  EXPECT_EQ(phone_->host.connections().underWay(), 0U);
  EXPECT_EQ(phone_->host.world().threadCount(), 0U);
  phone_.reset();
  for (std::size_t i = 0; i < hosts_.size(); ++i) {
    EXPECT_EQ(hosts_[i]->heard, heard[i]);
    EXPECT_EQ(hosts_[i].use_count(), 1);
  }
  for (const auto& mortal : mortals_) {
    EXPECT_TRUE(mortal.expired());
  }
}

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kLeftOut = 1;  // a sanitizer's build is ten times slower
#else
constexpr std::size_t kLeftOut = 0;
#endif

/// The walk through one flow; an order is the row of the events' places in the flow's list.
struct Walk {
  const BeginFlow& begin;
  std::size_t depth;
  std::size_t orders = 0;
  std::vector<std::size_t> order = {};

  void visit() {
    std::vector<std::size_t> next;
    {
      const auto flow = begin({});
      std::string told;
      for (const std::size_t event : order) {
        told += flow->events()[event].name + ", ";
      }
      SCOPED_TRACE(told);
      for (const std::size_t event : order) {
        flow->happen(flow->events()[event]);
      }
      if (order.size() == depth) {
        flow->leave();
      } else {
        for (std::size_t event = 0; event < flow->events().size(); ++event) {
          if (flow->events()[event].possible()) {
            next.push_back(event);
          }
        }
      }
      flow->end();
      ++orders;
    }
    for (const std::size_t event : next) {
      if (!testing::Test::HasFailure()) {
        order.push_back(event);
        visit();
        order.pop_back();
      }
    }
  }
};

}  // namespace

void walkEveryOrder(const std::string& name, std::size_t depth, const BeginFlow& begin) {
  Walk walk{begin, depth - kLeftOut};
  walk.visit();
  std::cout << walk.orders << " orders of " << name << "\n";
  testing::Test::RecordProperty("orders", std::to_string(walk.orders));
}

void meetAtOnce(const std::vector<std::string>& events, const BeginFlow& begin) {
  const auto scenario = [&](const Chooser& chooser, bool preemptive) {
    const auto open = std::make_shared<bool>(false);
    const auto flow =
        begin({.chooser = [=](std::size_t count) { return *open ? chooser(count) : 0; },
               .preemptive = preemptive});
    *open = true;
    flow->happenAtOnce(events);
    flow->leave();
    flow->end();
  };
  Interleavings search({.depth = 4});
  search.run([&](const Chooser& chooser) {
    SCOPED_TRACE(search.choices());
    scenario(chooser, false);
  });
  EXPECT_TRUE(search.complete());
  for (unsigned seed = 0; seed < 50; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 lot(seed);
    scenario([&lot](std::size_t count) { return lot() % count; }, true);
  }
}

}  // namespace orlix::test
