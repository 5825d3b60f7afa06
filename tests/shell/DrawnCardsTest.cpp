// SPDX-License-Identifier: Apache-2.0

// The brand of a typed card number, and the mark of the selected card.

#include "tests/shell/DrawnPhone.h"

namespace orlix::shell {
namespace {

TEST(DrawnCards, TheBrandIsShownByTheDigitsThatHaveBeenTypedWithoutARequest) {
  DrawnPhone phone;
  phone.startSession();
  phone.open("AddCard");
  const std::size_t requests = phone.phone.wallet.asked("");
  const auto brand = [&] {
    const QQuickItem& picture = phone.item("cardNumberField.brand");
    return picture.isVisible() ? picture.property("source").toString().toStdString() : "";
  };
  const std::pair<const char*, const char*> rows[] = {{"", ""},
                                                      {"4", "image://orlix/visa100"},
                                                      {"5000", "image://orlix/orbis100"},
                                                      {"3", ""},
                                                      {"37", "image://orlix/america_express100"},
                                                      {"6", ""}};
  for (const auto& [digits, picture] : rows) {
    for (int i = 0; i < 5; ++i) {
      phone.key(Qt::Key_Backspace);
    }
    phone.keys(digits);
    EXPECT_EQ(brand(), picture) << digits;
  }
  EXPECT_EQ(phone.phone.wallet.asked(""), requests);
}

TEST(DrawnCards, TheChosenCardIsMarkedInTheList) {
  DrawnPhone phone;
  phone.startSession();
  const auto marked = [&] {
    phone.open("Cards");
    return phone.item("tableView.row0.mark").isVisible()   ? 0
           : phone.item("tableView.row1.mark").isVisible() ? 1
                                                           : -1;
  };
  EXPECT_EQ(marked(), 0);
  phone.touch("tableView.row1");
  EXPECT_EQ(phone.screen(), "Product");
  EXPECT_EQ(marked(), 1);
}

}  // namespace
}  // namespace orlix::shell
