// SPDX-License-Identifier: Apache-2.0

// The testing kit reports alerts, segues and hidden outlets that their screen does not declare.

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "orlixkit/testing/DeclarationCheck.h"
#include "orlixkit/testing/MemoryHost.h"

namespace orlix {
namespace {

class DeclaringScreen : public ViewController {
 public:
  DeclaringScreen() {
    setIdentifier("Form");
    static constexpr AlertText kAlerts[] = {{"Warning", "Too short"},
                                            {"Error", "It says \"<reason>\"."},
                                            {"Delete", "Sure?", "Cancel, Delete"}};
    static constexpr const char* kSegues[] = {"Next"};
    static constexpr HidingRule kHiding[] = {{"group", "nothing is in it"}};
    declare({.alerts = kAlerts, .segues = kSegues, .hiding = kHiding});
  }

  std::shared_ptr<View> group = outlet<View>("group");
  std::shared_ptr<View> inside = outlet<View>("inside", group);
  std::shared_ptr<View> beside = outlet<View>("beside");
};

constexpr AlertText kOfAnyScreen[] = {{"Connection problem", "Try again", "Cancel, Retry"}};
constexpr AlertText kBefore[] = {{"Notice", "<text>"}};

class Declaration : public testing::Test, private UiObserver {
 protected:
  Declaration() {
    host.application().setObserver(this);
    host.application().storyboard().alertsOfAnyScreen = kOfAnyScreen;
    host.application().storyboard().alertsBeforeScreens = kBefore;
  }
  ~Declaration() override { host.application().setObserver(nullptr); }

  void present(const std::shared_ptr<ViewController>& on,
               const std::shared_ptr<ViewController>& presented) {
    on->present(presented, false);
    host.runUntilIdle();
  }
  void didPresent(const std::shared_ptr<ViewController>& controller) override {
    complaint = check.complaintAbout(controller);
  }

  MemoryHost host;
  std::shared_ptr<DeclaringScreen> form = std::make_shared<DeclaringScreen>();
  DeclarationCheck check;
  std::string complaint;
};

std::shared_ptr<AlertController> alertOf(const std::string& title, const std::string& message,
                                         const std::vector<std::string>& buttons) {
  auto alert = std::make_shared<AlertController>(title, message);
  for (const std::string& button : buttons) {
    alert->addAction({button, AlertActionStyle::standard, {}});
  }
  return alert;
}

TEST_F(Declaration, OfAnAlertNamesTitleMessageAndButtons) {
  struct Row {
    std::string title, message;
    std::vector<std::string> buttons;
    bool isDeclared;
  };
  present(host.root(), form);
  for (const auto& [title, message, buttons, isDeclared] :
       std::vector<Row>{{"Warning", "Too short", {"Ok"}, true},
                        {"Error", "It says \"no\".", {"Ok"}, true},
                        {"Delete", "Sure?", {"Cancel", "Delete"}, true},
                        {"Connection problem", "Try again", {"Cancel", "Retry"}, true},
                        {"Notice", "New", {"Ok"}, false},
                        {"Error", "Too short", {"Ok"}, false},
                        {"Warning", "Too short.", {"Ok"}, false},
                        {"Error", "It says \"no\"!", {"Ok"}, false},
                        {"Error", "It says \".", {"Ok"}, false},
                        {"Warning", "Too short", {"Cancel"}, false},
                        {"Delete", "Sure?", {"Delete", "Cancel"}, false}}) {
    const auto alert = alertOf(title, message, buttons);
    present(form, alert);
    EXPECT_EQ(complaint.empty(), isDeclared) << title << ": " << message << "; " << complaint;
    alert->press(0);
    host.runUntilIdle();
  }
}

TEST_F(Declaration, OfAnAlertHoldsUnderAnotherAlertButNotOnAnotherScreen) {
  present(host.root(), form);
  const auto first = alertOf("Warning", "Too short", {"Ok"});
  present(form, first);
  present(first, alertOf("Error", "It says \"no\".", {"Ok"}));
  EXPECT_EQ(complaint, "");
  host.root()->dismiss(false);
  present(host.root(), alertOf("Warning", "Too short", {"Ok"}));
  EXPECT_EQ(complaint, "the alert \"Warning: Too short\" (Ok) is not declared by the screen \"\"");
  host.root()->dismiss(false);
  present(host.root(), alertOf("Notice", "New", {"Ok"}));
  EXPECT_EQ(complaint, "");
}

TEST_F(Declaration, OfASegueIsNeededWhereAScreenPresentsAnother) {
  present(host.root(), form);
  EXPECT_EQ(complaint, "");
  for (const auto& [name, expected] : std::vector<std::pair<std::string, std::string>>{
           {"Next", ""},
           {"", ""},
           {"Elsewhere", "the segue \"Elsewhere\" is not declared by the screen \"Form\""}}) {
    const auto screen = std::make_shared<ViewController>();
    screen->setIdentifier(name);
    present(form, screen);
    EXPECT_EQ(complaint, expected);
    form->dismiss(false);
  }
}

TEST_F(Declaration, OfAHiddenGroupCoversWhatIsInside) {
  form->inside->setHidden(true);
  EXPECT_EQ(DeclarationCheck::undeclaredHiding(*form), "");
  form->beside->setHidden(true);
  EXPECT_EQ(DeclarationCheck::undeclaredHiding(*form),
            "beside of the screen \"Form\" is hidden, and it is not declared when");
}

}  // namespace
}  // namespace orlix
