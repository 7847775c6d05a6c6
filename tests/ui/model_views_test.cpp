#include "ui/panes/model_views.h"

#include <QDialog>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "desktop.h"
#include "support/one_state_model.h"

namespace torvane {
namespace {

class ModelViewsTest : public test::Desktop {
 protected:
  ModelViewsTest() {
    Panel = std::make_unique<ControlPanel>(DataFolder(folder_.path()));
    Panel->show();
  }
  void Write(const char* name, const QByteArray& bytes) {
    QFile file(folder_.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }

  QTemporaryDir folder_;
};

/// Has files that the program has no drawing of.
class OwnModel : public test::OneStateModel {
 public:
  OwnModel() : OneStateModel(0.001, 0.0, [](double, double) { return 0.0; }) {
    SetFiles("own.bmp", "own.txt");
  }
};

TEST_F(ModelViewsTest, ShowTheModelsPictureAndText) {
  QImage picture(40, 20, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(folder_.filePath("own.bmp")));
  Write("own.txt", "The PI+ controller \xe2\x80\xa6");
  Panel->MakeCurrent(std::make_unique<OwnModel>());
  Click("SBShowModelBMP");
  EXPECT_TRUE(Find<QWidget>("ModelPictureF").isVisible());
  EXPECT_EQ(Find<QWidget>("ModelPictureF").windowTitle(), "Model for  \"One state\"");
  EXPECT_EQ(Find<QLabel>("IPicture").pixmap().size(), picture.size());
  Click("BShowModelTXT");
  EXPECT_EQ(Find<QDialog>("ModelTextF").windowTitle(), "More about Model \"One state\"");
  EXPECT_EQ(Find<QPlainTextEdit>("MText").toPlainText(), QString("The PI+ controller …"));
}

TEST_F(ModelViewsTest, SayWhatIsMissing) {
  Panel->MakeCurrent(std::make_unique<OwnModel>());
  Click("SBShowModelBMP");
  EXPECT_TRUE(Find<QLabel>("IPicture").text().contains("\"own.bmp\" is missing"));
  EXPECT_TRUE(Find<QLabel>("IPicture").text().contains(folder_.path()));
  Click("BShowModelTXT");
  EXPECT_TRUE(Find<QPlainTextEdit>("MText").toPlainText().contains("\"own.txt\" is missing"));
  Write("own.bmp", "no picture at all");
  Panel->MakeCurrent(std::make_unique<OwnModel>());
  EXPECT_TRUE(Find<QLabel>("IPicture").text().startsWith("Cannot read "));
}

/// Graphviz answers only when there is a file "go".
class SlowLayoutTest : public ModelViewsTest {
 protected:
  SlowLayoutTest() : path_(qgetenv("PATH")) {
    const QString dot = QStandardPaths::findExecutable("dot");
    const QString go = folder_.filePath("go");
    Write("dot",
          QStringLiteral("#!/bin/sh\nwhile [ ! -e %1 ]; do sleep 0.01; done\nexec %2 \"$@\"\n")
              .arg(go, dot)
              .toUtf8());
    QFile(folder_.filePath("dot"))
        .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", folder_.path().toUtf8() + ':' + path_);
    Play("put ~/own.mo " + Loop("K") + "\ndrop ~/own.mo; key panel F4 -> IPicture=" + Waits);
  }
  ~SlowLayoutTest() override { qputenv("PATH", path_); }

  static std::string Loop(const std::string& constant) {
    return "model Own\\n  parameter Real " + constant +
           " = 2;\\n  Real x;\\nequation\\n  der(x) = -" + constant + " * x;\\nend Own;";
  }

  const std::string Waits = "Graphviz lays the diagram out...";
  QByteArray path_;
};

TEST_F(SlowLayoutTest, ANewerTextIsDrawnAndUndoWorksMeanwhile) {
  Play("set K 3; click MIUndo; put ~/own.mo " + Loop("L") +
       "\n-> LoopChangeBar shown\nclick SBReadAgain -> SGConsts[L]=2; IPicture=" + Waits);
  Play("set L 4; click MIUndo -> SGConsts[L]=2; IPicture shown");
  Write("go", "");
  Play("-> IDiagram shown\nclick IDiagram[L] -> EDiagramValue=2");
}

TEST_F(SlowLayoutTest, TheClosedPaneHasTheDrawingLater) {
  Play("key panel F4 -> ModelPictureF hidden");
  Write("go", "");
  Play("key panel F4 -> IDiagram shown\nclick IDiagram[K] -> EDiagramValue=2");
}

TEST_F(SlowLayoutTest, WhatComesLateForAnotherModelIsDropped) {
  Play("model 3-1 PI Controller -> IDiagram shown");
  Write("go", "");
  Play("run 0.1; look IDiagram; set KP 1 -> IDiagram repainted");
}

TEST(DataFolderTest, TheProgramsOwnFolderComesFirst) {
  const QTemporaryDir prefix;
  QDir(prefix.path()).mkpath("bin");
  QDir(prefix.path()).mkpath("share/torvane");
  const QString own = prefix.filePath("bin/a.txt");
  const QString installed = prefix.filePath("share/torvane/a.txt");
  const DataFolder data(prefix.filePath("bin"));
  EXPECT_EQ(data.Find("a.txt"), QString());
  QFile(installed).open(QIODevice::WriteOnly);
  EXPECT_EQ(data.Find("a.txt"), installed);
  QFile(own).open(QIODevice::WriteOnly);
  EXPECT_EQ(data.Find("a.txt"), own);
}

}  // namespace
}  // namespace torvane
