#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // Also when the build asks for the list of tests, on a machine without a display.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
