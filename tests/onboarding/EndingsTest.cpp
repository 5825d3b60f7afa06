// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/ui/TextField.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

namespace {

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
    const auto last = phone.host.topController();
    phone.act(ending.lastTap);
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
    for (const std::string& outlet : last->outletNames()) {
      if (const auto field = std::dynamic_pointer_cast<TextField>(last->outletNamed(outlet))) {
        field->beginEditing();
      }
    }
    EXPECT_EQ(last->presentedViewController(), nullptr);
    phone.host.runFor(100s);
    EXPECT_EQ(phone.app->heard, ending.expected) << "tapped once more";
    EXPECT_EQ(phone.host.topController(), phone.host.root());
  }
}

}  // namespace
}  // namespace orlix::test
