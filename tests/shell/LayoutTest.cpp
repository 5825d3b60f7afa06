// SPDX-License-Identifier: Apache-2.0

// What every screen must be like, upright and in landscape, with the longest texts in use. Also run
// with larger texts (see CMakeLists.txt).

#include <QFontMetricsF>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QScreen>
#include <map>

#include <gtest/gtest.h>

#include "orlixkit/checkout/OXUtil.h"
#include "tests/shell/DrawnPhone.h"
#include "tests/shell/Look.h"

namespace orlix::shell {
namespace {

/// As a host with a keyboard of its own does; -1 for none.
void raiseKeyboard(QQuickItem& content, int height) {
  const QString script = "OxTheme.keyboardHeight = " + QString::number(height);
  QQmlExpression expression(qmlContext(&content), &content, script);
  expression.evaluate();
  ASSERT_FALSE(expression.hasError()) << expression.error().toString().toStdString();
}

bool isText(const QQuickItem& item) {
  return item.inherits("QQuickText") && !item.property("text").toString().isEmpty();
}

/// A screen of the library, drawn, and what is wrong with it.
class Look {
 public:
  Look(DrawnPhone& phone, const ViewController& screen, double textScale)
      : phone_(phone), screen_(screen), textScale_(textScale), items_(seen(*phone.content())) {}

  std::string remarks() {
    texts();
    outlets();
    fields();
    return remarks_;
  }

 private:
  void remark(const std::string& text) { remarks_ += screen_.identifier() + ": " + text + "\n"; }

  /// Whole, inside all that cuts off what is in it once it has been scrolled to.
  void texts() {
    for (QQuickItem* item : items_) {
      if (!isText(*item)) {
        continue;
      }
      const std::string text = item->property("text").toString().toStdString();
      if (item->property("truncated").toBool() ||
          item->property("contentHeight").toDouble() > item->height() + 1 ||
          item->property("contentWidth").toDouble() > item->width() + 1) {
        remark("cut off: " + text);
      }
      const QFontMetricsF metrics(item->property("font").value<QFont>());
      for (const QString& word : item->property("text").toString().split(u' ')) {
        // A text that shrinks is on one line.
        if (item->property("lineCount").toInt() > 1 &&
            metrics.horizontalAdvance(word) > item->width() + 1) {
          remark("a word is broken: " + word.toStdString());
        }
      }
      for (const QQuickItem* above = item->parentItem(); above != phone_.content();
           above = above->parentItem()) {
        const bool scrolls = above->inherits("QQuickFlickable");
        const QRectF room(0, 0, above->width(), above->height());
        const QRectF in = above->mapRectFromItem(item, {0, 0, item->width(), item->height()});
        if (scrolls && (in.left() < -1 || in.right() > room.right() + 1)) {
          remark("beside its list: " + text);
        }
        if (scrolls) {
          break;
        }
        if (above->clip() && !room.adjusted(-1, -1, 1, 1).contains(in)) {
          remark("clipped: " + text);
        }
      }
    }
  }

  /// Each can be brought whole into the window, and none is on another. Rows of a list are not
  /// outlets.
  void outlets() {
    std::vector<QQuickItem*> drawn;
    for (QQuickItem* item : items_) {
      const auto view = screen_.outletNamed(item->objectName().toStdString());
      const bool isControl = screen_.hasAction(item->objectName().toStdString());
      if (isControl || (view && (view->subviews().empty() || view->onTap))) {
        drawn.push_back(item);
      }
    }
    const QRectF window({0, 0}, QSizeF(phone_.window.size()));
    for (QQuickItem* one : drawn) {
      QMetaObject::invokeMethod(phone_.content(), "reveal", Q_ARG(QQuickItem*, one));
      const QRectF part = seenPart(*one, phone_.window);
      const QRectF whole = inScene(*one);
      const bool isLong = one->height() > window.height() / 3;  // read by scrolling
      if (part.height() < whole.height() - 1 && !isLong) {
        remark(nameOf(one) + " is not whole in the window");
      }
      const auto view = screen_.outletNamed(nameOf(one));
      const bool isList = view && (view->kind() == "table" || view->kind() == "web");
      const double enough = isList ? 80 * textScale_ : std::min(80 * textScale_, whole.height());
      if ((isLong || isList) && part.height() < enough - 1) {
        remark(nameOf(one) + " is too low to be read in");
      }
      for (const QQuickItem* other : drawn) {
        const bool apart = one == other || one->isAncestorOf(other) || other->isAncestorOf(one);
        if (!apart && inScene(*one).intersects(inScene(*other)) &&
            seenPart(*one, phone_.window).intersects(seenPart(*other, phone_.window))) {
          remark(nameOf(one) + " lies on " + nameOf(other));
        }
      }
    }
  }

