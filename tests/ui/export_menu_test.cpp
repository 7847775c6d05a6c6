#include "ui/widgets/export_menu.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QMimeData>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>
#include <string_view>

#include "core/files/atomic_save.h"
#include "desktop.h"
#include "ui/panes/scope/scope_paint_box.h"

namespace torvane {
namespace {

using test::Messages;

class ExportMenuTest : public test::Desktop {
 protected:
  ExportMenuTest() {
    Click("SBRun");
    EXPECT_TRUE(QTest::qWaitFor([this] { return Panel->Model()->Time() > 0.05; }));
    Click("SBStop");
  }
  // Other windows have menus of these names.
  template <class T>
  T& InScope(const char* name) {
    return *Find<QWidget>("TZelScopeF").findChild<T*>(QString::fromLatin1(name));
  }
  /// Answers the dialog that the next action opens.
  void Answer(std::function<void(QDialog& dialog)> answer) {
    QTimer::singleShot(0, qApp, [this, answer] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      dialog ? answer(*dialog) : Answer(answer);
    });
  }
  /// Chooses an item of the menu, and a file name in the dialog that it opens.
  void Save(const char* item, const QString& path) {
    Answer([path](QDialog& dialog) {
      dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
      dialog.accept();
    });
    InScope<QAction>(item).trigger();
  }
  QString Path(const char* name) { return Folder.filePath(QLatin1String(name)); }
  QByteArray Read(const char* name) {
    QFile file(Path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  QTemporaryDir Folder;
};

TEST_F(ExportMenuTest, PictureAndDataGoToFilesAndToTheClipboard) {
  emit Find<QWidget>("PBScreen").customContextMenuRequested({20, 20});
  EXPECT_TRUE(InScope<QMenu>("MExport").isVisible());
  InScope<QMenu>("MExport").hide();
  Save("MIExportPng", Path("a"));
  Save("MIExportSvg", Path("b.svg"));
  Save("MIExportPdf", Path("c.PDF"));
  Save("MIExportCsv", Path("d.csv"));
  EXPECT_EQ(QImage(Path("a.png")).size(), QSize(1920, 1280));
  EXPECT_TRUE(Read("b.svg").contains("[Horiz]: Time 0.002 "));
  EXPECT_TRUE(Read("c.PDF").startsWith("%PDF-"));
  const QByteArray csv = Read("d.csv");
  EXPECT_TRUE(csv.startsWith("Time,vC,vF\n")) << csv.left(80).toStdString();
  EXPECT_EQ(csv.count('\n'), Find<ScopePaintBox>("PBScreen").Screen().PointCount() + 1);
  InScope<QAction>("MICopyData").trigger();
  const QMimeData& copied = *QGuiApplication::clipboard()->mimeData();
  EXPECT_EQ(copied.data(QStringLiteral("text/csv")), csv);
  EXPECT_EQ(copied.text(), QString::fromUtf8(csv));
  InScope<QAction>("MICopyPicture").trigger();
  EXPECT_EQ(QGuiApplication::clipboard()->image(),
            QImage(Path("a.png")).convertToFormat(QImage::Format_RGB32));
  EXPECT_TRUE(Reports.Take().empty());
}

TEST_F(ExportMenuTest, WhatCannotBeWrittenIsToldWithFileAndReason) {
  Save("MIExportCsv", Path("none/d.csv"));
  const std::string file = Path("none/d.csv").toStdString();
  EXPECT_EQ(Reports.Take(), Messages{"Error: Cannot open " + file + ": No such file or directory"});
}

TEST_F(ExportMenuTest, TheButtonPrintsAPageToAFile) {
  Answer([path = Path("page.pdf")](QDialog& dialog) {
    EXPECT_EQ(dialog.objectName(), QStringLiteral("PrintDialog"));
    auto* printers = dialog.findChild<QComboBox*>(QStringLiteral("printers"));
    printers->setCurrentIndex(printers->count() - 1);  // the one that prints to a file
    dialog.findChild<QLineEdit*>(QStringLiteral("filename"))->setText(path);
    dialog.accept();
  });
  Click("PrintB");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Read("page.pdf").trimmed().endsWith("%%EOF"); }));
  EXPECT_TRUE(Read("page.pdf").startsWith("%PDF-"));
  EXPECT_TRUE(Reports.Take().empty());
}

// A click that was under way when a dialog closed brings another model: what the dialog was for
// goes with the one before.
TEST_F(ExportMenuTest, AModelThatComesWhileADialogClosesTakesItAlong) {
  ASSERT_EQ(ReplaceFile(Path("a.csv").toStdString(), "t,x,y\n0,1,2\n1,2,3\n"), "");
  const char* models[] = {"3-1 PI Controller", "6-1 PID Controller"};
  std::size_t turn = 0;
  for (const char* asked : {"PrintB", "MIExportPng", "BVertAdd", "MILoadTraces", "MILoadMemory1"}) {
    const bool saves = asked == std::string_view("MIExportPng");
    Answer([&, file = saves ? Path("late.png") : Path("a.csv")](QDialog& dialog) {
      auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
      if (edit) edit->setText(file);
      dialog.accept();
      Panel->Work().Choose(models[turn++ % 2]);
    });
    const QPointer<QWidget> scope(&Find<QWidget>("TZelScopeF"));
    Click(asked);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !scope; })) << asked;
  }
  EXPECT_FALSE(QFile::exists(Path("late.png")));
  EXPECT_TRUE(Reports.Take().empty());
}

}  // namespace
}  // namespace torvane
