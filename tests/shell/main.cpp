// SPDX-License-Identifier: Apache-2.0

#include <QGuiApplication>
#include <QTcpServer>
#include <unistd.h>

#include <gtest/gtest.h>

#include "shell/OrlixShell.h"
#include "tests/TemporaryFolder.h"

/// What somebody may have left in the environment to watch the issuer's page.
static void spy(const std::string& folder) {
  QTcpServer port;
  port.listen(QHostAddress::LocalHost);
  const QByteArray address = "127.0.0.1:" + QByteArray::number(port.serverPort());
  qputenv("ORLIX_TEST_SPY", address + " " + folder.c_str() + "/keys");
  qputenv("QTWEBENGINE_REMOTE_DEBUGGING", address);
  qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--user-agent=spy");
  qputenv("SSLKEYLOGFILE", (folder + "/keys").c_str());
  qputenv("LANGUAGE", "de");
}

/// One application object for all tests of the program: the toolkit knows no second one. Drawn
/// without a display, with a home of its own.
int main(int count, char** values) {
  testing::InitGoogleTest(&count, values);
  const orlix::test::TemporaryFolder home;
  for (const char* folder : {"HOME", "XDG_RUNTIME_DIR"}) {
    qputenv(folder, home.path().c_str());
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  qputenv("QT_ACCESSIBILITY", "1");
  if (geteuid() == 0) {
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
  }
  spy(home.path());
  orlix::shell::OrlixShell::initialize();
  char name[] = "shell_tests", follow[] = "--webEngineArgs", agent[] = "--user-agent=spy";
  char* arguments[] = {name, follow, agent, nullptr};
  int number = 3;
  const QGuiApplication application(number, arguments);
  return RUN_ALL_TESTS();
}
