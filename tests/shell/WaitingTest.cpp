// SPDX-License-Identifier: Apache-2.0

// The waiting screen and the progress indicator, after short and long waits.

#include "tests/shell/Contrast.h"
#include "tests/shell/HandDriver.h"
#include "tests/shell/Look.h"

namespace orlix::shell {
namespace {

using namespace std::chrono_literals;

// Hours, so that the exact start time of an animation does not matter.
constexpr DrawingTimes kSlow{.fade = 1h, .appear = 2h, .stay = 4h};

TEST(DrawnIndicator, AppearsAfterAMomentAndStaysLongEnoughToBeRead) {
  EXPECT_EQ(DrawingTimes().appear, 300ms);
  EXPECT_EQ(DrawingTimes().stay, 500ms);
  struct Row {
    const char* name;
    std::chrono::minutes dismissedAfter;
    std::vector<std::pair<std::chrono::minutes, double>> drawn;  ///< after this additional time
  };
  const Row rows[] = {{"a short wait draws none", 115min, {{0min, 0}, {70min, 0}, {600min, 0}}},
                      {"one that has just been drawn stays",
                       125min,
                       {{0min, 1}, {70min, 1}, {150min, 1}, {30min, 1}, {70min, 0}}},
                      {"one that has been read fades at once", 415min, {{0min, 1}, {70min, 0}}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    HandDriver time;
    DrawnPhone phone({375, 667}, kSlow);
    phone.phone.indicator().show("Busy", ProgressMask::gradient);
    EXPECT_EQ(phone.mask(), 1) << "touches are masked at once";
    time.pass(phone, 115min);
    EXPECT_EQ(phone.plate(), 0);
    for (std::chrono::minutes at = 115min; at < row.dismissedAfter; at += 10min) {
      time.pass(phone, 10min);
    }
    phone.phone.indicator().dismiss();
    std::chrono::minutes sinceThen = 0min;
    for (const auto& [passes, opacity] : row.drawn) {
      time.pass(phone, passes);
      sinceThen += passes;
      // An animation may start a few milliseconds of real time earlier.
      EXPECT_NEAR(phone.plate(), opacity, 0.01) << sinceThen.count() << " minutes after that";
      EXPECT_EQ(phone.phone.indicator().visible(), sinceThen < 1h) << "the model's fade";
    }
  }
}

TEST(DrawnIndicator, OfASecondRequestFollowsWithoutAGap) {
  HandDriver time;
  DrawnPhone phone({375, 667}, kSlow);
  ProgressIndicator& indicator = phone.phone.indicator();
  indicator.show("One");
  time.pass(phone, 125min);
  indicator.dismiss();
  time.pass(phone, 70min);
  EXPECT_FALSE(indicator.visible());
  indicator.show("Two");
  EXPECT_EQ(phone.plate(), 1);
  EXPECT_EQ(findItem(*phone.window.contentItem(), "progressStatus")->property("text"), "Two");
  time.pass(phone, 600min);
  EXPECT_EQ(phone.plate(), 1);
}

TEST(DrawnIndicator, IsAsTheModelHasItInAPicture) {
  DrawnPhone phone({375, 667}, kSlow);
  phone.phone.indicator().show("Busy");
  EXPECT_EQ(phone.plate(), 0);
  phone.presenter().endDelays();
  EXPECT_EQ(phone.plate(), 1);
  phone.phone.indicator().dismiss();
  phone.presenter().endDelays();
  EXPECT_EQ(phone.plate(), 0);
}

TEST(DrawnIndicator, LeavesTheAmountToBeRead) {
  const std::pair<QSize, double> rows[] = {
      {{375, 667}, 1}, {{667, 320}, 1}, {{375, 667}, 2}, {{667, 320}, 2}};
  for (const auto& [window, textScale] : rows) {
    SCOPED_TRACE(std::to_string(window.width()) + ", " + std::to_string(textScale));
    DrawnPhone phone(window);
    phone.presenter().setLook({.textScale = textScale});
    phone.startSession();
    phone.phone.wallet.codeInfo =
        R"({"code":"C-1","merchantName":"Corner Shop","currency":"ZAR","amountString":"149.90"})";
    phone.phone.facade = OXOrlix::make();
    phone.phone.begin(test::Entry::checkout, "Product");
    phone.settle();
    phone.phone.indicator().show("Making Payment...", ProgressMask::gradient);
    phone.settle();
    const QQuickItem& amount = phone.item("amountView");
    const QQuickItem& plate = *findItem(*phone.window.contentItem(), "progressPlate");
    EXPECT_FALSE(inScene(amount).intersects(inScene(plate)));
    EXPECT_TRUE(QRectF({0, 0}, QSizeF(window)).contains(inScene(plate)));
    const QRect part = seenPart(amount, phone.window);
    EXPECT_EQ(part.height(), inScene(amount).toAlignedRect().height());
    EXPECT_GE(textContrast(phone.window.grabWindow(), part), 4.5) << "under the mask";
  }
}

TEST(WaitingScreen, SaysWhatItWaitsForAndAfterTenSecondsThatItIsStillTrying) {
  DrawnPhone phone;
  phone.open("Waiting");
  const auto says = [&] { return phone.item("waitingFor").property("text").toString(); };
  EXPECT_EQ(says(), "Connecting to your wallet");
  EXPECT_EQ(phone.content()->property("patience"), 10000);
  phone.content()->setProperty("patience", 0);
  phone.settle();
  EXPECT_TRUE(says().startsWith("Still trying")) << says().toStdString();
}

TEST(ReducedMotion, DrawsWithoutAnimations) {
  HandDriver time;
  DrawnPhone phone({375, 667}, {.fade = 200ms, .appear = 0ms, .stay = 0ms});
  phone.presenter().setLook({.reducedMotion = true});
  const auto screen = phone.phone.host.application().storyboard().make("Waiting");
  phone.phone.host.root()->present(screen, true);
  phone.settle();
  EXPECT_TRUE(screen->hasAppeared());
  EXPECT_EQ(phone.content()->opacity(), 1);
  EXPECT_EQ(phone.item("activityIndicator").property("turning"), false);
  phone.phone.indicator().show("Busy");
  phone.phone.indicator().dismiss();
  phone.settle();
  EXPECT_EQ(phone.plate(), 0);
  phone.phone.host.root()->dismiss(true);
  phone.settle();
  EXPECT_EQ(phone.content(), nullptr);
  phone.presenter().setLook({});
  phone.open("Waiting");
  EXPECT_EQ(phone.item("activityIndicator").property("turning"), true);
}

}  // namespace
}  // namespace orlix::shell
