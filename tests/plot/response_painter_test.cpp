#include "plot/response/response_painter.h"

#include <gtest/gtest.h>

#include <QImage>

#include "instruments/fft/fft_analyser.h"
#include "support/bare_model.h"

namespace torvane {
namespace {

// Twenty bins and more a column, one of them a peak; neither that nor a pattern's gap hides it.
TEST(ResponsePainter, ShowsEveryBin) {
  test::BareModel model;
  Variable in{model.Bench(), "In", ""};
  Variable out{model.Bench(), "Out", ""};
  ZelXfer analyser{model.Bench(), 4};
  analyser.SetFreqRange(1.0, 10.0);
  ResponsePainter painter(analyser);
  for (int peak = 6000; peak < 6200; peak += 7) {
    ResponseCurve curve;
    for (int i = 0; i < 8000; ++i) curve.push_back({1.0 + i / 1000.0, i == peak ? 40.0 : 0.0, 0.0});
    analyser.LoadMemory(1, curve, "peak");
    QImage image(400, 400, QImage::Format_ARGB32_Premultiplied);
    painter.Layout(image.size(), 1.0, {TraceColours::Standard, true});
    QPainter device(&image);
    painter.Paint(device, ScopeColours::Light());
    const QRect& plate = painter.GainPlate();
    const int x = plate.left() + qRound(analyser.AxisShare(1.0 + peak / 1000.0) * plate.width());
    const int y = plate.center().y() - plate.height() * 3 / 12;
    EXPECT_LT(image.pixelColor(x, y).red(), 100) << peak;
    EXPECT_GT(image.pixelColor(x + 2, y).red(), 150) << peak;
  }
}

}  // namespace
}  // namespace torvane
