// SPDX-License-Identifier: Apache-2.0

// The QML module and examples/qml-host, against the sandbox.

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include "examples/shop/HeadlessDriver.h"
#include "examples/shop/ShownScreen.h"
#include "examples/shop/window/Finger.h"
#include "examples/shop/window/Warnings.h"
#include "orlixkit/ports/MainQueue.h"
#include "tests/shell/Focus.h"
#include "tests/shop/Story.h"

namespace orlix::shop {
namespace {

/// A window with two payments; logs each outcome with the state of the purchase.
constexpr const char* kHost = R"(
import QtQuick
import OrlixKit

Window {
  id: window
  property string told
  property alias first: one
  property alias second: two

  function tell(payment, text) {
    window.told += text + " purchase " + payment.purchaseState() + " " + payment.purchaseReference()
        + (payment.pinRefused() ? " pin" : "") + (payment.running ? " running" : "") + "\n"
  }
  function attempt(call) {
    try { call() } catch (error) { return error.message }
    return ""
  }

  component Payment: OrlixCheckout {
    id: payment
    required property string name
    apiKey: "key"
    system: OrlixCheckout.Test
    onPaymentSucceeded: reference => window.tell(payment, name + " paid " + reference)
    onPaymentFailed: reference => window.tell(payment, name + " failed " + reference)
    onErrorOccurred: code => window.tell(payment, name + " error " + code)
    onCancelled: window.tell(payment, name + " cancelled")
    onRegistered: window.tell(payment, name + " registered")
    onWalletClosed: window.tell(payment, name + " closed")
    onInvalidCode: window.tell(payment, name + " invalid")
    onEndedWithoutOutcome: window.tell(payment, name + " ended")
  }
  width: 375
  height: 667
  visible: true
  Payment { id: one; name: "one" }
  Item { Payment { id: two; name: "two" } }
}
)";

/// A user's step on a screen, or on the alert of this title.
struct Step {
  std::string where;
  std::function<void(HeadlessDriver&, Server&)> act;
};

Step tap(const std::string& screen, const std::string& name) {
  return {screen, [name](HeadlessDriver& driver, Server&) { driver.tap(name); }};
}

Step type(const std::string& screen, const std::string& name, const std::string& text) {
  return {screen, [name, text](HeadlessDriver& driver, Server& server) {
            driver.type(name, text == "$SMS" ? server.lastSms() : text);
          }};
}

Step press(const std::string& alert, const std::string& button) {
  return {alert, [button](HeadlessDriver& driver, Server&) { driver.pressAlertButton(button); }};
}

class QmlHost {
 public:
  explicit QmlHost(bool enrolled = true, const QUrl& file = {}, const std::string& code = "")
      : server(enrolled) {
    QQmlComponent component(&engine);
    if (file.isEmpty()) {
      component.setData(kHost, QUrl());
    } else {
      component.loadUrl(file);
    }
    const auto text = [](const std::string& given) { return QString::fromStdString(given); };
    QVariantMap properties;
    if (!file.isEmpty()) {
      properties = {{"server", text(server.sandbox().base())},
                    {"anchor", text(server.sandbox().anchorPath())},
                    {"code", text(code)}};
    }
    QObject* const library = singleton();
    library->setProperty("testAddress", text(server.sandbox().base()));
    library->setProperty("anchorFile", text(server.sandbox().anchorPath()));
    library->setProperty("stateDirectory", text((folder.path() / "state").string()));
    EXPECT_EQ(component.errorString().toStdString(), "");
    window.reset(qobject_cast<QQuickWindow*>(component.createWithInitialProperties(properties)));
  }
  QObject* singleton() {
    return engine.singletonInstance<QObject*>(qmlTypeId("OrlixKit", 3, 0, "Orlix"));
  }
  QObject* payment(const char* name) const { return window->property(name).value<QObject*>(); }
  /// Evaluates JavaScript with `window` and `Orlix` in scope.
  QString evaluate(const QString& script) {
    QQmlComponent component(&engine);
    component.setData(
        "import QtQuick\nimport OrlixKit\nQtObject { required property Window window\n"
        "function run() { return String(" +
            script.toUtf8() + ") } }",
        QUrl());
    EXPECT_EQ(component.errorString().toStdString(), "");
    const std::unique_ptr<QObject> made(component.createWithInitialProperties(
        {{"window", QVariant::fromValue<QObject*>(window.get())}}));
    QVariant result;
    QMetaObject::invokeMethod(made.get(), "run", Q_RETURN_ARG(QVariant, result));
    return result.toString();
  }
  std::string told() const { return window->property("told").toString().toStdString(); }
  void runUntil(const std::function<bool()>& done) {
    Host::current().ports().mainQueue->runUntil(done);
  }
  void runUntilScreen(const std::string& identifier) {
    runUntil([&] { return ShownScreen::identifier() == identifier && !ShownScreen::isMoving(); });
  }
  void take(const std::vector<Step>& steps) {
    HeadlessDriver driver;
    for (const Step& step : steps) {
      runUntil([&] {
        const auto alert = ShownScreen::alert();
        return (alert ? alert->title() : ShownScreen::identifier()) == step.where &&
               !ShownScreen::isMoving() &&
               !Host::current().application().progressIndicator().blocksInput();
      });
      step.act(driver, server);
    }
  }

