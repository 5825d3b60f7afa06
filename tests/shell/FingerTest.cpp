// SPDX-License-Identifier: Apache-2.0

// What a script can touch, and what it cannot.

#include <QQmlComponent>
#include <QQmlEngine>
#include <map>

#include <gtest/gtest.h>

#include "examples/shop/Script.h"
#include "examples/shop/window/Finger.h"
#include "shell/FindItem.h"

namespace orlix::shop {
namespace {

TEST(Finger, TouchesOnlyWhatAUserCouldTouch) {
  QQmlEngine engine;
  QQmlComponent component(&engine);
  component.setData(R"(
import QtQuick
Item {
  id: root
  property string touched: ""
  width: 200; height: 200
  component Target: MouseArea { width: 40; height: 40; onClicked: root.touched += objectName + " " }
  Target { objectName: "free" }
  Target { objectName: "deep"; x: 50; Item { anchors.fill: parent; MouseArea { anchors.fill: parent; onClicked: root.touched += "inside " } } }
  Target { objectName: "half outside"; x: -20; y: 50 }
  Target { objectName: "covered"; y: 100; z: -1 }
  MouseArea { y: 100; width: 40; height: 40 }
  Target { objectName: "under glass"; x: 50; y: 100 }
  Rectangle { x: 50; y: 100; width: 40; height: 40; color: "#80000000" }
  Target { objectName: "outside"; x: 300 }
  Target { objectName: "invisible"; x: 100; visible: false }
  Target { objectName: "disabled"; x: 100; y: 50; enabled: false }
  Item { x: 150; width: 20; height: 20; clip: true; Target { objectName: "cut off"; x: 25 } }
  Item { objectName: "deaf"; y: 150; width: 40; height: 40 }
})",
                    QUrl());
  std::unique_ptr<QObject> made(component.create());
  ASSERT_NE(made, nullptr) << component.errorString().toStdString();
  auto& root = *qobject_cast<QQuickItem*>(made.get());
  QQuickWindow window;
  window.resize(200, 200);
  root.setParentItem(window.contentItem());
  window.show();
  Finger finger(window);
  finger.bringUpToDate();
  const std::map<std::string, const char*> touched{{"free", "free "},
                                                   {"deep", "inside "},
                                                   {"half outside", "half outside "},
                                                   {"under glass", "under glass "}};
  for (const char* name : {"free", "deep", "half outside", "under glass", "covered", "outside",
                           "invisible", "disabled", "cut off", "deaf"}) {
    root.setProperty("touched", "");
    try {
      finger.touch(*shell::findItem(root, QString(name)), name);
    } catch (const ScriptError&) {
      root.setProperty("touched", "refused");
    }
    const auto found = touched.find(name);
    EXPECT_EQ(root.property("touched").toString(),
              found != touched.end() ? found->second : "refused")
        << name;
  }
}

}  // namespace
}  // namespace orlix::shop
