#include "ui/session/message_boxes.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <functional>

namespace torvane {
namespace {

// What the box that `report` shows looks like; it is answered with the button. A report's box is
// there only when the call is over.
QString Seen(QMessageBox::StandardButton answer, const std::function<void()>& report) {
  QString seen;
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box) return;
    seen = box->windowTitle() + "|" + box->text();
    for (QAbstractButton* button : box->buttons()) seen += "|" + button->text().remove('&');
    look.stop();
    box->button(answer)->click();
  });
  look.start(1);
  report();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !seen.isEmpty(); }, 120000));
  return seen;
}

TEST(MessageBoxesTest, ReportsAreModalBoxesWithTheirCaption) {
  const MessageBoxes boxes;
  EXPECT_EQ(Seen(QMessageBox::Ok, [] { Note("a < b"); }), "Note|a < b|OK");
  EXPECT_EQ(Seen(QMessageBox::Ok, [] { Warning("w"); }), "Warning|w|OK");
  EXPECT_EQ(Seen(QMessageBox::Ok, [] { Error("first\rsecond"); }), "Error|first\nsecond|OK");
  EXPECT_EQ(Seen(QMessageBox::Ok, [] { ConversionError("c"); }), "Message Box|c|OK");
}

// What repeats itself while it waits is told once.
TEST(MessageBoxesTest, BoxesComeInTheirOrderAndBeforeAQuestion) {
  const MessageBoxes boxes;
  QStringList seen;
  for (const char* text : {"1", "2", "1", "2"}) Error(text);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QTimer look;
  QObject::connect(&look, &QTimer::timeout, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box) return;
    seen << box->text();
    box->accept();
  });
  look.start(1);
  WarningQuestion("q");
  EXPECT_EQ(seen, QStringList({"1", "2", "q"}));
}

TEST(MessageBoxesTest, QuestionsAreAnswered) {
  const MessageBoxes boxes;
  bool answer = false;
  EXPECT_EQ(Seen(QMessageBox::Ok, [&] { answer = ErrorQuestion("q"); }), "Error|q|OK|Cancel");
  EXPECT_TRUE(answer);
  EXPECT_EQ(Seen(QMessageBox::Cancel, [&] { answer = WarningQuestion("q"); }),
            "Warning|q|OK|Cancel");
  EXPECT_FALSE(answer);
}

TEST(MessageBoxesTest, AFatalErrorEndsTheEventLoop) {
  const MessageBoxes boxes;
  QTimer::singleShot(0, [] { Seen(QMessageBox::Ok, [] { FatalError("over"); }); });
  QTimer::singleShot(120000, [] { QCoreApplication::exit(99); });
  EXPECT_EQ(QCoreApplication::exec(), EXIT_FAILURE);
}

}  // namespace
}  // namespace torvane
