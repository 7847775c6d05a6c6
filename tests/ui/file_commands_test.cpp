#include "ui/desk/file_commands.h"

#include <QAbstractButton>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/files/seal.h"
#include "desktop.h"
#include "library/wave.h"
#include "ui/desk/workspace.h"

namespace torvane {
namespace {

using test::Desktop;
using test::Messages;

// Settings and kept sessions go to folders of the test's own.
class FileCommandsTest : public Desktop {
 protected:
  FileCommandsTest() {
    qputenv("XDG_STATE_HOME", Folder.filePath("state").toUtf8());
    QSettingsToTest();
    // The main window made by the base has read the folders of the user's own.
    Panel = std::make_unique<TZelControlPanelF>(Data);
    Panel->resize(Small);
    Panel->show();
    Reports.Take();
  }

  void QSettingsToTest() {
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, Folder.filePath("config"));
  }
  QString Path(const char* name) { return Folder.filePath(QString::fromLatin1(name)); }
  void Put(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
  }
  // Answers the next modal dialog, or the next one with that title, as soon as it is there.
  template <typename Answer>
  void Next(Answer answer, const QString& title = {}) {
    QTimer::singleShot(5, qApp, [=, this] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      const bool wanted = dialog && (title.isEmpty() || dialog->windowTitle() == title);
      wanted ? answer(*dialog) : Next(answer, title);
    });
  }
  void ChooseFile(const QString& path) {
    Next([path](QDialog& dialog) {
      auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
      name->setText(path);
      QTest::keyClick(name, Qt::Key_Return);
    });
  }
  ZelWave& Generator() {
    return dynamic_cast<ZelWave&>(*Bench().Instruments(InstrumentKind::WaveGenerator).front());
  }
  QString Title() { return Panel->Work().Title(); }
  bool Open(const QString& path) { return Panel->Work().Open(path); }
  // A file of the first model's, with these records.
  static QByteArray File(const QByteArray& records) {
    return QByteArray("Application,") + ApplicationTitle + "\r\nModel,2-1 PI+ Controller\r\n" +
           records;
  }

  QTemporaryDir Folder;
};

