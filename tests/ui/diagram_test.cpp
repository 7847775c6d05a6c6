#include "plot/diagram/diagram.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QRegularExpression>

#include "loops/loop_file.h"
#include "loops/own_loop.h"
#include "models/catalogue.h"
#include "plot/diagram/loop_diagram.h"
#include "plot/diagram/loop_layout.h"

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

// What is painted there covers neither a line nor a text, nor another value. Returns how many
// places there are.
int CheckPlaces(const QByteArray& svg, Diagram::Ground ground) {
  Diagram diagram(svg, ground);
  QImage picture(diagram.Whole().size().toSize(), QImage::Format_RGB32);
  QPainter painter(&picture);
  diagram.Paint(painter, picture.rect(), diagram.Whole());
  EXPECT_EQ(qGray(picture.pixel(2, 2)) < 128, ground == Diagram::Ground::Dark);
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
  return static_cast<int>(taken.size());
}

TEST(DiagramTest, DrawingsHaveFreeRoomForEachValueWithinTheLoop) {
  std::vector<std::unique_ptr<ZelModel>> models;
  for (int k = 0; k < 15; ++k) models.push_back(LoadModel(k));
  for (const QFileInfo& file : QDir(TORVANE_SHARE "/loops").entryInfoList({"*.mo"})) {
    models.push_back(loops::MakeLoop(loops::ReadLoopFile(file.filePath().toStdString(), {})));
  }
  EXPECT_GE(models.size(), 15U + 12U);
  for (const auto& model : models) {
    SCOPED_TRACE(model->Name());
    const bool own = dynamic_cast<const loops::OwnLoop*>(model.get());
    const DrawnModel drawn = own ? LoopDiagram(*model) : BuiltInDrawing(*model);
    ASSERT_EQ(drawn.Fault, "");
    const int places = CheckPlaces(drawn.Svg, Diagram::Ground::Light);
    EXPECT_EQ(CheckPlaces(drawn.Svg, Diagram::Ground::Dark), places);
    EXPECT_GE(places, 3);
    if (!own) continue;
    // A value beside each signal that instruments are offered, and beside each constant.
    auto values = static_cast<int>(model->Bench().Constants().size());
    for (const Variable* signal : model->Bench().Variables()) values += signal->Internal() ? 0 : 1;
    EXPECT_EQ(places, values);
  }
}

}  // namespace
}  // namespace torvane
