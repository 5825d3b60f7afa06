// SPDX-License-Identifier: Apache-2.0

// What the drawn shell leaves of a secret in the memory of its process, in UTF-8 and in UTF-16.

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <functional>
#include <sstream>

#include <gmock/gmock.h>

#include "examples/shop/Shop.h"
#include "examples/shop/window/QtDriver.h"
#include "shell/QtPorts.h"
#include "shell/ScreenPresenter.h"
#include "shell/WipedText.h"
#include "tests/TemporaryFolder.h"
#include "tests/faults/MemoryScan.h"
#include "tests/faults/SandboxProcess.h"

namespace orlix::shop {
namespace {

using test::MemoryScan;

constexpr char32_t kMask = 0x1A5A5;

/// A text that this test never holds in one piece but where it hands it over.
struct Masked {
  std::string name;
  std::u32string masked{};
  char32_t unit(std::size_t index) const { return masked[index] ^ kMask; }
};

Masked mask(std::string name, std::initializer_list<char32_t> units) {
  Masked made{std::move(name)};
  for (const char32_t unit : units) {
    made.masked.push_back(unit ^ kMask);
  }
  return made;
}

// The PIN of card 7777; a CVV of characters that are nowhere else, of two units in UTF-16; a PAN
// whose bank wants the mobile number confirmed, as it is typed and as it is shown.
const Masked kPin = mask("PIN", {'9', '8', '7', '6', '5', '4', '3', '2', '1'});
const Masked kCvv = mask("CVV", {0x1D593, 0x1D58B, 0x1D5A1, 0x1D597});
const Masked kPan =
    mask("PAN", {'4', '1', '0', '0', '0', '0', '8', '0', '0', '0', '0', '0', '0', '1', '0', '8'});
const Masked kShownPan = mask("shown PAN", {'4', '1', '0', '0', ' ', '0', '0', '8', '0', ' ', '0',
                                            '0', '0', '0', ' ', '0', '1', '0', '8'});

using Exemption = std::function<bool(const MemoryScan::Place&)>;

/// `isExempt`: of the copies in UTF-8.
void lookFor(MemoryScan& scan, const Masked& secret, Exemption isExempt = {}) {
  MemoryScan::Needle utf8{secret.name + " in UTF-8", {}, std::move(isExempt)};
  MemoryScan::Needle utf16{secret.name + " in UTF-16", {}};
  for (std::size_t i = 0; i < secret.masked.size(); ++i) {
    const char32_t unit = secret.unit(i);
    const QString character = QString::fromUcs4(&unit, 1);
    for (const char byte : character.toUtf8()) {
      utf8.add(static_cast<std::uint8_t>(byte));
    }
    for (const QChar half : character) {
      utf16.add(static_cast<std::uint8_t>(half.unicode() & 0xFFU));
      utf16.add(static_cast<std::uint8_t>(half.unicode() >> 8U));
    }
  }
  scan.lookFor(std::move(utf8));
  scan.lookFor(std::move(utf16));
}

/// Keeps nothing of a line but the PaRes, and that masked.
struct PaResLog : SystemLog {
  void write(std::string_view line) override {
    constexpr std::size_t kLengthInTheSandbox = 128;
    if (line.size() == kLengthInTheSandbox && line.find_first_of(" <") == std::string_view::npos) {
      for (const char letter : line) {
        paRes.masked.push_back(static_cast<char32_t>(letter) ^ kMask);
      }
    }
  }
  Masked paRes{"PaRes"};
};

struct Steps : ScriptSource {
  explicit Steps(std::vector<std::string> steps) : lines(std::move(steps)) {}
  std::optional<ScriptLine> next() override {
    return at < lines.size() ? (++at, parseLine(lines[at - 1], at)) : std::nullopt;
  }
  bool mayBlock() const override { return false; }
  std::vector<std::string> lines;
  std::size_t at = 0;
};

/// How a text gets into a field.
enum class Way { keys, inputMethod, paste };

/// The drawn shop and its user.
class User {
 public:
  explicit User(const test::ServerAddress& server)
      : options_(optionsFor(server)),
        ports_(shell::makeQtPorts({.applicationName = "orlix-shop",
                                   .stateDirectory = options_.state,
                                   .anchorFile = options_.anchor,
                                   .resourceDirectories = {},
                                   .logTarget = LogTarget::stderrOnly,
                                   .location = {{-33.92, 18.42}}},
                                  engine_)) {
    ports_.log = log;
    shop_ = std::make_unique<Shop>(options_, ports_, lines_, lines_);
    shell::prepareEngine(engine_, ports_.bundle);
    window_.resize(options_.window.first, options_.window.second);
    presenter_ = std::make_unique<shell::ScreenPresenter>(engine_, window_);
    shop_->drawnBy(presenter_.get());
    window_.show();
    window_.requestActivate();
    driver_ = std::make_unique<QtDriver>(*presenter_, ports_.mainQueue, std::nullopt);
  }
  ~User() {
    shop_->drawnBy(nullptr);
    presenter_.reset();
  }
  User(const User&) = delete;
  User& operator=(const User&) = delete;

