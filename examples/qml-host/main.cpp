// SPDX-License-Identifier: Apache-2.0

// Starts Main.qml, which pays.
//
// usage: orlix-qml-host BASE ANCHOR CODE      pays CODE at the test system with this base address

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <iostream>

#include "shell/OrlixShell.h"

int main(int argc, char** argv) {
  orlix::shell::OrlixShell::initialize();
  const QGuiApplication application(argc, argv);
  if (argc != 4) {
    std::cerr << "usage: orlix-qml-host BASE ANCHOR CODE\n";
    return 2;
  }
  QQmlApplicationEngine engine;
  const QStringList given = QGuiApplication::arguments();
  engine.setInitialProperties({{"server", given[1]}, {"anchor", given[2]}, {"code", given[3]}});
  engine.load(QUrl("qrc:/qml-host/Main.qml"));
  return engine.rootObjects().isEmpty() ? 1 : QGuiApplication::exec();
}
