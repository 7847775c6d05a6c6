#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "plot/poles/pole_grid.h"
#include "plot/poles/pole_painter.h"
#include "plot/scope_colours.h"

namespace torvane {
namespace {

constexpr double Reach = 1000.0;

TEST(PoleGrid, HasTheDampingsAndFrequenciesOfItsLabels) {
  for (const double ts : {0.0, 0.01}) {
    const auto number = [](const std::string& label, std::size_t from) {
      return ParseNumber(label.substr(from, label.find(" Hz") - from)).value_or(0.0);
    };
    const auto check = [&](const PoleGridLine& line, auto&& off) {
      EXPECT_GT(line.Points.size(), 20U) << line.Label;
      for (const auto& point : line.Points) {
        EXPECT_NEAR(off(ts > 0.0 ? std::log(point) / ts : point), 0.0, 1e-9 * Reach) << line.Label;
      }
    };
    EXPECT_EQ(DampingLines(ts, Reach).size(), 9U);
    for (const PoleGridLine& line : DampingLines(ts, Reach)) {
      const double zeta = number(line.Label, std::string("ζ ").size());
      check(line, [zeta](std::complex<double> s) { return s.real() + zeta * std::abs(s); });
    }
    EXPECT_GE(FrequencyLines(ts, Reach).size(), 5U);
    for (const PoleGridLine& line : FrequencyLines(ts, Reach)) {
      const double w = 2.0 * std::numbers::pi * number(line.Label, 0);
      check(line, [w](std::complex<double> s) { return std::abs(s) - w; });
    }
  }
}

TEST(PolePainter, FillsThePictureAndHasTheImagesOfTheLinesBelow) {
  const PoleMap map{0.01, {}, {}, {}};
  PolePainter painter(map);
  QImage picture(600, 600, QImage::Format_RGB32);
  picture.fill(Qt::red);
  painter.Layout(picture.size(), 1.0, {});
  QPainter to(&picture);
  painter.Paint(to, ScopeColours::Light());
  to.end();
  EXPECT_EQ(picture.pixel(599, 599), ScopeColours::Light().Around.rgb());
  const PlaneAxes axes = painter.Axes();
  const int middle = axes.PlaceOf({0.0, 0.0}).toPoint().y();
  int inked = 0;
  int mirrored = 0;
  for (int x = 100; x < 500; ++x) {
    for (int y = 5; y < 200; ++y) {
      const QRgb plate = ScopeColours::Light().Plate.rgb();
      inked += picture.pixel(x, middle - y) != plate ? 1 : 0;
      mirrored += picture.pixel(x, middle + y) != plate ? 1 : 0;
    }
  }
  EXPECT_GT(mirrored, inked / 2);  // labels stand above only
  EXPECT_EQ(axes.ValueAt(axes.PlaceOf({-0.5, 0.25})), QPointF(-0.5, 0.25));
}

}  // namespace
}  // namespace torvane
