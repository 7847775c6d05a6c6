#include "ui/desk/new_loop_dialog.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>

namespace torvane::test {
namespace {

// What a package that was half removed leaves: no folder, an empty one, a file without a text.
TEST(NewLoopDialogTest, WithoutALoopToBeginAsItSaysWhyAndCreatesNone) {
  const QTemporaryDir folder;
  const auto told = [&](const QString& templates) {
    const NewLoopDialog dialog(templates, folder.path(), nullptr);
    EXPECT_FALSE(dialog.findChild<QPushButton*>("BCreateLoop")->isEnabled());
    EXPECT_EQ(dialog.findChild<QListWidget*>("LBTemplates")->count(), 0);
    return dialog.findChild<QLabel*>("LNewLoop")->text();
  };
  EXPECT_TRUE(told({}).contains("come with the program are missing."));
  EXPECT_TRUE(told(folder.path()).contains("are missing from " + folder.path() + "."));
  QFile empty(folder.filePath("Empty.mo"));
  ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
  empty.close();
  EXPECT_TRUE(told(folder.path()).contains("are missing from"));
}

}  // namespace
}  // namespace torvane::test
