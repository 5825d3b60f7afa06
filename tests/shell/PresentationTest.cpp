// SPDX-License-Identifier: Apache-2.0

// What is drawn over the host's window, and who gets touches and keys.

#include <QAnimationDriver>
#include <QClipboard>
#include <QDirIterator>
#include <QFile>
#include <QMetaProperty>
#include <QRegularExpression>
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

TEST(Presentation, ImportsNoModuleThatIsNotAskedForBeforeTheFirstScreen) {
  const std::set<QString> asked(std::begin(kImportedModules), std::end(kImportedModules));
  const QRegularExpression import(QStringLiteral("^import ([\\w.]+)"),
                                  QRegularExpression::MultilineOption);
  std::set<QString> imported;
  for (const char* folder : {":/orlix/presentation", ":/orlix/qml", ":/orlix/storyboard"}) {
    QDirIterator drawings(QString(folder), {QStringLiteral("*.qml")}, QDir::Files,
                          QDirIterator::Subdirectories);
    while (drawings.hasNext()) {
      QFile file(drawings.next());
      ASSERT_TRUE(file.open(QIODevice::ReadOnly));
      auto found = import.globalMatch(QString::fromUtf8(file.readAll()));
      while (found.hasNext()) {
        const QString module = found.next().captured(1);
        if (module != u"OrlixKit.Components") {
          imported.insert(module);
        }
      }
    }
  }
  EXPECT_EQ(imported, asked);
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
  phone.phone.wallet.cards = {cardJson(5, "4242", R"(,"method":"AMT","needCvv":true)")};
  phone.phone.showPaymentScreen();
  phone.settle();
  for (const char* const field : {"cvvField", "pinField"}) {
    QImage before;
    for (const char* const digits : {"4929", "8171"}) {
      phone.touch(field);
      phone.key(Qt::Key_End);
      for (int i = 0; i < 4; ++i) {
        phone.key(Qt::Key_Backspace);
      }
      phone.keys(digits);
      for (const int code : {Qt::Key_A, Qt::Key_C}) {
        QKeyEvent copy(QEvent::KeyPress, code, Qt::ControlModifier);
        QCoreApplication::sendEvent(&phone.window, &copy);
      }
      EXPECT_EQ(phone.phone.host.topController()->outletNamed(field)->shownText(),
                "\u2022\u2022\u2022\u2022");
      EXPECT_EQ(textsOf(*phone.window.contentItem()).find(digits), std::string::npos);
      EXPECT_FALSE(QGuiApplication::clipboard()->text().contains(digits));
      phone.key(Qt::Key_Tab);  // no blinking cursor
      const QImage picture = phone.window.grabWindow();
      EXPECT_TRUE(before.isNull() || before == picture) << "the same for other digits";
      before = picture;
    }
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
  phone.phone.wallet.session = answers::kNotActivated;
  phone.phone.begin(test::Entry::preRegister, "Activation");
  phone.settle();
  phone.touch("descriptionLabel");
  ASSERT_EQ(phone.screen(), "TermsAndConditions");
  EXPECT_TRUE(phone.phone.indicator().blocksInput());
  phone.touch("backButton");
  EXPECT_EQ(phone.screen(), "Activation");
}

/// The time that animations go by, moved on by the test.
class HandDriver : public QAnimationDriver {
 public:
  HandDriver() { install(); }
  ~HandDriver() override { uninstall(); }
  qint64 elapsed() const override { return elapsed_; }
  void pass(DrawnPhone& phone, std::chrono::milliseconds time) {
    phone.settle();  // what has begun meanwhile gets its start
    elapsed_ += time.count();
    advanceAnimation();
    phone.settle();
  }

 protected:
  /// Animations begin again after none was running: the time in between is not theirs.
  void start() override {
    elapsed_ = 0;
    QAnimationDriver::start();
  }

 private:
  qint64 elapsed_ = 0;
};

TEST(Presentation, TheIndicatorAndItsMaskAreDrawnUntilItsFadeHasEndedAndNotLonger) {
  using std::chrono_literals::operator""ms;
  HandDriver time;
  DrawnPhone phone({375, 667}, 200ms);
  ProgressIndicator& indicator = phone.phone.indicator();
  indicator.show("Busy", ProgressMask::gradient);
  EXPECT_EQ(phone.plate() + phone.mask(), 2);
  indicator.dismiss();
  time.pass(phone, 100ms);
  EXPECT_GT(phone.plate(), 0);
  EXPECT_LT(phone.plate(), 1);
  EXPECT_EQ(phone.mask(), 1);
  indicator.show("Busy again", ProgressMask::gradient);
  time.pass(phone, 50ms);
  time.pass(phone, 500ms);
  EXPECT_EQ(phone.plate() + phone.mask(), 2) << "the fade was cancelled";
  indicator.dismiss();
  time.pass(phone, 100ms);
  time.pass(phone, 500ms);
  EXPECT_EQ(phone.plate() + phone.mask(), 0);
  EXPECT_FALSE(indicator.visible());

  const auto screen = phone.phone.host.application().storyboard().make("Waiting");
  const auto& root = phone.phone.host.root();
  indicator.show("Loading", ProgressMask::gradient, ProgressStyle::activity, screen);
  EXPECT_EQ(phone.mask(), 0) << "its screen is not there yet";
  root->present(screen, false);
  EXPECT_EQ(phone.plate() + phone.mask(), 2);
  root->dismiss(true);
  time.pass(phone, 100ms);
  EXPECT_GT(phone.plate(), 0);
  root->dismiss(false);
  EXPECT_EQ(phone.plate() + phone.mask(), 0) << "gone with its screen";
  time.pass(phone, 500ms);
  EXPECT_EQ(phone.plate() + phone.mask(), 0);

  root->present(screen, true);
  indicator.show("Busy");
  indicator.dismiss();
  phone.stopDrawing();
  phone.phone.host.runUntilIdle();
  EXPECT_TRUE(screen->hasAppeared()) << "although it is no longer drawn";
  EXPECT_FALSE(indicator.visible());
}

/// What a screen reader makes of a screen.
struct Spoken {
  std::string wrong;               ///< one line each
  std::set<std::string> controls;  ///< that the keyboard must come to

  void hear(QAccessibleInterface& one) {
    static const std::map<QAccessible::Role, bool> kControls{
        // true: reached by Tab
        {QAccessible::Button, true},   {QAccessible::EditableText, true},
        {QAccessible::ComboBox, true}, {QAccessible::ListItem, false},
        {QAccessible::List, true},     {QAccessible::Link, true},
        {QAccessible::Dialog, false},  {QAccessible::WebDocument, false}};
    const auto control = kControls.find(one.role());
    const auto* item = qobject_cast<QQuickItem*>(one.object());
    if (one.state().invisible) {
      return;
    }
    if (control != kControls.end() && one.text(QAccessible::Name).isEmpty()) {
      wrong += nameOf(item) + " has no name\n";
    }
    if (control == kControls.end() && item != nullptr && item->activeFocusOnTab()) {
      wrong += nameOf(item) + " takes the keyboard without a role\n";
    }
    if (control != kControls.end() && control->second && item != nullptr) {
      controls.insert(nameOf(item));
    }
    for (int i = 0; i < one.childCount(); ++i) {
      if (QAccessibleInterface* const child = one.child(i)) {
        hear(*child);
      }
    }
  }
};

/// Goes round the screen by Tab: what it comes to, and how often it goes back towards the top.
std::pair<std::set<std::string>, int> tabRound(DrawnPhone& phone, std::size_t controls) {
  std::set<std::string> visited;
  int back = 0;
  QPointF before;
  const QImage bare = phone.window.grabWindow();
  for (std::size_t step = 0; controls > 0 && step <= controls; ++step) {
    phone.key(Qt::Key_Tab);
    const QPointF at = phone.window.activeFocusItem()->mapToScene({0, 0});
    const bool sameRow = std::abs(at.y() - before.y()) < 12;
    back += step > 0 && (sameRow ? at.x() < before.x() : at.y() < before.y()) ? 1 : 0;
    before = at;
    const std::string name = phone.focus();  // of a table, its current row
    visited.insert(name.ends_with("button") ? name : name.substr(0, name.find('.')));
    EXPECT_NE(phone.window.grabWindow(), bare) << name << " shows no focus";
  }
  return {visited, back};
}

TEST(Accessibility, EveryScreenIsSpokenOfAndUsedWithoutAMouse) {
  const std::map<std::string, Qt::InputMethodHint> pads{
      {"inputAmountField", Qt::ImhDigitsOnly}, {"cvvField", Qt::ImhDigitsOnly},
      {"pinField", Qt::ImhDigitsOnly},         {"codeField", Qt::ImhDigitsOnly},
      {"cardNumberField", Qt::ImhDigitsOnly},  {"expiryDateField", Qt::ImhDigitsOnly},
      {"dateOfBirthField", Qt::ImhDigitsOnly}, {"msisdnField", Qt::ImhDialableCharactersOnly},
      {"cardHolderField", Qt::ImhNone}};
  for (const char* const identifier :
       {"Waiting", "Product", "Activation", "CountryCode", "ActivationCode", "MsisdnRelink",
        "AddCard", "CardValidation", "Cards", "WalletManagement", "TermsAndConditions",
        "TermsAndConditionChange", "SecureCode", "3DAuthSecureCode"}) {
    SCOPED_TRACE(identifier);
    DrawnPhone phone;
    phone.phone.showPaymentScreen();  // a session for the screen to read
    for (const char* path : {"/card/scUrl", "/card/get3dsValidateUrl"}) {
      phone.phone.wallet.always(path, ServerReply().silence());
    }
    phone.phone.host.root()->dismiss(false);
    const auto screen = phone.phone.host.application().storyboard().make(identifier);
    phone.phone.host.root()->present(screen, false);
    QCoreApplication::processEvents();
    phone.finger.bringUpToDate();
    QAccessibleInterface* const tree = QAccessible::queryAccessibleInterface(phone.content());
    ASSERT_NE(tree, nullptr);
    Spoken spoken;
    spoken.hear(*tree);
    EXPECT_EQ(spoken.wrong, "");
    const auto child = screen->visibleChild();
    const auto& shown = child ? child : screen;
    for (const std::string& name : shown->outletNames()) {
      const auto view = shown->outletNamed(name);
      const bool drawn = findItem(*phone.content(), QString::fromStdString(name)) != nullptr;
      EXPECT_TRUE(drawn || view->isOutOfSight()) << name;
    }
    findItem(*phone.content(), [&](const QQuickItem& item) {
      if (item.inherits("QQuickTextInput")) {
        EXPECT_EQ(item.property("inputMethodHints").toInt() &
                      (Qt::ImhDigitsOnly | Qt::ImhDialableCharactersOnly),
                  pads.at(nameOf(&item)))
            << nameOf(&item);
      }
      return false;
    });
    phone.phone.indicator().dismiss();  // the terms are still loading
    phone.settle();
    const auto [visited, back] = tabRound(phone, spoken.controls.size());
    EXPECT_EQ(visited, spoken.controls);
    EXPECT_LE(back, 1) << "in the order in which it is read, and round again";
    phone.key(Qt::Key_Escape);
    EXPECT_EQ(phone.phone.host.topController() == shown, identifier == std::string("Waiting"));
  }
}

}  // namespace
}  // namespace orlix::shell
