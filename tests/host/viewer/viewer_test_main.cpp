// SPDX-License-Identifier: BSD-3-Clause
// One application round all tests of a program, without a screen, and with settings of its own.
#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

// For the thread sanitizer, which sees memory that Qt moves about and not the locks that Qt does it
// under: what Qt's libraries do themselves is left out. Visible, as the sanitizer's library asks
// for it by its name.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options();
const char* __tsan_default_options() { return "ignore_noninstrumented_modules=1"; }

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // What a person has set on this machine changes no test, and no test changes it.
  const QTemporaryDir settings;
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
  qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
  qputenv("XDG_STATE_HOME", settings.path().toUtf8());
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
