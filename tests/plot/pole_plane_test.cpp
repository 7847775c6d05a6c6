#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "plot/poles/pole_grid.h"
#include "plot/poles/pole_painter.h"
#include "plot/scope_colours.h"

namespace torvane {
namespace {

constexpr double Reach = 1000.0;

// Where the mapping to the z plane is undone: rounding of an exponential and its logarithm.
constexpr double Rounding = 1e-9;

std::complex<double> InS(std::complex<double> point, double ts) {
  return ts > 0.0 ? std::log(point) / ts : point;
}

double NumberIn(const std::string& text) {
  return ParseNumber(text).value_or(0.0);
}

TEST(PoleGrid, HasTheDampingsAndFrequenciesOfItsLabels) {
  for (const double ts : {0.0, 0.01}) {  // sampled, what is above 314 1/s cannot be told apart
    SCOPED_TRACE(ts);
    const auto dampings = DampingLines(ts, Reach);
    ASSERT_EQ(dampings.size(), 9U);
    for (const PoleGridLine& line : dampings) {
      ASSERT_GT(line.Points.size(), 20U) << line.Label;
      const double zeta = NumberIn(line.Label.substr(std::string("ζ ").size()));
      for (auto point = line.Points.begin() + 1; point != line.Points.end(); ++point) {
        const std::complex<double> s = InS(*point, ts);
        EXPECT_NEAR(-s.real(), zeta * std::abs(s), Rounding * Reach) << line.Label;
      }
      const std::complex<double> end = InS(line.Points.back(), ts);
      if (ts == 0.0) {
        EXPECT_NEAR(std::abs(end), Reach, Rounding * Reach);
      } else {
        EXPECT_NEAR(std::abs(end.imag()),
                    std::min(std::numbers::pi / ts, Reach * std::sqrt(1.0 - zeta * zeta)),
                    Rounding * Reach);
      }
    }
    const auto frequencies = FrequencyLines(ts, Reach);
    ASSERT_GE(frequencies.size(), 5U);
    for (const PoleGridLine& line : frequencies) {
      ASSERT_GT(line.Points.size(), 20U) << line.Label;
      ASSERT_TRUE(line.Label.ends_with(" Hz"));
      const double w =
          2.0 * std::numbers::pi * NumberIn(line.Label.substr(0, line.Label.size() - 3));
      for (const auto& point : line.Points) {
        EXPECT_NEAR(std::abs(InS(point, ts)), w, Rounding * Reach) << line.Label;
      }
    }
  }
}

// Two divisions to the right of the middle, and one up.
TEST(PlaneAxes, PlacesAreWhereTheirValuesAre) {
  const PlaneAxes axes{{0, 0, 300, 200}, {-2.0, 5.0}, {0.5, 20.0}, {30.0, 40.0}};
  EXPECT_EQ(axes.PlaceOf({-1.0, 25.0}), QPointF(210.0, 60.0));
  EXPECT_EQ(axes.ValueAt({210.0, 60.0}), QPointF(-1.0, 25.0));
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
  const QPoint corner = painter.Axes().Plate.topLeft() + QPoint(3, 3);
  const auto inked = [&](QPoint at) {  // a dash, or the gap of three pixels beside one
    for (int x = -4; x <= 4; ++x) {
      for (int y = -4; y <= 4; ++y) {
        if (picture.pixel(at + QPoint(x, y)) != picture.pixel(corner)) return true;
      }
    }
    return false;
  };
  for (const PoleGridLine& line : DampingLines(map.Ts, 314.0)) {
    for (const auto& point : line.Points) {
      EXPECT_TRUE(inked(painter.Axes().PlaceOf({point.real(), point.imag()}).toPoint()));
      EXPECT_TRUE(inked(painter.Axes().PlaceOf({point.real(), -point.imag()}).toPoint()));
    }
  }
}

}  // namespace
}  // namespace torvane
