// SPDX-License-Identifier: Apache-2.0

// Keyboard operation: the initial focus, Enter and Escape.

#include "tests/shell/DrawnPhone.h"

namespace orlix::shell {
namespace {

TEST(Focus, IsOnTheFirstFieldThatTakesKeysAndEnterMovesOnToTheMainButton) {
  struct Row {
    const char* screen;
    std::vector<std::string> fields;  ///< in the order in which Enter moves the focus
  };
  const Row rows[] = {{"Product", {"inputAmountField", "cvvField", "pinField"}},
                      {"Activation", {"msisdnField"}},
                      {"ActivationCode", {"codeField"}},
                      {"MsisdnRelink", {"msisdnField"}},
                      {"AddCard",
                       {"cardNumberField", "cardHolderField", "expiryDateField", "dateOfBirthField",
                        "cardAccountField"}},
                      {"Cards", {}},
                      {"TermsAndConditionChange", {}}};
  DrawnPhone phone;
  phone.startSession();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.screen);
    const auto screen = phone.open(row.screen);
    std::vector<std::string> visited;
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
      visited.push_back(phone.focus());
      if (i + 1 < row.fields.size()) {
        const auto field = std::dynamic_pointer_cast<TextField>(screen->outletNamed(phone.focus()));
        ASSERT_NE(field, nullptr) << "no field is in focus";
        EXPECT_TRUE(field->editing());
        phone.key(Qt::Key_Return);
      }
    }
    EXPECT_EQ(visited, row.fields);
    EXPECT_EQ(phone.phone.alert(), "");
  }
}

TEST(Focus, EnterInTheLastFieldPaysAndLeavesAChosenAccountAside) {
  DrawnPhone phone;
  phone.startSession();
  for (const char* const screen : {"Product", "AddCard"}) {
    SCOPED_TRACE(screen);
    const auto shown = phone.open(screen);
    if (const auto account = shown->outletNamed("cardAccountField")) {
      std::static_pointer_cast<TextField>(account)->setText("Current");
    }
    for (int i = 0; i < 4 && phone.phone.alert().empty(); ++i) {
      phone.key(Qt::Key_Enter);
    }
    EXPECT_TRUE(phone.phone.alert().starts_with("Warning")) << phone.phone.alert();
    phone.key(Qt::Key_Escape);
    EXPECT_EQ(phone.phone.alert(), "");
  }
}

TEST(Focus, KeysReachTheFieldAtOnceAlsoAfterAMask) {
  DrawnPhone phone;
  phone.startSession();
  phone.phone.indicator().show("Busy", ProgressMask::gradient);
  const auto screen = phone.open("ActivationCode");
  phone.phone.indicator().show("Busy", ProgressMask::gradient);
  phone.settle();
  phone.keys("1");
  EXPECT_EQ(screen->outletNamed("codeField")->shownText(), "");
  phone.phone.indicator().dismiss();
  phone.settle();
  phone.keys("23");
  EXPECT_EQ(screen->outletNamed("codeField")->shownText(), "23");
}

/// Opacity of the control of this name: below 1 while it is disabled.
bool looksDisabled(DrawnPhone& phone, const std::string& name) {
  double opacity = 1;
  const QQuickItem* const item = &phone.item(name.c_str());
  findItem(*const_cast<QQuickItem*>(item), [&](const QQuickItem& part) {
    opacity = part.opacity() > 0 ? std::min(opacity, part.opacity()) : opacity;
    return false;
  });
  return opacity < 0.6;
}

TEST(Controls, LookDisabledWhileTheyAre) {
  struct Row {
    const char* screen;
    std::vector<const char*> controls;
  };
  const Row rows[] = {
      {"Product",
       {"cardView", "cvvField", "pinField", "inputAmountField", "cancelAction", "proceedButton"}},
      {"Activation", {"countryCodeField", "msisdnField", "descriptionLabel", "proceedButton"}},
      {"AddCard", {"cardNumberField", "cardAccountField", "cancelButton"}},
      {"Cards", {"tableView.row0", "addCardButton"}},
      {"WalletManagement", {"cardView", "doneButton"}},
      {"SecureCode", {}}};
  DrawnPhone phone;
  phone.startSession();
  for (const Row& row : rows) {
    const auto screen = phone.open(row.screen);
    for (const char* const name : row.controls) {
      SCOPED_TRACE(name);
      EXPECT_FALSE(looksDisabled(phone, name));
      if (const auto field = std::dynamic_pointer_cast<TextField>(screen->outletNamed(name))) {
        field->setEnabled(false);
        EXPECT_TRUE(looksDisabled(phone, name));
        field->setEnabled(true);
      }
      if (const auto button = std::dynamic_pointer_cast<Button>(screen->outletNamed(name))) {
        button->setEnabled(false);
        EXPECT_TRUE(looksDisabled(phone, name));
        button->setEnabled(true);
      }
    }
    phone.phone.indicator().show("Busy", ProgressMask::gradient);
    phone.settle();
    for (const char* const name : row.controls) {
      EXPECT_TRUE(looksDisabled(phone, name)) << name << " under the mask";
    }
    phone.phone.indicator().dismiss();
    phone.settle();
  }
}

}  // namespace
}  // namespace orlix::shell
