// SPDX-License-Identifier: Apache-2.0

#include <gmock/gmock.h>

#include "orlixkit/ui/TableView.h"
#include "orlixkit/widgets/DropDownPicker.h"
#include "tests/shop/ShopInMemory.h"

namespace orlix::shop {
namespace {

using std::chrono::seconds;
using testing::HasSubstr;
using testing::Not;

/// One of everything that a script can touch.
class ToyScreen : public ViewController, public TextFieldDelegate, public TableViewDataSource {
 public:
  ToyScreen() {
    hiddenGroup->setHidden(true);
    disabledButton->setEnabled(false);
    pinField->setSecure(true);
    pickerField->setDelegate(this);
    DropDownPicker::attach(accountField, {"Savings", "Current"});
    table->setDataSource(this);
    button->onTouchUpInside = [this] { did.emplace_back("button"); };
    disabledButton->onTouchUpInside = button->onTouchUpInside;
    hiddenButton->onTouchUpInside = button->onTouchUpInside;
    link->onTap = [this] { did.emplace_back("link"); };
    action("maskAction", [] {
      Host::current().application().progressIndicator().show("Please wait", ProgressMask::gradient);
    });
    action("laterAction", [this] {
      MainQueue& queue = *Host::current().ports().mainQueue;
      queue.async([this, &queue] { queue.async([this] { label->setText("later"); }); });
    });
    action("alertAction", [this] {
      auto alert = std::make_shared<AlertController>("Warning", "Careful");
      alert->addAction({"Ok", AlertActionStyle::cancel, [this] { did.emplace_back("ok"); }});
      present(alert, true);
    });
  }

  bool textFieldShouldBeginEditing(TextField& touched) override {
    return &touched != pickerField.get();
  }
  std::size_t numberOfRows() override { return 2; }
  TableCell cellForRow(std::size_t row) override {
    TableCell cell;
    cell.text = row == 0 ? "first" : "12";
    if (row == 0) {
      cell.button = std::make_shared<Button>();
      cell.button->onTouchUpInside = [this] { did.emplace_back("bin"); };
    }
    return cell;
  }
  void didSelectRow(std::size_t row) override { did.push_back("row " + std::to_string(row)); }

  std::vector<std::string> did;
  std::shared_ptr<View> hiddenGroup = outlet<View>("hiddenGroup");
  std::shared_ptr<Button> button = outlet<Button>("button");
  std::shared_ptr<Button> disabledButton = outlet<Button>("disabledButton");
  std::shared_ptr<Button> hiddenButton = outlet<Button>("hiddenButton", hiddenGroup);
  std::shared_ptr<Label> link = outlet<Label>("link");
  std::shared_ptr<Label> label = outlet<Label>("label");
  std::shared_ptr<TextField> field = outlet<TextField>("field");
  std::shared_ptr<TextField> pinField = outlet<TextField>("pinField");
  std::shared_ptr<TextField> pickerField = outlet<TextField>("pickerField");
  std::shared_ptr<TextField> accountField = outlet<TextField>("accountField");
  std::shared_ptr<TableView> table = outlet<TableView>("table");
};

class ScriptRun : public testing::Test {
 protected:
  ScriptRun() {
    toy->setIdentifier("Toy");
    Host::current().application().keyWindow->rootViewController()->present(toy, false);
  }

