// What is drawn over the host's window, and who gets touches and keys.

#include <QClipboard>
#include <QMetaProperty>
#include <set>

#include "examples/shop/Script.h"
#include "tests/shell/DrawnPhone.h"

namespace orlix::shell {
namespace {

TEST(Presentation, StandsACardInTheMiddleOfTheDimmedHostAndFollowsTheWindow) {
  DrawnPhone phone;
  phone.phone.showPaymentScreen();
  phone.settle();
  const QImage picture = phone.window.grabWindow();
  EXPECT_EQ(picture.pixelColor(3, 3), QColor(153, 153, 153)) << "white under black at 0.4";
  const std::pair<QSize, QRectF> rows[] = {
      {{375, 667}, {37.5, 133.5, 300, 400}},
      {{667, 320}, {183.5, 0, 300, 320}},  // as tall as there is room
      {{1024, 768}, {362, 184, 300, 400}},
      {{280, 500}, {0, 50, 280, 400}}};
  for (const auto& [window, card] : rows) {
    phone.window.resize(window);
    phone.settle();
    EXPECT_EQ(QRectF(phone.content()->position(), phone.content()->size()), card);
  }
  phone.phone.act("cancelAction");
  phone.settle();
  EXPECT_EQ(phone.content(), nullptr);
  EXPECT_EQ(phone.window.grabWindow().pixelColor(3, 3), QColor(Qt::white));
}

TEST(Presentation, ACheckoutNeedsNoMouse) {
  DrawnPhone phone;
  phone.phone.showPaymentScreen();
  phone.settle();
  std::set<std::string> visited;
  for (int i = 0; i < 12; ++i) {
    phone.key(Qt::Key_Tab);
    ASSERT_TRUE(phone.content()->isAncestorOf(phone.window.activeFocusItem())) << "step " << i;
    visited.insert(phone.focus());
  }
  EXPECT_EQ(visited,
            (std::set<std::string>{"cardView", "pinField", "cancelAction", "proceedButton"}));
  while (phone.focus() != "pinField") {
    phone.key(Qt::Key_Backtab);
  }
  phone.key(Qt::Key_Return);
  EXPECT_EQ(phone.phone.alert(), "Warning: Enter ATM PIN");
  phone.key(Qt::Key_Return);
  EXPECT_EQ(phone.phone.alert(), "");
  EXPECT_EQ(phone.focus(), "pinField") << "where it was";
  phone.keys("1234");
  phone.key(Qt::Key_Enter);
  phone.phone.runUntilOutcome();
  EXPECT_EQ(phone.phone.app->heard, (test::Heard{"succeeded 9007199254740993"}));
  phone.settle();
  EXPECT_EQ(phone.window.activeFocusItem(), phone.hostField.get());

  phone.phone.begin(test::Entry::checkout, "Product");
  phone.settle();
  const std::weak_ptr<ViewController> screen = phone.phone.host.topController();
  phone.key(Qt::Key_Escape);
  EXPECT_EQ(phone.phone.app->heard.back(), "cancelled");
  EXPECT_TRUE(screen.expired()) << "nothing is left of it";
}

TEST(Presentation, AFieldShowsWhatItsDelegateMakesOfTheKeys) {
  DrawnPhone phone;
  phone.phone.wallet.codeInfo = R"({"code":"C-1","merchantName":"Corner Shop","currency":"R"})";
  phone.phone.showPaymentScreen();
  phone.settle();
  phone.touch("inputAmountField");
  phone.keys("125");
  EXPECT_EQ(phone.phone.shown("inputAmountField"), "1.25");
  phone.key(Qt::Key_Backspace);
  const QQuickItem* const input = findItem(phone.item("inputAmountField"), [](const auto& item) {
    return item.inherits("QQuickTextInput");
  });
  EXPECT_EQ(input->property("text").toString(), "0.12");
  EXPECT_TRUE(input->property("inputMethodHints").toInt() & Qt::ImhDigitsOnly);
}

/// Every text that an object of the scene holds.
std::string textsOf(const QQuickItem& item) {
  std::string texts;
  for (int i = 0; i < item.metaObject()->propertyCount(); ++i) {
    const QMetaProperty property = item.metaObject()->property(i);
    if (property.typeId() == QMetaType::QString) {
      texts += property.read(&item).toString().toStdString() + "\n";
    }
  }
  for (const QQuickItem* child : item.childItems()) {
    texts += textsOf(*child);
  }
  return texts;
}

TEST(Presentation, ASecretIsNeitherInTheSceneNorInTheClipboardNorInAPicture) {
  DrawnPhone phone;
  phone.phone.wallet.cards = {test::cardJson(5, "4242", R"(,"method":"AMT","needCvv":true)")};
  phone.phone.showPaymentScreen();
  phone.settle();
  QImage before;
  for (const char* const digits : {"4929", "8171"}) {
    phone.touch("cvvField");
    phone.key(Qt::Key_End);
    for (int i = 0; i < 4; ++i) {
      phone.key(Qt::Key_Backspace);
    }
    phone.keys(digits);
    for (const int code : {Qt::Key_A, Qt::Key_C}) {
      QKeyEvent copy(QEvent::KeyPress, code, Qt::ControlModifier);
      QCoreApplication::sendEvent(&phone.window, &copy);
    }
    EXPECT_EQ(phone.phone.host.topController()->outletNamed("cvvField")->shownText(),
              "\u2022\u2022\u2022\u2022");
    EXPECT_EQ(textsOf(*phone.window.contentItem()).find(digits), std::string::npos);
    EXPECT_FALSE(QGuiApplication::clipboard()->text().contains(digits));
    phone.key(Qt::Key_Tab);  // no blinking cursor
    const QImage picture = phone.window.grabWindow();
    EXPECT_TRUE(before.isNull() || before == picture) << "the same for other digits";
    before = picture;
  }
}

TEST(Presentation, TheMaskHoldsTouchesAndKeysBackButForTheWayOut) {
  DrawnPhone phone;
  phone.phone.showPaymentScreen();
  phone.settle();
  phone.phone.indicator().show("Busy", ProgressMask::gradient);
  phone.settle();
  EXPECT_THROW(phone.touch("proceedButton"), shop::ScriptError);
  EXPECT_THROW(phone.touch("cancelAction"), shop::ScriptError);
  phone.key(Qt::Key_Return);
  phone.key(Qt::Key_Escape);
  EXPECT_EQ(phone.phone.screen(), "Product");
  phone.phone.indicator().dismiss();
  phone.settle();
  phone.touch("cancelAction");

  // The terms may be left while their page loads.
  phone.phone.wallet.session = test::answers::kNotActivated;
  phone.phone.begin(test::Entry::preRegister, "Activation");
  phone.settle();
  phone.touch("descriptionLabel");
  ASSERT_EQ(phone.screen(), "TermsAndConditions");
  EXPECT_TRUE(phone.phone.indicator().blocksInput());
  phone.touch("backButton");
  EXPECT_EQ(phone.screen(), "Activation");
}

/// What a screen reader would say wrongly, one line each.
std::string silentControls(QAccessibleInterface& one) {
  static const std::map<QAccessible::Role, const char*> kControls{
      {QAccessible::Button, "button"}, {QAccessible::EditableText, "field"},
      {QAccessible::ComboBox, "list"}, {QAccessible::ListItem, "row"},
      {QAccessible::List, "table"},    {QAccessible::Link, "link"},
      {QAccessible::Dialog, "dialog"}, {QAccessible::WebDocument, "page"}};
  std::string wrong;
  const auto control = kControls.find(one.role());
  const auto* item = qobject_cast<QQuickItem*>(one.object());
  const QString name =
      item == nullptr ? QString() : item->objectName() + " in " + item->parentItem()->objectName();
  if (one.state().invisible) {
    return wrong;
  }
  if (control != kControls.end() && one.text(QAccessible::Name).isEmpty()) {
    wrong += std::string(control->second) + " " + name.toStdString() + " has no name\n";
  }
  if (control == kControls.end() && item != nullptr && item->activeFocusOnTab()) {
    wrong += name.toStdString() + " takes the keyboard without a role\n";
  }
  for (int i = 0; i < one.childCount(); ++i) {
    if (QAccessibleInterface* const child = one.child(i)) {
      wrong += silentControls(*child);
    }
  }
  return wrong;
}

TEST(Accessibility, EveryControlOfEveryScreenHasANameAndARole) {
  DrawnPhone phone;
  phone.phone.showPaymentScreen();  // a session for the screens to read
  for (const char* const identifier :
       {"Waiting", "Product", "Activation", "CountryCode", "ActivationCode", "MsisdnRelink",
        "AddCard", "CardValidation", "Cards", "WalletManagement", "TermsAndConditions",
        "TermsAndConditionChange", "SecureCode", "3DAuthSecureCode"}) {
    phone.phone.host.root()->dismiss(false);
    const auto screen = phone.phone.host.application().storyboard().make(identifier);
    phone.phone.host.root()->present(screen, false);
    QCoreApplication::processEvents();
    phone.finger.bringUpToDate();
    QAccessibleInterface* const tree = QAccessible::queryAccessibleInterface(phone.content());
    ASSERT_NE(tree, nullptr) << identifier;
    EXPECT_EQ(silentControls(*tree), "") << identifier;
    const auto child = screen->visibleChild();
    const auto& shown = child ? child : screen;
    for (const std::string& name : shown->outletNames()) {
      const auto view = shown->outletNamed(name);
      const bool drawn = findItem(*phone.content(), QString::fromStdString(name)) != nullptr;
      EXPECT_TRUE(drawn || view->isOutOfSight()) << identifier << ": " << name;
    }
  }
}

}  // namespace
}  // namespace orlix::shell
