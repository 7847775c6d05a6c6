#include "ui/panes/model_views.h"

#include <QDialog>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTemporaryDir>

#include "desktop.h"

namespace torvane {
namespace {

class ModelViewsTest : public test::Desktop {
 protected:
  ModelViewsTest() {
    Panel = std::make_unique<TZelControlPanelF>(DataFolder(folder_.path()));
    Panel->show();
  }
  void Write(const char* name, const QByteArray& bytes) {
    QFile file(folder_.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }

  QTemporaryDir folder_;
};

TEST_F(ModelViewsTest, ShowTheModelsPictureAndText) {
  QImage picture(40, 20, QImage::Format_RGB32);
  picture.fill(Qt::red);
  ASSERT_TRUE(picture.save(folder_.filePath("BWTX02-01.bmp")));
  Write("BWTX02-01.txt", "The PI+ controller \xe2\x80\xa6");
  Click("SBShowModelBMP");
  QDialog& view = Find<QDialog>("ModelPictureF");
  EXPECT_TRUE(view.isVisible());
  EXPECT_EQ(view.windowTitle(), "Model for  \"2-1 PI+ Controller\"");
  EXPECT_EQ(Find<QLabel>("IPicture").pixmap().size(), picture.size());
  Click("BShowModelTXT");
  EXPECT_EQ(Find<QDialog>("ModelTextF").windowTitle(), "More about Model \"2-1 PI+ Controller\"");
  EXPECT_EQ(Find<QPlainTextEdit>("MText").toPlainText(), QString("The PI+ controller …"));
}

TEST_F(ModelViewsTest, SayWhatIsMissing) {
  Click("SBShowModelBMP");
  EXPECT_TRUE(Find<QLabel>("IPicture").text().contains("\"BWTX02-01.bmp\" is missing"));
  EXPECT_TRUE(Find<QLabel>("IPicture").text().contains(folder_.path()));
  Click("BShowModelTXT");
  EXPECT_TRUE(Find<QPlainTextEdit>("MText").toPlainText().contains("\"BWTX02-01.txt\" is missing"));
  Write("BWTX02-01.bmp", "no picture at all");
  Click("SBShowModelBMP");
  EXPECT_TRUE(Find<QLabel>("IPicture").text().startsWith("Cannot read "));
}

TEST_F(ModelViewsTest, FollowTheModel) {
  Click("SBShowModelBMP");
  ChooseModel("9-1 Analog Filters");  // has no picture
  EXPECT_FALSE(Find<QDialog>("ModelPictureF").isVisible());
  EXPECT_FALSE(Find<QWidget>("SBShowModelBMP").isEnabled());
  EXPECT_TRUE(Find<QWidget>("BShowModelTXT").isVisible());
  ChooseModel("Seminar--Analog PI Controller");
  EXPECT_TRUE(Find<QWidget>("SBShowModelBMP").isEnabled());
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
