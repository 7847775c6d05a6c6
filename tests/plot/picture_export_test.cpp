#include "plot/picture_export.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "two_traces.h"

namespace torvane {
namespace {

using test::TwoTraces;

class PictureExportTest : public testing::Test {
 protected:
  PictureExportTest() {
    set_.Speed.Value = 1.0;
    set_.Sample(390);
    set_.Scope.CopyScreen(ScopeSweep::Present, screen_);
  }
  std::string Path(const char* name) { return folder_.filePath(QString(name)).toStdString(); }
  bool Export(const std::string& file) {
    error_ = ExportPicture(ScopePicture(set_.Scope, screen_, nullptr), file);
    return error_.empty();
  }
  QByteArray Read(const std::string& path) {
    QFile file(QString::fromStdString(path));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }

  QTemporaryDir folder_;
  TwoTraces set_;
  ScopeScreen screen_;
  std::string error_;
};

TEST_F(PictureExportTest, ImagesShowTheTraces) {
  ASSERT_TRUE(Export(Path("scope.PNG"))) << error_;
  const QImage image(QString::fromStdString(Path("scope.PNG")));
  ASSERT_FALSE(image.isNull());
  int blue = 0;
  for (int x = 0; x < image.width(); ++x) {
    for (int y = 0; y < image.height(); ++y) {
      const QColor colour = image.pixelColor(x, y);
      blue += colour.blue() > 200 && colour.red() < 50 && colour.green() < 50;
    }
  }
  // The trace runs across nearly the whole screen, which is most of the picture.
  EXPECT_GT(blue, image.width() / 2);
}

// A file has time for every line of a trace that a live screen paints as ranges with gaps between.
TEST_F(PictureExportTest, ImagesShowEveryLineOfADenseTrace) {
  for (int i = 0; i < 801; ++i) {
    set_.Speed.Value = i % 8 < 4 ? 1.5 : -1.5;
    set_.Sample(1);
  }
  set_.Scope.CopyScreen(ScopeSweep::Whole, screen_);
  ASSERT_TRUE(Export(Path("dense.png"))) << error_;
  const QImage image(QString::fromStdString(Path("dense.png")));
  int columns = 0;
  for (int x = 0; x < image.width(); ++x) {
    bool blue = false;
    for (int y = 0; y < image.height() && !blue; ++y) {
      const QColor colour = image.pixelColor(x, y);
      blue = colour.blue() > colour.red() + 100;
    }
    columns += blue;
  }
  EXPECT_GT(columns, image.width() * 3 / 4);
}

TEST_F(PictureExportTest, DrawingsKeepTextAndLines) {
  ASSERT_TRUE(Export(Path("scope.svg"))) << error_;
  const QByteArray svg = Read(Path("scope.svg"));
  EXPECT_TRUE(svg.contains("Speed 5/div (Off: 0)"));
  EXPECT_TRUE(svg.contains("#0000ff"));
  const Picture patterned = ScopePicture(set_.Scope, screen_, nullptr, {TraceColours::Apart, true});
  ASSERT_EQ(ExportPicture(patterned, Path("patterned.svg")), "");
  EXPECT_TRUE(Read(Path("patterned.svg")).contains("stroke-dasharray=\""));
  EXPECT_FALSE(Read(Path("patterned.svg")).contains("#0000ff"));
  ASSERT_TRUE(Export(Path("scope.pdf"))) << error_;
  EXPECT_TRUE(Read(Path("scope.pdf")).startsWith("%PDF-"));
}

TEST_F(PictureExportTest, RefusesOtherEndingsAndUnwritablePlaces) {
  EXPECT_FALSE(Export(Path("scope.gif")));
  EXPECT_EQ(error_, "A picture's name must end in .png, .svg or .pdf: " + Path("scope.gif"));
  EXPECT_FALSE(Export(Path("none/scope.png")));
  EXPECT_EQ(error_.rfind("Cannot open " + Path("none/scope.png"), 0), 0U) << error_;
}

}  // namespace
}  // namespace torvane
