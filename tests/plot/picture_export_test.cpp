#include "plot/picture_export.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include "two_traces.h"

namespace torvane {
namespace {

class PictureExportTest : public testing::Test {
 protected:
  std::string Path(const char* name) { return folder_.filePath(QString(name)).toStdString(); }
  /// What stands in the file that the picture was written to.
  QByteArray Written(const char* name, const TraceLook& look = {}) {
    set_.Scope.CopyScreen(ScopeSweep::Whole, screen_);
    EXPECT_EQ(ExportPicture(ScopePicture(set_.Scope, screen_, nullptr, look), Path(name)), "");
    QFile file(QString::fromStdString(Path(name)));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
  }
  /// Columns of the image with something clearly blue, the colour of "Speed".
  int BlueColumns(const char* name) {
    const QImage image = QImage::fromData(Written(name));
    int columns = 0;
    for (int x = 0; x < image.width(); ++x) {
      bool blue = false;
      for (int y = 0; y < image.height() && !blue; ++y) {
        const QColor colour = image.pixelColor(x, y);
        blue = colour.blue() > colour.red() + 100;
      }
      columns += blue;
    }
    EXPECT_EQ(image.size(), QSize(1920, 1280));
    return columns;
  }

  QTemporaryDir folder_;
  test::TwoTraces set_;
  ScopeScreen screen_;
};

TEST_F(PictureExportTest, EachKindOfFileHoldsThePicture) {
  set_.Speed.Value = 1.0;
  set_.Sample(801);
  // The screen is most of the picture; it begins right of the labels.
  EXPECT_NEAR(BlueColumns("flat.PNG"), 1736, 20);
  const QByteArray svg = Written("scope.svg");
  EXPECT_TRUE(svg.contains("Speed 5/div (Off: 0)") && svg.contains("#0000ff"));
  EXPECT_TRUE(svg.contains("viewBox=\"0 0 9600 6400\"") && svg.contains(">MainScope</title>"));
  const QByteArray patterned = Written("patterned.svg", {TraceColours::Apart, true});
  EXPECT_TRUE(patterned.contains("stroke-dasharray=\"") && !patterned.contains("#0000ff"));
  EXPECT_TRUE(Written("scope.pdf").startsWith("%PDF-"));
  // A file has time for every line of a trace that a live screen paints as ranges with gaps.
  for (int i = 0; i < 801; ++i) {
    set_.Speed.Value = i % 8 < 4 ? 1.5 : -1.5;
    set_.Sample(1);
  }
  EXPECT_NEAR(BlueColumns("dense.png"), 1736, 20);
}

TEST_F(PictureExportTest, RefusesOtherEndingsAndUnwritablePlaces) {
  const Picture picture = ScopePicture(set_.Scope, screen_, nullptr);
  EXPECT_EQ(ExportPicture(picture, "scope.gif"),
            "A picture's name must end in .png, .svg or .pdf: scope.gif");
  const std::string none = Path("none/scope.png");
  EXPECT_EQ(ExportPicture(picture, none).rfind("Cannot open " + none, 0), 0U);
}

}  // namespace
}  // namespace torvane
