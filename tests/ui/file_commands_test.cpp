#include "ui/desk/file_commands.h"

#include <QAbstractButton>
#include <QDialog>
#include <QFile>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include "core/constant.h"
#include "core/files/seal.h"
#include "desktop.h"
#include "ui/session/end_requests.h"
#include "ui/session/message_boxes.h"

namespace torvane {
namespace {

using test::Desktop;
using test::Messages;

// Settings and kept sessions go to folders of the test's own.
class FileCommandsTest : public Desktop {
 protected:
  FileCommandsTest() {
    qputenv("XDG_STATE_HOME", Folder.filePath("state").toUtf8());
    // The main window made by the base has read the folders of the user's own.
    Panel = std::make_unique<ControlPanel>(Data);
    Panel->show();
  }

  QString Path(const char* name) { return Folder.filePath(QString::fromLatin1(name)); }
  void Put(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  // Answers the next modal dialog as soon as it is there.
  template <typename Answer>
  void Next(Answer answer) {
    QTimer::singleShot(5, qApp, [=, this] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      dialog ? answer(*dialog) : Next(answer);
    });
  }
  QTemporaryDir Folder;
};

// Painted from within a box, a trace that is shown for the first time had no colour yet.
TEST_F(FileCommandsTest, ABoxWhileLoadingShowsNothingHalfLoaded) {
  Click("SBRun");
  ASSERT_TRUE(WaitFor([&] { return Panel->Frames() >= 3; }));
  struct Painter : test::Recorder {
    explicit Painter(ControlPanel& painted) : panel(painted) {}
    void Show(MessageKind kind, const std::string& text) override {
      panel.Model()->Bench().RefreshInstruments();
      panel.grab();
      Recorder::Show(kind, text);
    }
    ControlPanel& panel;
  } painter(*Panel);
  QByteArray records;
  for (const Variable* variable : Bench().Variables()) {
    records +=
        "Scope,MainScope,Channel," + QByteArray::fromStdString(variable->Name()) + ",1,1,0,0,1,0\n";
  }
  records += "Constant,Nothing,1\n";
  Put(Path("shows.tvf"), records);
  EXPECT_TRUE(Panel->Work().Open(Path("shows.tvf")));
  EXPECT_FALSE(painter.Take().empty());
}

TEST_F(FileCommandsTest, ASessionThatEndedBadlyIsOfferedUntilItIsAnswered) {
  const QString left = Path("state/torvane/session-left.tvf");
  const auto start = [&](const char* button) {
    Next([button](QDialog& box) {
      EXPECT_EQ(box.objectName(), "RecoveryBox");
      for (QAbstractButton* choice : box.findChildren<QAbstractButton*>()) {
        if (button && choice->text().remove('&') == button) choice->click();
      }
      if (!button) QTest::keyClick(&box, Qt::Key_Escape);
    });
    Panel = std::make_unique<ControlPanel>(Data);
    Panel->Files().Start({}, false);
    return Panel->Model()->Name();
  };
  const std::string text = "Model,3-1 PI Controller\r\nConstant,KP,0.125\r\n";
  Put(left, QByteArray::fromStdString(Sealed(text)));
  EXPECT_EQ(start(nullptr), "2-1 PI+ Controller");
  EXPECT_TRUE(QFile::exists(left));
  EXPECT_EQ(start("Restore"), "3-1 PI Controller");
  EXPECT_EQ(Const("KP").Value(), 0.125);
  EXPECT_TRUE(Panel->Work().Title().startsWith("* "));
  Panel.reset();
  EXPECT_FALSE(QFile::exists(left));

  Put(left, QByteArray::fromStdString(Sealed(text)));
  EXPECT_EQ(start("Discard"), "2-1 PI+ Controller");
  EXPECT_FALSE(QFile::exists(left));
  EXPECT_TRUE(Reports.Take().empty());
}

// As in the program, where its end is told to all.
TEST_F(FileCommandsTest, AnAnsweredCloseLeavesTheLastSessionAloneOrSaysWhyNot) {
  const EndRequests requests;
  const auto end = [&] {
    Panel = std::make_unique<ControlPanel>(Data);
    QObject::connect(&requests, &EndRequests::EndAsked, Panel.get(), &ControlPanel::EndUnasked);
    Panel->show();
    Panel->Files().Start({}, true);
    Const("KVP").Set(1.25);
    Reports.Answer = true;
    QTimer::singleShot(0, Panel.get(), &QWidget::close);
    QCoreApplication::exec();
    Reports.Take();
    Panel.reset();
  };
  end();
  EXPECT_EQ(QDir(Path("state/torvane")).entryList(QDir::Files), QStringList("last-session"));
  QDir(Path("state")).removeRecursively();
  Put(Path("state"), "a file where the folder would be");
  const MessageBoxes boxes;
  QStringList told;
  QTimer answer;
  QObject::connect(&answer, &QTimer::timeout, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box) return;
    told << box->text();
    box->button(QMessageBox::Ok)->click();
  });
  answer.start(5);
  end();
  EXPECT_TRUE(told.back().startsWith("The session cannot be kept for the next start:\n" +
                                     Path("state/torvane/last-session")));
}

}  // namespace
}  // namespace torvane