  ShopInMemory shop;
  std::shared_ptr<ToyScreen> toy = std::make_shared<ToyScreen>();
};

TEST_F(ScriptRun, ATouchDoesWhatAFingerWouldDo) {
  EXPECT_EQ(shop.run("tap button\ntap link\nrow table 1\nrow table \"12\"\nrow table 0 delete\n"
                     "pick accountField Current\ntap field\nexpect accountField Current\n"
                     "tap alertAction\nwait alert Warning Careful\nbutton Ok\ntap button"),
            "");
  EXPECT_THAT(toy->did,
              testing::ElementsAre("button", "link", "row 1", "row 1", "bin", "ok", "button"));
  EXPECT_TRUE(toy->field->editing());
}

TEST_F(ScriptRun, ATouchComesAfterAllThatTheMainQueueHolds) {
  // Put there by a port that knows nothing of the shop.
  shop.phone().mainQueue().async([this] { toy->did.emplace_back("fix"); });
  EXPECT_EQ(shop.run("tap button\ntap laterAction\nexpect label later"), "");
  EXPECT_THAT(toy->did, testing::ElementsAre("fix", "button"));
}

TEST_F(ScriptRun, WhatNoFingerCouldDoIsRefusedWithTheReason) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"tap hiddenButton", "hiddenButton on the screen Toy is hidden"},
      {"tap disabledButton", "disabledButton is disabled"},
      {"tap label", "label does not listen to taps"},
      {"tap nothing", "no outlet and no action nothing on the screen Toy"},
      {"type label x", "is no text field"},
      {"type pickerField x", "takes no keys"},
      {"type accountField x", "has a drop-down"},
      {"pick field Savings", "field has no drop-down"},
      {"pick accountField Gold", "has no entry \"Gold\""},
      {"row table 2", "table has no row 2; it has 2 rows"},
      {"row table second", "table has no row \"second\""},
      {"row table 1 delete", "row 1 of table has no button"},
      {"button Ok", "no alert is shown"},
      {"expect nothing x", "there is no outlet nothing"},
      {"expect-shown hiddenButton", "hiddenButton is hidden"},
      {"expect-hidden button", "button is shown"},
      {"snapshot one", "needs the drawn shell"},
      {"page wait form", "needs the drawn shell"},
      {"tap alertAction\ntap button", "the alert \"Warning\" covers the screen: Careful"},
      {"button Cancel", "the alert \"Warning\" has no button \"Cancel\"; it has \"Ok\""},
      {"button Ok\ntap maskAction\ntap button",
       "line 3: the progress indicator \"Please wait\" holds touches back"},
      {"type field x", "holds touches back"},
  };
  for (const auto& [script, reason] : rows) {
    EXPECT_THAT(shop.run(script), HasSubstr(reason)) << script;
  }
  EXPECT_THAT(toy->did, testing::ElementsAre("ok"));
}

TEST_F(ScriptRun, ASecureFieldIsComparedButNeverPrinted) {
  EXPECT_EQ(shop.run("type pinField 4711\nexpect pinField 4711\ndump"), "");
  EXPECT_EQ(shop.run("expect pinField 0815"), "line 1: pinField does not hold the expected text");
  for (const char* secret : {"4711", "0815"}) {
    EXPECT_THAT(shop.lines() + shop.progress(), Not(HasSubstr(secret)));
  }
}

TEST_F(ScriptRun, AWaitInVainEndsAfterNinetySecondsAndSaysWhatIsShown) {
  const SteadyTime begun = shop.phone().clock().steadyNow();
  EXPECT_EQ(shop.run("wait screen Elsewhere"),
            "line 1: waited 90 s for the screen Elsewhere in vain; the screen Toy is shown");
  EXPECT_EQ(shop.phone().clock().steadyNow() - begun, seconds(90));
  EXPECT_THAT(shop.progress(), HasSubstr("waiting for the screen Elsewhere, 85 s of 90 s"));
}

TEST_F(ScriptRun, AnAlertDoesNotHideItsScreenFromAWait) {
  EXPECT_EQ(shop.run("tap alertAction\nwait alert Warning\nwait screen Toy"), "");
  EXPECT_THAT(shop.run("wait alert Warning Other"), HasSubstr("\"Warning\" is shown: Careful"));
}

TEST(ScriptRunOfAFlow, TakesEachOutcomeOnceAndFailsAtOnceOnAnother) {
  ShopInMemory shop;
  const std::string leave =
      "checkout C\nwait screen Waiting\nwait alert \"Connection problem\"\nbutton Cancel\n";
  EXPECT_EQ(shop.run(leave + "wait outcome orlixUserDidCancel\nexpect-no-outcome 30"), "");
  EXPECT_EQ(shop.run(leave + "wait outcome orlixError 4"),
            "line 5: the outcome is orlixUserDidCancel, not orlixError 4");
  EXPECT_EQ(shop.run(leave + "expect-no-outcome 1"), "line 5: an outcome came: orlixUserDidCancel");
  EXPECT_THAT(shop.lines(),
              HasSubstr("{\"event\":\"screen\",\"id\":\"Waiting\"}\n"
                        "{\"event\":\"alert\",\"title\":\"Connection problem\",\"message\":"
                        "\"Please check your network connection and try again.\",\"buttons\":"
                        "[\"Cancel\",\"Retry\"]}\n"
                        "{\"event\":\"outcome\",\"callback\":\"orlixUserDidCancel\","
                        "\"argument\":null}\n"));
}

}  // namespace
}  // namespace orlix::shop