TEST_F(FileCommandsTest, SavesAndLoadsThroughTheMenu) {
  Const("KVP").Set(1.5);
  Generator().SetAmplitude(33);
  EXPECT_EQ(Title(), "* Torvane--Melkorin, 2nd Edition");
  ChooseFile(Path("stiff.tvf"));
  Trigger("MISave");  // no file yet: asks for one
  ASSERT_TRUE(QFile::exists(Path("stiff.tvf")));
  EXPECT_EQ(Title(), "stiff.tvf - Torvane--Melkorin, 2nd Edition");

  Const("KVP").Set(3);
  EXPECT_EQ(Title(), "* stiff.tvf - Torvane--Melkorin, 2nd Edition");
  Generator().SetAmplitude(1);
  ChooseFile(Path("stiff.tvf"));
  Trigger("MILoad");
  EXPECT_EQ(Const("KVP").Value(), 1.5);
  EXPECT_EQ(Generator().Settings().Amplitude, 33);
  EXPECT_EQ(Text("EAmplitude"), "33");
  EXPECT_FALSE(Panel->Work().Changed());

  Const("KVI").Set(7);
  Trigger("MISave");  // the file is known: asks nothing
  QFile file(Path("stiff.tvf"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().contains("Constant,KVI,7\r\n"));
  EXPECT_TRUE(Reports.Take().empty());

  emit Find<QMenu>("MRecent").aboutToShow();
  ASSERT_FALSE(Find<QMenu>("MRecent").actions().isEmpty());
  EXPECT_EQ(Find<QMenu>("MRecent").actions().front()->text(), Path("stiff.tvf"));
}

TEST_F(FileCommandsTest, AsksBeforeItReplacesAFileOrAModel) {
  Put(Path("old.tvf"), "kept");
  ChooseFile(Path("old.tvf"));
  Next([](QDialog& box) { box.reject(); }, "File Exsits");
  EXPECT_FALSE(Panel->Files().SaveAs());
  QFile file(Path("old.tvf"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), "kept");

  Put(Path("other.tvf"), "Model,3-1 PI Controller\r\nConstant,KP,0.25\r\n");
  Const("KVP").Set(2);
  Reports.Answer = false;
  EXPECT_FALSE(Open(Path("other.tvf")));
  EXPECT_EQ(Panel->Model()->Name(), "2-1 PI+ Controller");
  EXPECT_EQ(Const("KVP").Value(), 2);
  EXPECT_EQ(Reports.Take(), Messages{"Warning: This file is for another model.  Press OK to "
                                     "change models."});
  Reports.Answer = true;
  EXPECT_TRUE(Open(Path("other.tvf")));
  EXPECT_EQ(Panel->Model()->Name(), "3-1 PI Controller");
  EXPECT_EQ(Const("KP").Value(), 0.25);
  EXPECT_EQ(Reports.Take().size(), 2U);  // the model and the constants that would be lost
}

TEST_F(FileCommandsTest, ADroppedFileOpens) {
  Put(Path("dropped.tvf"), "Constant,KVP,4\n");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(Path("dropped.tvf"))});
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(Panel.get(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(Panel.get(), &drop);
  EXPECT_TRUE(WaitFor([&] { return Const("KVP").Value() == 4; }));
}

TEST_F(FileCommandsTest, ABrokenFileShowsTenBoxesAndOneList) {
  Put(Path("broken.tvf"), File(QByteArray("Constant,Nothing,1\n").repeated(14)));
  QString listed;
  Next([&](QDialog& dialog) {
    EXPECT_EQ(dialog.objectName(), "LoadReportBox");
    listed = dialog.findChild<QPlainTextEdit*>()->toPlainText();
    dialog.accept();
  });
  Open(Path("broken.tvf"));
  EXPECT_EQ(Reports.Take().size(), 10U);
  EXPECT_EQ(listed.count("Constant not found"), 4);
  // A file that is not there is told of and becomes nobody's current file.
  EXPECT_FALSE(Open(Path("missing.tvf")));
  EXPECT_EQ(Reports.Take().size(), 1U);
  EXPECT_EQ(Panel->Work().File(), Path("broken.tvf"));
}

TEST_F(FileCommandsTest, WindowsGoWhereTheFileSaysUnlessToldNotTo) {
  const WindowPlacement before = Generator().Placement;
  Put(Path("placed.tvf"), "WaveGen,MainWaveGen,Display,wsNormal,300,40,50,330\n");
  Trigger("MIResizeWhenLoading");
  Open(Path("placed.tvf"));
  EXPECT_EQ(Generator().Placement, before);
  Trigger("MIResizeWhenLoading");
  Open(Path("placed.tvf"));
  EXPECT_EQ(Find<QWidget>("TZelWaveGenF").parentWidget()->geometry(), QRect(40, 50, 330, 300));
  auto& area = Find<Workspace>("InstrumentArea");
  area.SetShown(First<Instrument>(InstrumentKind::FftAnalyser), true);
  Put(Path("shown.tvf"), QByteArray::fromStdString(ModelFileText(*Panel->Model())));
  area.SetShown(First<Instrument>(InstrumentKind::FftAnalyser), false);
  Play("-> TZelXferF hidden; saved Xfer,MainXFer,Display,wsNormal,0,0,0,0");
  Open(Path("shown.tvf"));
  Play("-> TZelXferF shown\nmodel 3-1 PI Controller -> TZelXferF hidden");
  Open(Path("shown.tvf"));
  Play(
      "-> TZelXferF shown; report Warning: This file is for another model.  Press OK to change "
      "models.; saved SweptDSA,MainSweptDSA,Display,wsNormal,0,0,0,0");
}

// Painted from within a box, a trace that is shown for the first time had no colour yet.
TEST_F(FileCommandsTest, ABoxWhileLoadingShowsNothingHalfLoaded) {
  Click("SBRun");
  ASSERT_TRUE(WaitFor([&] { return Panel->Frames() >= 3; }));
  struct Painter : test::Recorder {
    explicit Painter(TZelControlPanelF& painted) : panel(painted) {}
    void Show(MessageKind kind, const std::string& text) override {
      panel.Model()->Bench().RefreshInstruments();
      panel.grab();
      Recorder::Show(kind, text);
    }
    TZelControlPanelF& panel;
  } painter(*Panel);
  QByteArray records;
  for (const Variable* variable : Bench().Variables()) {
    records +=
        "Scope,MainScope,Channel," + QByteArray::fromStdString(variable->Name()) + ",1,1,0,0,1,0\n";
  }
  records += "Constant,Nothing,1\n";
  Put(Path("shows.tvf"), records);
  EXPECT_TRUE(Open(Path("shows.tvf")));
  EXPECT_FALSE(painter.Take().empty());
}

TEST_F(FileCommandsTest, LoadBeginsAtTheExamplesAndThenWhereTheUserWas) {
  const auto folderShown = [this](const QString& choose) {
    QString shown;
    Next([&](QDialog& dialog) {
      shown = dynamic_cast<QFileDialog&>(dialog).directory().path();
      EXPECT_EQ(dynamic_cast<QFileDialog&>(dialog).nameFilters(),
                QStringList("Torvane File (*.[tT][vV][fF])"));
      auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
      name->setText(choose);
      choose.isEmpty() ? dialog.reject() : QTest::keyClick(name, Qt::Key_Return);
    });
    Trigger("MILoad");
    return shown;
  };
  EXPECT_EQ(folderShown({}), Data.FindFolder("examples"));
  Put(Path("mine/A.TVF"), "Constant,KVP,4\n");
  EXPECT_EQ(folderShown(Path("mine/A.TVF")), Data.FindFolder("examples"));
  EXPECT_EQ(Const("KVP").Value(), 4);
  EXPECT_EQ(folderShown({}), Path("mine"));
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
    Panel = std::make_unique<TZelControlPanelF>(Data);
    Panel->Files().Start({}, false);
    return Panel->Model()->Name();
  };
  const std::string text = "Model,3-1 PI Controller\r\nConstant,KP,0.125\r\n";
  Put(left, QByteArray::fromStdString(Sealed(text)));
  EXPECT_EQ(start(nullptr), "2-1 PI+ Controller");
  EXPECT_TRUE(QFile::exists(left));
  EXPECT_EQ(start("Restore"), "3-1 PI Controller");
  EXPECT_EQ(Const("KP").Value(), 0.125);
  EXPECT_TRUE(Title().startsWith("* "));
  Panel.reset();
  EXPECT_FALSE(QFile::exists(left));

  Put(left, QByteArray::fromStdString(Sealed(text)));
  EXPECT_EQ(start("Discard"), "2-1 PI+ Controller");
  EXPECT_FALSE(QFile::exists(left));
  EXPECT_TRUE(Reports.Take().empty());
}

}  // namespace
}  // namespace torvane