  const test::TemporaryFolder folder;
  Server server;
  Warnings warnings;
  QQmlEngine engine;
  std::unique_ptr<QQuickWindow> window;
};

TEST(QmlModule, TellsEveryOutcomeWithWhatIsKnownOfThePurchase) {
  struct Row {
    std::string call;
    std::vector<Step> steps;
    std::string told;
    bool enrolled = true;
  };
  const auto pay = [](const std::string& code, const std::string& pin) {
    return Row{"{ window.first.code = '" + code + "'; window.first.checkout() }",
               {type("Product", "pinField", pin), tap("Product", "proceedAction")},
               ""};
  };
  const auto with = [](Row row, std::vector<Step> more, const std::string& told) {
    row.steps.insert(row.steps.end(), more.begin(), more.end());
    row.told = told;
    return row;
  };
  const std::string unknown = "{ window.first.code = 'NONE'; window.first.checkout() }";
  for (const Row& row : std::vector<Row>{
           with(pay("FIXED-25", "1234"), {}, "one paid 7000000001 purchase 3 7000000001\n"),
           with(pay("RECEIPT-FAILED", "1234"), {}, "one failed 7000000001 purchase 2 7000000001\n"),
           with(pay("FIXED-25", "9999"), {}, "one error 2 purchase 2  pin\n"),
           with(pay("SERVER-ERROR", "1234"),
                {press("Connection problem", "Cancel"), tap("Product", "cancelAction")},
                "one cancelled purchase 1 \n"),
           {unknown, {}, "one error 4 purchase 0 \n"},
           {"{ window.first.walletManagement() }",
            {tap("WalletManagement", "DoneClicked")},
            "one closed purchase 0 \n"},
           {"{ window.first.preMSISDN = '082 123 4567'; window.first.preRegister() }",
            {tap("Activation", "proceedAction"), type("ActivationCode", "codeField", "$SMS"),
             tap("ActivationCode", "proceedAction"),
             type("AddCard", "cardNumberField", "4000001000001111"),
             type("AddCard", "cardHolderField", "A Customer"),
             type("AddCard", "expiryDateField", "1299"), tap("AddCard", "proceedAction")},
            "one registered purchase 0 \n",
            false}}) {
    SCOPED_TRACE(row.call + row.told);
    QmlHost host(row.enrolled);
    ASSERT_EQ(host.evaluate(QString::fromStdString("window.attempt(() => " + row.call + ")")), "");
    EXPECT_TRUE(host.payment("first")->property("running").toBool());
    host.take(row.steps);
    host.runUntil([&] { return !host.told().empty(); });
    EXPECT_EQ(host.told(), row.told);
    EXPECT_FALSE(host.payment("first")->property("running").toBool());
    EXPECT_EQ(host.warnings.texts().join("\n").toStdString(), "");
  }
}

TEST(QmlModule, DismissesTheWaitingScreenOfAStoppedVersionAndSaysThatThereIsNoOutcome) {
  QmlHost host;
  host.server.sandbox().control("POST", "/control/start", R"({"answer":"refused"})");
  ASSERT_EQ(host.evaluate("window.attempt(() => window.first.walletManagement())"), "");
  host.runUntil([] { return ShownScreen::alert() != nullptr && !ShownScreen::isMoving(); });
  HeadlessDriver().pressAlertButton("Ok");
  host.runUntil([&] { return !host.told().empty(); });
  EXPECT_EQ(host.told(), "one ended purchase 0 \n");
  EXPECT_EQ(ShownScreen::identifier(), "");
}

TEST(QmlModule, ALaterCallTakesThePlaceOfTheFlowOnScreen) {
  QmlHost host;
  ASSERT_EQ(host.evaluate("window.attempt(() => window.first.walletManagement())"), "");
  host.runUntilScreen("WalletManagement");
  ASSERT_EQ(host.evaluate("window.attempt(() => window.second.walletManagement())"), "");
  EXPECT_FALSE(host.payment("first")->property("running").toBool());
  EXPECT_TRUE(host.payment("second")->property("running").toBool());
  host.runUntilScreen("WalletManagement");
  HeadlessDriver().tap("DoneClicked");
  host.runUntil([&] { return !host.told().empty(); });
  EXPECT_EQ(host.told(), "two closed purchase 0 \n");
}

TEST(QmlModule, RefusesWhatCannotBeDoneAndSaysWhy) {
  struct Row {
    std::string before, call, error;
  };
  const std::string go = "window.first.walletManagement()";
  for (const Row& row : std::vector<Row>{
           {"Orlix.testAddress = ''", go,
            "Orlix: the address of the wallet server is not set; set Orlix.testAddress"},
           {"window.first.system = OrlixCheckout.Live", go,
            "Orlix: the address of the wallet server is not set; set Orlix.liveAddress"},
           {"Orlix.anchorFile = '/nowhere.cer'", go, "/nowhere.cer"},
           {"window.first.apiKey = '\\ud800'", go, "OrlixCheckout: apiKey is not valid Unicode"},
           {"0", "Qt.createQmlObject('import OrlixKit; OrlixCheckout {}', Orlix).checkout()",
            "OrlixCheckout: there is no window to show it in; set \"window\""},
           {go,
            "{ window.second.window = Qt.createQmlObject('import QtQuick; Window {}', window); "
            "window.second.walletManagement() }",
            "Orlix: the screens are shown over the window of the first entry call only"}}) {
    SCOPED_TRACE(row.before + row.call);
    QmlHost host;
    host.evaluate("window.attempt(() => " + QString::fromStdString(row.before) + ")");
    const QString said =
        host.evaluate("window.attempt(() => " + QString::fromStdString(row.call) + ")");
    EXPECT_NE(said.toStdString().find(row.error), std::string::npos) << said.toStdString();
    EXPECT_EQ(host.told(), "");
    EXPECT_EQ(host.payment("first")->property("running").toBool(), row.before == go);
    EXPECT_FALSE(host.payment("second")->property("running").toBool());
  }
}

TEST(QmlModule, KeepsTheSettingsOfTheFirstEntryCall) {
  QmlHost host;
  const QVariant before = host.singleton()->property("testAddress");
  host.evaluate("window.attempt(() => window.first.walletManagement())");
  host.singleton()->setProperty("testAddress", "https://elsewhere");
  EXPECT_EQ(host.singleton()->property("testAddress"), before);
  ASSERT_EQ(host.warnings.texts().size(), 1);
  EXPECT_TRUE(host.warnings.texts()[0].contains(
      "Orlix.testAddress cannot be changed after the first entry call"));
}

TEST(QmlModule, AWindowThatIsDestroyedEndsTheFlow) {
  QmlHost host;
  host.evaluate("window.attempt(() => window.first.walletManagement())");
  host.runUntilScreen("WalletManagement");
  host.window.reset();
  EXPECT_FALSE(Host::isInstalled());
  EXPECT_EQ(host.warnings.texts().join("\n").toStdString(), "");
}

/// The output of the example.
QStringList& printed() {
  static QStringList texts;
  return texts;
}

TEST(QmlHostExample, PaysByPinWithKeysAndSaysNothingThatIsNotKnown) {
  struct Row {
    std::string code;
    std::vector<Step> steps;
    QString printed;
  };
  for (const Row& row :
       std::vector<Row>{{"FIXED-25", {}, "Paid. Reference 7000000001"},
                        {"SERVER-ERROR",
                         {press("Connection problem", "Cancel"), tap("Product", "cancelAction")},
                         "It is not known yet whether this was paid. Ask about SERVER-ERROR"}}) {
    printed().clear();
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { printed().append(text); });
    QmlHost host(true, QUrl::fromLocalFile(ORLIX_SOURCE_DIR "/examples/qml-host/Main.qml"),
                 row.code);
    bool over = false;
    QObject::connect(&host.engine, &QQmlEngine::quit, [&] { over = true; });
    Finger finger(*host.window);
    host.runUntilScreen("Product");
    finger.bringUpToDate();
    for (int step = 0; step < 30 && shell::focusIn(*host.window) != "pinField"; ++step) {
      finger.press(Qt::Key_Tab, "\t");
    }
    for (const int digit : {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4}) {
      finger.press(digit, QString(QChar(digit)));
    }
    finger.press(Qt::Key_Return);
    host.take(row.steps);
    host.runUntil([&] { return over; });
    qInstallMessageHandler(before);
    EXPECT_TRUE(printed().contains(row.printed)) << printed().join("\n").toStdString();
  }
}

}  // namespace
}  // namespace orlix::shop
