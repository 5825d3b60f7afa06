#include <random>

#include "orlixkit/platform/ui/TableView.h"
#include "orlixkit/records/Failures.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

using std::chrono::milliseconds;

struct Ending {
  std::string name;
  std::function<void(Phone&)> reach;
  std::string lastTap;
  Heard expected;
};

void askToRelink(Phone& phone) {
  phone.wallet.next("/card/link/", ok(answers::kRelink));
  phone.beginAddCard(Entry::preRegister);
  phone.proceedWithCard();
  phone.host.runUntilScreen("MsisdnRelink");
}

void askForTerms(Phone& phone) {
  phone.wallet.session = answers::kNewTerms;
  phone.wallet.always("/lookup/", late(30s, "{}"));
  phone.begin(Entry::checkout, "TermsAndConditionChange");
}

/// An enrolment up to its last tap, with this answer to the lookup that follows.
std::function<void(Phone&)> enrolWith(const std::string& lookup) {
  return [lookup](Phone& phone) {
    phone.wallet.always("/lookup/", lookup);
    phone.beginEnrolment(Entry::checkout);
  };
}

void fillInCard(Phone& phone) {
  phone.beginAddCard(Entry::preRegister);
  phone.host.user().replaceAll("cardNumberField", "4000123412341234");
  phone.host.user().replaceAll("cardHolderField", "A N Other");
}

const std::vector<Ending>& endings() {
  const auto number = [](Phone& phone) { phone.beginActivation(Entry::checkout, ""); };
  const auto code = [](Phone& phone) { phone.beginEnrolment(Entry::checkout); };
  const auto codeToRegister = [](Phone& phone) { phone.beginEnrolment(Entry::preRegister); };
  const auto form = [](Phone& phone) { phone.beginAddCard(Entry::preRegister); };
  const auto wallet = [](Phone& phone) { phone.begin(Entry::wallet, "WalletManagement"); };
  const auto withTip = enrolWith(R"({"codeInfo":{"code":"C","requestTip":true}})");
  static const std::vector<Ending> kEndings{
      {"cancel on the number", number, "cancelAction", {"cancelled"}},
      {"cancel on the code", code, "cancelAction", {"cancelled"}},
      {"enrolled, with a card", codeToRegister, "proceedAction", {"registered"}},
      {"enrolled for a code that asks for a tip", withTip, "proceedAction", {"error 4"}},
      {"enrolled for no code: a path without a callback", enrolWith("{}"), "proceedAction", {}},
      {"cancel of the form in pre-registration", form, "cancelAction", {"cancelled"}},
      {"a card linked in pre-registration", fillInCard, "proceedAction", {"registered"}},
      {"a card confirmed in pre-registration", askToRelink, "proceedAction", {"registered"}},
      {"the wallet closed", wallet, "DoneClicked", {"wallet done"}},
      {"changed terms declined", askForTerms, "declineAction", {"cancelled"}},
  };
  return kEndings;
}

TEST(Ending, MakesOneCallbackAfterEveryScreenIsGone) {
  for (const Ending& ending : endings()) {
    SCOPED_TRACE(ending.name);
    Phone phone;
    ending.reach(phone);
    phone.act(ending.lastTap);
    const auto last = phone.host.topController();
    phone.host.runFor(100s);
    EXPECT_EQ(phone.app->heard, ending.expected);
    if (ending.expected.empty()) {
      continue;
    }
    EXPECT_EQ(phone.host.topController(), phone.host.root());
    EXPECT_FALSE(phone.busy());
    for (const std::string& action : last->actionNames()) {
      last->performAction(action);
    }
    phone.host.runFor(100s);
    EXPECT_EQ(phone.app->heard, ending.expected) << "tapped once more";
    EXPECT_EQ(phone.host.topController(), phone.host.root());
  }
}

/// A user who does something now and then, whatever is on the screen, and a server that answers now
/// and then; one seed is one story.
class Story {
 public:
  explicit Story(unsigned seed)
      : random_(seed),
        phone_({.chooser = [this](std::size_t n) { return pick(n); },
                .timeCompetes = seed % 2 == 1,
                .preemptive = seed % 3 == 0}) {
    letTheServerWaver();
  }

