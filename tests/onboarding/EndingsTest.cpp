#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/ui/TableView.h"
#include "tests/onboarding/Flow.h"

namespace orlix {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

struct Ending {
  std::string name;
  std::function<void(Flow&)> reach;  ///< up to the last tap, that included
  Calls expected;
};

void tap(Flow& flow, const std::string& name) { flow.host.topController()->performAction(name); }

void relinkInPreRegistration(Flow& flow) {
  flow.answer("/card/link/", Answers::kRelink);
  flow.beginAddCard(Entry::preRegister);
  flow.proceedWithCard();
  flow.host.runUntilScreen("MsisdnRelink");
  flow.answer("/card/link/", Answers::kLinked);
  tap(flow, "proceedAction");
}

void declineTerms(Flow& flow) {
  flow.answer("/session/new", Answers::kNewTerms);
  flow.answer("/lookup/", "{}", seconds(30));
  flow.begin(Entry::checkout, "TermsAndConditionChange", "");
  tap(flow, "declineAction");
}

const std::vector<Ending>& endings() {
  static const std::vector<Ending> kEndings{
      {"cancel on the number",
       [](Flow& flow) {
         flow.answer("/session/new", Answers::kNotActivated);
         flow.begin(Entry::checkout, "Activation", "");
         tap(flow, "cancelAction");
       },
       {"cancelled"}},
      {"cancel on the code",
       [](Flow& flow) {
         flow.beginEnrolment(Entry::checkout);
         tap(flow, "cancelAction");
       },
       {"cancelled"}},
      {"enrolled for pre-registration, with a card",
       [](Flow& flow) {
         flow.beginEnrolment(Entry::preRegister);
         tap(flow, "proceedAction");
       },
       {"registered"}},
      {"enrolled for a code that asks for a tip",
       [](Flow& flow) {
         flow.answer("/lookup/", R"({"codeInfo":{"code":"C","requestTip":true}})");
         flow.beginEnrolment(Entry::checkout);
         tap(flow, "proceedAction");
       },
       {"error 4"}},
      {"cancel of the form in pre-registration",
       [](Flow& flow) {
         flow.beginAddCard(Entry::preRegister);
         tap(flow, "cancelAction");
       },
       {"cancelled"}},
      {"a card linked in pre-registration",
       [](Flow& flow) {
         flow.beginAddCard(Entry::preRegister);
         flow.proceedWithCard();
       },
       {"registered"}},
      {"a card confirmed in pre-registration", relinkInPreRegistration, {"registered"}},
      {"the wallet closed",
       [](Flow& flow) {
         flow.begin(Entry::wallet, "WalletManagement", "");
         tap(flow, "DoneClicked");
       },
       {"completed"}},
      {"changed terms declined", declineTerms, {"cancelled"}},
      {"no code information after the enrolment: a path without a callback",
       [](Flow& flow) {
         flow.answer("/lookup/", "{}");
         flow.beginEnrolment(Entry::checkout);
         tap(flow, "proceedAction");
       },
       {}},
  };
  return kEndings;
}

TEST(Ending, MakesOneCallbackAfterEveryScreenIsGone) {
  for (const Ending& ending : endings()) {
    Flow flow;
    ending.reach(flow);
    const auto last = flow.host.topController();
    flow.host.runFor(seconds(100));
    EXPECT_EQ(flow.application->calls, ending.expected) << ending.name;
    if (ending.expected.empty()) {
      continue;
    }
    EXPECT_EQ(flow.host.topController(), flow.host.root()) << ending.name;
    EXPECT_FALSE(flow.indicatorIsUp()) << ending.name;
    for (const std::string& action : last->actionNames()) {
      last->performAction(action);
    }
    flow.host.runFor(seconds(100));
    EXPECT_EQ(flow.application->calls, ending.expected) << ending.name << ", tapped once more";
    EXPECT_EQ(flow.host.topController(), flow.host.root()) << ending.name;
  }
}

TEST(Ending, ComesOnceThoughTheLastTapIsMadeTwice) {
  for (const Ending& ending : endings()) {
    Flow flow;
    ending.reach(flow);
    const auto top = flow.host.topController();
    for (const char* action : {"proceedAction", "cancelAction", "DoneClicked", "declineAction"}) {
      if (top->hasAction(action)) {
        top->performAction(action);
      }
    }
    flow.host.runFor(seconds(100));
    EXPECT_LE(flow.application->calls.size(), 1U) << ending.name;
  }
}

TEST(Ending, OfAReplacedFlowReachesNeitherHostTwice) {
  for (const Ending& ending : endings()) {
    Flow flow;
    ending.reach(flow);
    const auto replaced = flow.application;
    const Calls before = replaced->calls;
    flow.application = std::make_shared<RecordingHost>();
    flow.answer("/session/new", Answers::kSession);
    flow.setCards({cardJson(5, "0005")});
    flow.begin(Entry::wallet);
    flow.host.runFor(seconds(100));
    // A return that was under way is owed to its host; nothing else is.
    EXPECT_TRUE(replaced->calls.empty() || replaced->calls == ending.expected) << ending.name;
    EXPECT_EQ(flow.application->calls, Calls{}) << ending.name;
    EXPECT_EQ(flow.screen(), "WalletManagement") << ending.name;
    tap(flow, "DoneClicked");
    flow.host.runFor(seconds(100));
    EXPECT_EQ(flow.application->calls, Calls{"completed"}) << ending.name;
  }
}

/// A user who does something now and then, whatever is on the screen, and a server that answers now
/// and then; one seed is one story.
class Story {
 public:
  explicit Story(unsigned seed)
      : random_(seed),
        flow_({.chooser = [this](std::size_t n) { return pick(n); },
               .timeCompetes = seed % 2 == 1,
               .preemptive = seed % 3 == 0}) {
    letTheServerWaver();
  }

