// SPDX-License-Identifier: Apache-2.0

// Contrast ratios (WCAG 2) of texts, outlines and the focus ring, measured in rendered pictures.

#include <QPalette>
#include <set>

#include "orlixkit/checkout/OXUtil.h"
#include "orlixkit/ui/TextField.h"
#include "tests/shell/Contrast.h"
#include "tests/shell/DrawnPhone.h"
#include "tests/shell/Look.h"

namespace orlix::shell {
namespace {

/// Contrast of a field's outline with the colours outside and inside it.
std::string outlinesTooFaint(DrawnPhone& phone, const ViewController& screen) {
  std::string faint;
  const QImage picture = phone.window.grabWindow();
  for (const std::string& name : screen.outletNames()) {
    const QQuickItem* field = findItem(*phone.content(), QString::fromStdString(name));
    if (!std::dynamic_pointer_cast<TextField>(screen.outletNamed(name)) || field == nullptr ||
        !field->isVisible()) {
      continue;
    }
    const QRect box = inScene(*field).toRect();
    const int y = box.top() + box.height() / 4;
    const QRgb line = picture.pixel(box.left(), y);
    const double measured = std::min(contrast(line, picture.pixel(box.left() - 3, y)),
                                     contrast(line, picture.pixel(box.left() + 4, y)));
    if (measured < kLine) {
      faint += name + " " + std::to_string(measured) + "\n";
    }
  }
  return faint;
}

/// Moves the focus through all controls by Tab. At each one the focus must change at least twice as
/// many pixels as the control is wide, which a ring around it does.
std::string ringsTooFaint(DrawnPhone& phone) {
  std::string faint;
  std::set<std::string> visited;
  for (;;) {
    phone.key(Qt::Key_Tab);
    const std::string name = phone.focus();
    if (name.empty() || !visited.insert(name).second) {
      return faint;
    }
    QQuickItem& focus = *phone.window.activeFocusItem();
    const QImage with = phone.window.grabWindow();
    phone.dropFocus();
    const QImage without = phone.window.grabWindow();
    focus.forceActiveFocus(Qt::TabFocusReason);
    const int clear = clearChanges(with, without);
    if (clear < 2 * seenPart(focus, phone.window).width()) {
      faint += name + " " + std::to_string(clear) + "\n";
    }
  }
}

class Contrast : public testing::TestWithParam<ColorScheme> {};

TEST_P(Contrast, TextsLinesAndTheFocusCanBeTold) {
  DrawnPhone phone;
  phone.presenter().setLook({.colors = GetParam()});
  phone.startSession();
  for (const char* const identifier : kScreens) {
    SCOPED_TRACE(identifier);
    const auto screen = phone.open(identifier);
    phone.dropFocus();
    EXPECT_EQ(textsTooFaint(phone.window, *phone.content()), "");
    EXPECT_EQ(outlinesTooFaint(phone, *screen), "");
    EXPECT_EQ(ringsTooFaint(phone), "");
    phone.keys("1");  // a field is in focus, or nothing takes it
    EXPECT_EQ(textsTooFaint(phone.window, *phone.content()), "") << "in focus";
  }
  phone.phone.indicator().show("Making Payment...", ProgressMask::gradient);
  EXPECT_EQ(
      textsTooFaint(phone.window, *findItem(*phone.window.contentItem(), "progressIndicator")), "");
}

TEST(AlertContrast, OfTheWordsIsTheModels) {
  DrawnPhone phone;
  phone.startSession();
  phone.phone.host.application().showAlert(
      [] {
        const auto alert = std::make_shared<AlertController>("Title", "Message");
        alert->addAction({"Delete", AlertActionStyle::destructive, {}});
        alert->addAction({"Cancel", AlertActionStyle::cancel, {}});
        OXUtil::styleAlertController(*alert);
        return alert;
      }(),
      false);
  phone.settle();
  const std::string faint = textsTooFaint(phone.window, *phone.content());
  EXPECT_EQ(faint.substr(0, 11), "alert.title");
  EXPECT_NE(faint.find("\nalert.message"), std::string::npos);
  EXPECT_EQ(std::count(faint.begin(), faint.end(), '\n'), 2) << faint;
}

TEST(ColorSchemes, FollowThePaletteUnlessTheHostChoosesOne) {
  DrawnPhone phone;
  phone.startSession();
  const auto fieldIsDark = [&] {
    phone.settle();
    const QPoint inside = inScene(phone.item("pinField")).center().toPoint() + QPoint(20, 0);
    return luminance(phone.window.grabWindow().pixel(inside)) < 0.2;
  };
  const QPalette before = QGuiApplication::palette();
  EXPECT_FALSE(fieldIsDark());
  QGuiApplication::setPalette(QPalette(Qt::black));
  EXPECT_TRUE(fieldIsDark());
  phone.presenter().setLook({.colors = ColorScheme::light});
  EXPECT_FALSE(fieldIsDark());
  QGuiApplication::setPalette(before);
  phone.presenter().setLook({.colors = ColorScheme::dark});
  EXPECT_TRUE(fieldIsDark());
}

INSTANTIATE_TEST_SUITE_P(Schemes, Contrast, testing::Values(ColorScheme::light, ColorScheme::dark));

}  // namespace
}  // namespace orlix::shell