  void play() {
    enter();
    for (int i = 0; i < 40; ++i) {
      phone_.host.later(milliseconds(pick(20'000)), [this] { doSomething(); });
    }
    phone_.host.runFor(300s);
    wavers_ = false;
    leave();
  }

  std::vector<std::shared_ptr<HostApp>> applications;
  bool endsWithoutACallback = false;
  std::string told;

 private:
  std::size_t pick(std::size_t n) { return static_cast<std::size_t>(random_() % n); }

  void enter() {
    phone_.app = std::make_shared<HostApp>();
    applications.push_back(phone_.app);
    phone_.begin(static_cast<Entry>(pick(3)), "", pick(2) == 0 ? "" : "0821234567");
    told += " enter";
  }

  void letTheServerWaver() {
    using namespace answers;
    const std::vector<std::pair<std::string, std::vector<std::string>>> bodies{
        {"/session/new", {kSession, kNotActivated, kNewTerms}},
        {"/lookup/",
         {R"({"codeInfo":{"code":"C","amountString":"5.00","amount":"5.00"},)"
          R"("cardList":{"cards":[{"cardId":5,"method":"CNP"}]}})"}},
        {"/sms/", {kSmsSent, kSmsSent, kFailed}},
        {"/card/link/", {kLinked, kRelink, kFailed, "{}"}},
        {"/card/bin/", {kNothingNeeded, R"({"cardSupported":true,"needAccount":true})", "{}"}},
        {"/card/validate/", {kValidated, "{}"}},
        {"/card/list/", {R"({"cards":[{"cardId":5}]})", R"({"cards":[]})"}},
        {"/card/delink/", {"{}"}},
        {"/profile/updateTC", {"{}"}},
    };
    for (const auto& [path, choice] : bodies) {
      phone_.host.connections().on(path, [this, choice = choice](const RecordedRequest&) {
        if (!wavers_) {
          return ok(choice.front());
        }
        ServerReply reply = ServerReply().after(milliseconds(pick(4'000)));
        return pick(5) == 0 ? reply.fail("unreachable")
                            : reply.status(200).body(choice[pick(choice.size())]);
      });
    }
  }

  void doSomething() {
    const auto top = phone_.host.topController();
    const auto table = std::dynamic_pointer_cast<TableView>(top->outletNamed("tableView"));
    if (pick(15) == 0) {
      enter();
    } else if (const auto alert = std::dynamic_pointer_cast<AlertController>(top)) {
      told += " " + alert->title();
      alert->press(pick(alert->actions().size()));
    } else if (table && table->rowCount() > 0 && pick(2) == 0) {
      told += " row";
      const auto button = table->cell(0).button;
      button&& pick(2) == 0 ? button->onTouchUpInside() : table->select(0);
    } else if (!top->actionNames().empty()) {
      fillIn(*top);
      const std::string action = top->actionNames()[pick(top->actionNames().size())];
      told += " " + top->identifier() + "." + action;
      // Without asking the indicator's mask: a script may get past it.
      try {
        top->performAction(action);
      } catch (const NetworkException&) {
        told += " (failed)";
      }
    }
  }

  static void fillIn(ViewController& screen) {
    const std::vector<std::pair<std::string, std::string>> texts{
        {"msisdnField", "0821234567"},
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
    for (int i = 0; i < 30; ++i) {
      phone_.host.runFor(100s);
      const auto top = phone_.host.topController();
      if (top == phone_.host.root()) {
        return;
      }
      if (top->identifier() == "Waiting") {
        endsWithoutACallback = true;
        return;
      }
      if (const auto alert = std::dynamic_pointer_cast<AlertController>(top)) {
        alert->press(0);
        continue;
      }
      for (const std::string action :
           {"DoneClicked", "declineAction", "backAction", "cancelAction", "back"}) {
        const bool endsEditingOnly =
            action == "DoneClicked" && top->identifier() != "WalletManagement";
        if (top->hasAction(action) && !endsEditingOnly) {
          told += " " + top->identifier() + "." + action;
          top->performAction(action);
          break;
        }
      }
    }
    ADD_FAILURE() << "no way out:" << told;
  }

  std::mt19937 random_;
  bool wavers_ = true;
  Phone phone_;
};

TEST(Ending, ComesExactlyOnceInWhateverOrderTapsAlertsAndAnswersCome) {
  std::size_t ended = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    Story story(seed);
    story.play();
    SCOPED_TRACE("seed " + std::to_string(seed) + ":" + story.told);
    for (const auto& application : story.applications) {
      EXPECT_LE(application->heard.size(), 1U);
    }
    if (!story.endsWithoutACallback) {
      EXPECT_EQ(story.applications.back()->heard.size(), 1U);
      ++ended;
    }
  }
  EXPECT_GT(ended, 200U) << "most stories must come to an end for this test to say anything";
}

}  // namespace
}  // namespace orlix::test
