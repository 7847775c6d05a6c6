#include <gtest/gtest.h>

#include <limits>

#include "instruments/scope_bench.h"
#include "support/recorder.h"

namespace torvane::test {

TEST(ScopeAxes, VerticalPixelsTruncateAndEndAboveTheBottomEdge) {
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {});
  Variable signal(bench, "Signal", "",
                  {.Scale = 4.0, .Offset = 1.0, .Multiplier = 2.0, .Shown = true});
  ZelChannel channel(signal, 8, 4);
  channel.SetScreenSize(640, 401);
  const auto pixel = [&channel](double value) {
    channel.SetScreenValue(0, static_cast<float>(value));
    channel.ComputeY(0);
    return channel.YPixel(0);
  };
  EXPECT_EQ(pixel(-0.5), 200);    // minus the offset: the centre line
  EXPECT_EQ(pixel(-0.524), 200);  // 200.6: half of 401 is 200
  EXPECT_EQ(pixel(1.0), 162);     // 200 - 3/4 * 401/8 = 162.4
  EXPECT_EQ(pixel(7.5), -0);      // 200 - 4 * 401/8 = -0.5 truncates towards zero
  EXPECT_EQ(pixel(8.5), -25);     // 200 - 4.5 * 401/8 = -25.6: above the screen is kept
  EXPECT_EQ(pixel(-8.5), 399);
  EXPECT_EQ(pixel(-1e30), 399);
  EXPECT_LT(pixel(1e30), -1000000);
  EXPECT_LT(pixel(std::numeric_limits<float>::infinity()), -1000000);
  EXPECT_LT(pixel(std::numeric_limits<float>::quiet_NaN()), -1000000);
}

TEST(ScopeAxes, TimeAxisIsMeasuredFromTheStartAndXYFromTheCentre) {
  ScopeBench b;
  b.Scope.SetScreenSize(801, 400);
  b.Ramp(0, 399);
  ZelChannel& time = b.Scope.TimeChannel();
  EXPECT_EQ(b.Scope.HorizontalChannel(), &time);
  b.Scope.SetHorizontalScale(b.Trace(), 5.0);  // no time scale: the screen fills on
  EXPECT_EQ(b.Scope.State(), ZelScope::Capture::Filling);
  EXPECT_EQ(time.XPixel(0), 1);
  EXPECT_EQ(time.XPixel(1), 2);               // 80.1 / 40 = 2.0025
  EXPECT_EQ(time.XPixel(399), 798);           // 798.99
  b.Scope.SetHorizontalOffset(time, 1000.0);  // not drawn
  EXPECT_EQ(time.XPixel(1), 2);
  b.Scope.SetScreenSize(640, 400);
  EXPECT_EQ(time.XPixel(399), 638);
  b.Scope.SetHorizontalScale(time, 20.0);
  EXPECT_EQ(time.XPixel(100), 320);
  EXPECT_EQ(time.XPixel(300), 638);

  ZelChannel& trace = b.Trace();
  b.Scope.SetHorizontalScale(trace, 100.0);
  EXPECT_EQ(b.Scope.SampleInterval(), 0.5);  // the time channel's
  b.Scope.SetHorizontalOffset(trace, -150.0);
  b.Scope.SetHorizontalChannel(trace);
  EXPECT_TRUE(b.Scope.XYMode());
  EXPECT_EQ(b.Scope.HorizontalChannel(), &trace);
  EXPECT_EQ(trace.XPixel(0), 224);  // 320 - 1.5 * 64
  EXPECT_EQ(trace.XPixel(150), 320);
  b.Scope.SetHorizontalScale(trace, 10.0);
  EXPECT_EQ(trace.XPixel(0), 0);
  EXPECT_EQ(trace.XPixel(399), 639);
  // New points are drawn against the chosen axis.
  b.Scope.Trigger().SetMode(SweepMode::Cont);
  b.At(400, 151.0);
  EXPECT_EQ(trace.XPixel(2), 326);
  EXPECT_EQ(trace.YPixel(2), 200 - 151 * 50);

  Recorder recorder;
  b.Scope.SetHorizontalChannel(time);
  EXPECT_EQ(time.XPixel(1), 3);  // 64 / 20 = 3.2
  time.IsHorizontal = false;
  EXPECT_EQ(b.Scope.HorizontalChannel(), nullptr);
  EXPECT_EQ(recorder.Take(), Messages{"Error: Internal Error: No Horiz Channel"});
}

TEST(ScopeAxes, AutoAndFillUseThePointsOnTheScreenAndTheMultiplier) {
  Recorder recorder;
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {.Scale = 40.0});
  Variable signal(bench, "Signal", "", {.Offset = 3.0, .Multiplier = 2.0});
  ZelScope scope(bench, "MainScope");
  ZelChannel& trace = *scope.Channels()[0];
  scope.FillVertical(trace);  // nothing on the screen
  EXPECT_EQ(recorder.Take(), Messages{"Note: Cannot Fill because Max = Min"});

  scope.Sample(0.0);
  scope.AutoVertical(trace);
  EXPECT_EQ(trace.Vertical.Scale, 1.0);
  EXPECT_EQ(trace.Vertical.Offset, 0.0);

  signal.Value = -6.0;
  scope.Sample(1.0);
  signal.Value = std::numeric_limits<double>::quiet_NaN();
  scope.Sample(2.0);
  signal.Value = 2.0;
  scope.Sample(3.0);
  scope.SetVerticalOffset(trace, 5.0);
  scope.AutoVertical(trace);
  EXPECT_EQ(trace.Vertical.Scale, 3.0);  // 2 * 6 / 4
  EXPECT_EQ(trace.Vertical.Offset, 0.0);
  scope.FillVertical(trace);
  EXPECT_EQ(trace.Vertical.Scale, 2.0);   // 8 * 2 / 8
  EXPECT_EQ(trace.Vertical.Offset, 4.0);  // -(-4) * 0.5 * 2

  trace.SetScreenValue(1, 0.0F);
  trace.SetScreenValue(3, 0.0F);
  scope.FillVertical(trace);
  EXPECT_EQ(recorder.Take(), Messages{"Note: Cannot Fill because Max = Min"});
  EXPECT_EQ(trace.Vertical.Scale, 2.0);
  EXPECT_EQ(trace.Vertical.Offset, 4.0);
}

TEST(ScopeAxes, RefusesScalesThatCannotDivide) {
  Recorder recorder;
  ScopeBench b;
  for (const double bad : {0.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(b.Scope.SetVerticalScale(b.Trace(), bad));
    EXPECT_FALSE(b.Scope.SetHorizontalScale(b.Scope.TimeChannel(), bad));
    EXPECT_EQ(recorder.Take(), (Messages{"Error: Scale cannot be set to zero",
                                         "Error: Horizontal scale cannot be set to zero"}));
  }
  EXPECT_EQ(b.Trace().Vertical.Scale, 1.0);
  EXPECT_EQ(b.Scope.SampleInterval(), 1.0);

  ZelChannel channel(b.Signal, 4, 4);
  ZelTimeChannel time(b.Time, 4, 4);
  channel.ComputeY(0);
  channel.ComputeX(0);
  time.ComputeX(0);
  EXPECT_EQ(recorder.Take(), (Messages{"Error: Internal Error: ScreenHeight not initialized",
                                       "Error: Internal Error: ScreenDimensions not initialized",
                                       "Error: Internal Error: Uninit ScreenDimension"}));
}

}  // namespace torvane::test
