// The tests of widgets, on a screen in memory.

#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setStyle(QStringLiteral("fusion"));
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