  void run(std::vector<std::string> steps) {
    Steps script(std::move(steps));
    shop_->run(script, *driver_);
  }
  void payWith(const std::string& card) {
    run({"checkout FIXED-25", "wait screen Product", "tap cardAction", "wait screen Cards",
         "row tableView " + card, "wait screen Product"});
  }
  void enter(const std::string& field, const Masked& secret, Way way) {
    if (way == Way::keys) {
      for (std::size_t i = 0; i < secret.masked.size(); ++i) {
        const char32_t unit = secret.unit(i);
        driver_->type(field, QString::fromUcs4(&unit, 1).toStdString());
      }
      return;
    }
    driver_->tap(field);
    QString text;
    text.reserve(64);
    for (std::size_t i = 0; i < secret.masked.size(); ++i) {
      const char32_t unit = secret.unit(i);
      text += QString::fromUcs4(&unit, 1);
    }
    if (way == Way::paste) {
      QGuiApplication::clipboard()->setText(text);
      QKeyEvent event(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier);
      QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
      QGuiApplication::clipboard()->clear();
    } else {
      QInputMethodEvent event;
      event.setCommitString(text);
      QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }
    shell::wipeShared(text);  // the test's own, and the clipboard's
  }

  const std::shared_ptr<PaResLog> log = std::make_shared<PaResLog>();

 private:
  ShopOptions optionsFor(const test::ServerAddress& server) const {
    ShopOptions options;
    options.server = server.base;
    options.anchor = server.anchor;
    options.state = state_.path();
    return options;
  }

  test::TemporaryFolder state_;
  ShopOptions options_;
  std::ostringstream lines_;
  QQmlEngine engine_;
  QQuickWindow window_;
  Ports ports_;
  std::unique_ptr<Shop> shop_;
  std::unique_ptr<shell::ScreenPresenter> presenter_;
  std::unique_ptr<QtDriver> driver_;
};

void payByCvvAndPin(User& user, Way way, const MemoryScan& scan) {
  user.payWith("xxx-4444");
  user.enter("cvvField", kCvv, way);
  user.enter("pinField", kPin, way);
  EXPECT_EQ(scan.count("PIN in UTF-8"), 1U) << "the field's own, or the scan is blind";
  EXPECT_EQ(scan.count("CVV in UTF-8"), 1U);
  EXPECT_EQ(scan.count("PIN in UTF-16") + scan.count("CVV in UTF-16"), 0U);
  user.run({"tap proceedAction", "wait outcome orlixError 2"});
}

void addCard(User& user, Way way, const MemoryScan& scan) {
  user.payWith("xxx-7777");
  user.run({"tap cardAction", "wait screen Cards", "tap addCardAction", "wait screen AddCard"});
  user.enter("cardNumberField", kPan, way);
  EXPECT_GT(scan.count("shown PAN in UTF-16"), 0U) << "it can be read on the screen";
  user.run({"type cardHolderField \"A Customer\"", "type expiryDateField 1299", "tap proceedAction",
            "wait screen MsisdnRelink", "type msisdnField 0821234567", "tap proceedAction",
            "wait screen Product", "tap cancelAction", "wait outcome orlixUserDidCancel"});
}

void payOnIssuersPage(User& user, Way way, const MemoryScan&) {
  user.payWith("xxx-0309");
  user.enter("cvvField", kCvv, way);
  user.run({"tap proceedAction", "wait screen SecureCode", "page wait #otp",
            "page type #otp 123456", "page click #submit", "wait outcome orlixError 2"});
}

/// The web engine does its networking in this process, and passes what a script returns to the main
/// thread as a text of its own. It wipes neither when it releases them, and no other code can: so
/// the issuer's pages, and the form posted from one to the other, are exempt. The engine may have
/// overwritten what is on one side of the PaRes. A copy that the shell or the library makes of it
/// alone, in a request or in UTF-16 is none of these.
bool isTheEngines(const MemoryScan::Place& place) {
  const bool isForm = place.before.ends_with("PaRes=") || place.behind.starts_with("&MD=");
  const bool isAttribute = place.before.ends_with("value='") ||
                           place.before.ends_with("value=\"") || place.behind.starts_with("'><") ||
                           place.behind.starts_with("\"><");
  const bool isScript = place.before.ends_with("handle(\"") || place.behind.starts_with("\");");
  return isForm || isAttribute || isScript;
}

struct Story {
  const char* name;
  void (*tell)(User&, Way, const MemoryScan&);
};

class DrawnSecrets : public testing::TestWithParam<std::tuple<Story, Way>> {};

TEST_P(DrawnSecrets, LeaveNothingInMemoryOnceTheStoryHasEnded) {
  const auto& [story, way] = GetParam();
  test::SandboxProcess server("--enrolled");
  MemoryScan scan;
  for (const Masked* secret : {&kPin, &kCvv, &kPan, &kShownPan}) {
    lookFor(scan, *secret);
  }
  {
    User user(server.address);
    story.tell(user, way, scan);
    const Masked& paRes = user.log->paRes;
    if (!paRes.masked.empty()) {
      lookFor(scan, paRes, isTheEngines);
    }
    EXPECT_THAT(scan.findings(), testing::IsEmpty());
  }
  EXPECT_THAT(scan.findings(), testing::IsEmpty());
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Story, Way>>& story) {
  constexpr std::array<const char*, 3> kWays{"ByKeys", "ByInputMethod", "ByPaste"};
  const auto& [told, way] = story.param;
  return told.name + std::string(kWays.at(static_cast<std::size_t>(way)));
}

INSTANTIATE_TEST_SUITE_P(Stories, DrawnSecrets,
                         testing::Combine(testing::Values(Story{"PinAndCvv", payByCvvAndPin},
                                                          Story{"Pan", addCard},
                                                          Story{"PaRes", payOnIssuersPage}),
                                          testing::Values(Way::keys, Way::inputMethod, Way::paste)),
                         nameOf);

}  // namespace
}  // namespace orlix::shop
