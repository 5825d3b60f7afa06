#include <QGuiApplication>
#include <unistd.h>

#include <gtest/gtest.h>

#include "shell/OrlixShell.h"
#include "tests/TemporaryFolder.h"

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
  orlix::shell::OrlixShell::initialize();
  const QGuiApplication application(count, values);
  return RUN_ALL_TESTS();
}
