#include <gtest/gtest.h>

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Without any font each character is a box, of the same size on every machine.
  const QTemporaryDir folder;
  QFile fonts(folder.filePath("fonts.conf"));
  if (fonts.open(QIODevice::WriteOnly)) fonts.write("<?xml version=\"1.0\"?><fontconfig/>");
  fonts.close();
  qputenv("FONTCONFIG_FILE", fonts.fileName().toUtf8());
  QGuiApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