  void play() {
    enter();
    for (int i = 0; i < 40; ++i) {
      flow_.host.later(milliseconds(pick(20'000)), [this] { doSomething(); });
    }
    flow_.host.runFor(seconds(300));
    letTheServerAnswer();
    leave();
  }

  const std::vector<std::shared_ptr<RecordingHost>>& applications() const { return applications_; }
  bool endsWithoutACallback() const { return silent_; }
  std::string told() const { return told_; }

 private:
  std::size_t pick(std::size_t n) { return static_cast<std::size_t>(random_() % n); }

  void enter() {
    flow_.application = std::make_shared<RecordingHost>();
    applications_.push_back(flow_.application);
    flow_.begin(static_cast<Entry>(pick(3)), pick(2) == 0 ? "" : "0821234567");
    told_ += " enter";
  }

  void letTheServerWaver() {
    const std::vector<std::pair<std::string, std::vector<std::string>>> answers{
        {"/session/new", {Answers::kSession, Answers::kNotActivated, Answers::kNewTerms}},
        {"/sms/", {Answers::kSmsSent, Answers::kSmsSent, Answers::kFailed}},
        {"/card/link/", {Answers::kLinked, Answers::kRelink, Answers::kFailed, "{}"}},
        {"/card/bin/",
         {Answers::kNothingNeeded, R"({"cardSupported":true,"needAccount":true})", "{}"}},
        {"/card/validate/", {R"({"message":"Your card has been added"})", "{}"}},
        {"/card/list/", {R"({"cards":[]})", R"({"cards":[{"cardId":5}]})"}},
        {"/card/delink/", {"{}"}},
        {"/profile/updateTC", {"{}"}},
    };
    for (const auto& [path, bodies] : answers) {
      flow_.host.connections().on(path, [this, bodies = bodies](const RecordedRequest&) {
        ServerReply reply = ServerReply().after(milliseconds(pick(4'000)));
        if (pick(5) == 0) {
          return reply.fail("unreachable");
        }
        return reply.status(200).body(bodies[pick(bodies.size())]);
      });
    }
  }

  void letTheServerAnswer() {
    flow_.answer("/session/new", Answers::kSession);
    flow_.answer("/card/link/", Answers::kLinked);
    flow_.setCards({cardJson(5, "0005")});
  }

  void doSomething() {
    const auto top = flow_.host.topController();
    if (pick(15) == 0) {
      enter();
    } else if (const auto alert = std::dynamic_pointer_cast<AlertController>(top)) {
      told_ += " " + alert->title();
      alert->press(pick(alert->actions().size()));
    } else if (const auto table =
                   std::dynamic_pointer_cast<TableView>(top->outletNamed("tableView"));
               table && table->rowCount() > 0 && pick(2) == 0) {
      told_ += " row";
      const auto button = table->cell(0).button;
      button&& pick(2) == 0 ? button->onTouchUpInside() : table->select(0);
    } else if (!top->actionNames().empty()) {
      fillIn(*top);
      const std::string action = top->actionNames()[pick(top->actionNames().size())];
      told_ += " " + top->identifier() + "." + action;
      // Without asking the indicator's mask: a script may get past it.
      try {
        top->performAction(action);
      } catch (const NetworkException&) {
        told_ += " (failed)";
      }
    }
  }

  static void fillIn(ViewController& screen) {
    const std::map<std::string, std::string> texts{{"msisdnField", "0821234567"},
                                                   {"codeField", "1234"},
                                                   {"cardNumberField", "4000123412341234"},
                                                   {"cardHolderField", "A N Other"},
                                                   {"dateOfBirthField", "31121999"}};
    for (const auto& [name, text] : texts) {
      if (const auto field = std::dynamic_pointer_cast<TextField>(screen.outletNamed(name))) {
        field->setText(text);
      }
    }
  }

  /// Presses the first button of every alert and goes back from every screen.
  void leave() {
    static const std::vector<std::string> kWaysOut{"DoneClicked", "declineAction", "backAction",
                                                   "cancelAction", "back"};
    for (int i = 0; i < 30; ++i) {
      flow_.host.runFor(seconds(100));
      const auto top = flow_.host.topController();
      if (top == flow_.host.root()) {
        return;
      }
      if (const auto alert = std::dynamic_pointer_cast<AlertController>(top)) {
        alert->press(0);
        continue;
      }
      if (top->identifier() == "Waiting") {
        silent_ = true;
        return;
      }
      for (const std::string& action : kWaysOut) {
        const bool endsEditingOnly =
            action == "DoneClicked" && top->identifier() != "WalletManagement";
        if (top->hasAction(action) && !endsEditingOnly) {
          told_ += " " + top->identifier() + "." + action;
          top->performAction(action);
          break;
        }
      }
    }
    ADD_FAILURE() << "no way out:" << told_;
  }

  std::mt19937 random_;
  Flow flow_;
  std::vector<std::shared_ptr<RecordingHost>> applications_;
  bool silent_ = false;
  std::string told_;
};

TEST(Ending, ComesExactlyOnceInWhateverOrderTapsAlertsAndAnswersCome) {
  std::size_t ended = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    Story story(seed);
    story.play();
    const auto& applications = story.applications();
    for (const auto& application : applications) {
      EXPECT_LE(application->calls.size(), 1U) << "seed " << seed << ":" << story.told();
    }
    if (!story.endsWithoutACallback()) {
      EXPECT_EQ(applications.back()->calls.size(), 1U) << "seed " << seed << ":" << story.told();
      ++ended;
    }
  }
  EXPECT_GT(ended, 200U) << "most stories must come to an end for this test to say anything";
}

}  // namespace
}  // namespace orlix
