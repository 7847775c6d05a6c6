#include "plot/diagram/diagram.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>

static void InitDiagrams() {
  Q_INIT_RESOURCE(torvane_diagrams);
}

namespace torvane {
namespace {

bool IsEven(const QImage& picture, const QRect& area) {
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) {
      if (picture.pixel(x, y) != picture.pixel(area.topLeft())) return false;
    }
  }
  return true;
}

// What is painted there covers neither a line nor a text, nor another value.
TEST(DiagramTest, DrawingsHaveFreeRoomForEachValueWithinTheLoop) {
  InitDiagrams();
  const QFileInfoList drawings = QDir(":/diagrams").entryInfoList();
  EXPECT_EQ(drawings.size(), 15);
  for (const QFileInfo& info : drawings) {
    SCOPED_TRACE(info.fileName().toStdString());
    QFile file(info.filePath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray svg = file.readAll();
    for (const auto ground : {Diagram::Ground::Light, Diagram::Ground::Dark}) {
      Diagram diagram(svg, ground);
      QImage picture(diagram.Whole().size().toSize(), QImage::Format_RGB32);
      QPainter painter(&picture);
      diagram.Paint(painter, picture.rect(), diagram.Whole());
      const bool dark = qGray(picture.pixel(2, 2)) < 128;
      EXPECT_EQ(dark, ground == Diagram::Ground::Dark);
      const QRegularExpression places("id=\"(signal|constant) ([^\"#]+)\"");
      QList<QRectF> taken;
      for (auto it = places.globalMatch(svg); it.hasNext();) {
        const auto match = it.next();
        const std::string name = match.captured(2).toStdString();
        const auto kind =
            match.captured(1) == "signal" ? Diagram::Kind::Signal : Diagram::Kind::Constant;
        const QRectF place = diagram.ValuePlace(kind, name);
        EXPECT_GE(place.width(), 40.0) << name;
        EXPECT_GE(place.height(), 18.0) << name;
        EXPECT_TRUE(diagram.Loop().contains(place)) << name;
        EXPECT_FALSE(diagram.NamePlaces(kind, name).isEmpty()) << name;
        EXPECT_TRUE(IsEven(picture, place.toAlignedRect())) << name;
        for (const QRectF& other : taken) EXPECT_FALSE(other.intersects(place)) << name;
        taken << place;
      }
      EXPECT_GE(taken.size(), 3);
    }
  }
}

}  // namespace
}  // namespace torvane