  /// The field in focus is above an on-screen keyboard of any height.
  void fields() {
    QQuickItem& content = *phone_.content();
    for (QQuickItem* item : items_) {
      if (!item->inherits("QQuickTextInput")) {
        continue;
      }
      for (int keyboard = 20; keyboard < phone_.window.height() - 60 - item->height();
           keyboard += 20) {
        raiseKeyboard(content, keyboard);
        phone_.dropFocus();
        item->forceActiveFocus();
        QCoreApplication::processEvents();
        phone_.finger.bringUpToDate();
        // Where it comes to stand, once the sheet has been lifted.
        const double top = item->mapToItem(&content, QPointF(0, 0)).y() + content.y() -
                           content.property("lift").toDouble();
        if (top < 0 || top + item->height() > phone_.window.height() - keyboard) {
          remark(nameOf(item) + " is covered by a keyboard of " + std::to_string(keyboard));
        }
        raiseKeyboard(content, -1);
      }
    }
  }

  DrawnPhone& phone_;
  const ViewController& screen_;
  const double textScale_;
  const std::vector<QQuickItem*> items_;
  std::string remarks_;
};

/// Each as large as a phone's screen of so many pixels is in points: with QT_FONT_DPI a point has
/// more pixels.
std::vector<QSize> windows() {
  const double pixels = QGuiApplication::primaryScreen()->devicePixelRatio();
  return {QSize(375, 667) / pixels, QSize(667, 320) / pixels};
}

void expectWholeScreens(QSize window, double textScale) {
  SCOPED_TRACE(std::to_string(window.width()) + " wide, texts of " + std::to_string(textScale));
  DrawnPhone drawn(window);
  drawn.presenter().setLook({.textScale = textScale});
  drawn.startSession();
  EXPECT_EQ(Look(drawn, *drawn.phone.host.topController(), textScale).remarks(), "");
  for (const char* const identifier : kScreens) {
    const auto screen = drawn.open(identifier);
    ASSERT_NE(drawn.content(), nullptr) << identifier;
    EXPECT_EQ(Look(drawn, *screen, textScale).remarks(), "");
  }
  OXUtil::showAlertWithTitle("Warning", std::string(2000, 'x'));
  drawn.settle();
  EXPECT_TRUE(QRectF({0, 0}, QSizeF(window)).contains(inScene(drawn.item("alert.button0"))));
}

TEST(Layout, EveryScreenIsWholeAndItsFieldsStandAboveAKeyboardOfAnyHeight) {
  for (const QSize window : windows()) {
    expectWholeScreens(window, 1);
  }
}

TEST(Layout, EveryScreenIsWholeWithTextsOfTwiceTheSize) {
  for (const double textScale : {1.5, 2.0}) {
    for (const QSize window : {QSize(375, 667), QSize(667, 320)}) {
      expectWholeScreens(window, textScale);
    }
  }
}

TEST(Layout, TextsAreAsLargeAsTheOptionSays) {
  DrawnPhone drawn;
  drawn.startSession();
  const auto size = [&] {
    return drawn.item("merchantView").property("font").value<QFont>().pixelSize();
  };
  EXPECT_EQ(size(), 16);
  drawn.presenter().setLook({.textScale = 2});
  EXPECT_EQ(size(), 32);
}

/// Where each outlet and each text of the screen is, in the sheet.
std::map<std::string, QRectF> places(DrawnPhone& phone) {
  std::map<std::string, QRectF> found;
  for (const QQuickItem* item : seen(*phone.content())) {
    const std::string name = item->objectName().toStdString();
    if (!name.empty() && name != "header") {
      found[name] = phone.content()->mapRectFromItem(item, {0, 0, item->width(), item->height()});
    }
  }
  return found;
}

TEST(Layout, IsMirroredFromRightToLeft) {
  DrawnPhone phone;
  phone.startSession();
  for (const char* const identifier : kScreens) {
    phone.open(identifier);
    const auto before = places(phone);
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    phone.settle();
    const auto mirrored = places(phone);
    for (const QQuickItem* item : seen(*phone.content())) {
      EXPECT_TRUE(!isText(*item) ||
                  item->property("effectiveHorizontalAlignment").toInt() != Qt::AlignLeft)
          << identifier << ": " << item->property("text").toString().toStdString();
    }
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    phone.settle();
    EXPECT_EQ(mirrored.size(), before.size());
    const double width = phone.content()->width();
    for (const auto& [name, place] : before) {
      EXPECT_NEAR(mirrored.at(name).left(), width - place.right(), 1) << identifier << " " << name;
    }
  }
}

}  // namespace
}  // namespace orlix::shell
