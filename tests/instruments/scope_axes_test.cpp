#include <gtest/gtest.h>

#include <cmath>

#include "instruments/scope/scope_csv.h"
#include "instruments/scope/scope_cursors.h"
#include "instruments/scope/scope_math.h"
#include "instruments/scope/screen_pixels.h"
#include "instruments/scope_bench.h"
#include "support/recorder.h"

namespace torvane::test {

TEST(ScopeAxes, VerticalPixelsTruncateAndEndAboveTheBottomEdge) {
  ScopeBench b({.Scale = 4.0, .Offset = 1.0, .Multiplier = 2.0, .Shown = true});
  const SignalChannel channel(b.Signal, 8, 4);
  const ScreenPixels pixels(640, 401);
  const struct {
    double Value;
    int Pixel;
    int Beyond;
  } cases[] = {{-0.5, 200, 0},    // minus the offset: the centre line
               {-0.524, 200, 0},  // 200.6: half of 401 is 200
               {1.0, 162, 0},     // 200 - 3/4 * 401/8 = 162.4
               {7.5, 0, 0},       // 200 - 4 * 401/8 = -0.5 truncates towards zero
               {8.5, -25, 1},     // 200 - 4.5 * 401/8 = -25.6: above the screen is kept
               {-8.5, 399, 0},    // the bottom edge itself
               {-8.6, 399, -1},  {-1e30, 399, -1}, {1e38, -1000000000, 1}};
  for (const auto& [value, pixel, beyond] : cases) {
    EXPECT_EQ(pixels.Y(channel, value), pixel) << value;
    EXPECT_EQ(ScreenPixels::Beyond(channel, value), beyond) << value;
  }
}

TEST(ScopeAxes, TimeAxisIsMeasuredFromTheStartAndXYFromTheCentre) {
  ScopeBench b;
  b.Ramp(0, 399);
  ZelChannel& time = b.Scope.TimeChannel();
  SignalChannel& trace = b.Trace();
  const auto at = [&](std::size_t point, int width = 640) {
    std::vector<int> x;
    ScreenPixels(width, 400).XOfPoints(b.Scope, b.Screen(), 0, x);
    return x.at(point);
  };
  b.Scope.SetHorizontalScale(trace, 5.0);  // no time scale: the screen fills on
  EXPECT_EQ(b.Scope.State(), ZelScope::Capture::Filling);
  EXPECT_EQ(at(0, 801), 1);
  EXPECT_EQ(at(1, 801), 2);                   // 80.1 / 40 = 2.0025
  EXPECT_EQ(at(399, 801), 798);               // 798.99
  b.Scope.SetHorizontalOffset(time, 1000.0);  // not drawn
  EXPECT_EQ(at(1, 801), 2);
  EXPECT_EQ(at(399), 638);
  b.Scope.SetHorizontalScale(time, 20.0);
  EXPECT_EQ(at(100), 320);
  EXPECT_EQ(at(300), 638);

  b.Scope.SetHorizontalScale(trace, 100.0);
  EXPECT_EQ(b.Scope.SampleInterval(), 0.5);  // the time channel's
  b.Scope.SetHorizontalOffset(trace, -150.0);
  b.Scope.SetHorizontalChannel(trace);
  EXPECT_EQ(at(0), 224);  // 320 - 1.5 * 64
  EXPECT_EQ(at(150), 320);
  b.Scope.SetHorizontalScale(trace, 10.0);
  EXPECT_EQ(at(0), 0);
  EXPECT_EQ(at(399), 639);
  b.Scope.SetHorizontalChannel(time);
  EXPECT_EQ(at(1), 3);  // 64 / 20 = 3.2
}

// In single precision a sample interval of 50 us is lost after eight minutes.
TEST(ScopeAxes, TheTimeAxisIsExactAtAMillionSeconds) {
  ScopeBench b;
  b.Scope.SetHorizontalScale(b.Scope.TimeChannel(), 0.002);
  b.Scope.Trigger().SetMode(SweepMode::Cont);
  for (int n = 0; n < 399; ++n) b.At(1e6 + n * 50e-6, n);
  const ScopeScreen screen = b.Screen(ScopeSweep::Whole);
  ASSERT_EQ(screen.Time.size(), 401U);
  // Sample k of the run, 10.005 pixels apart, is placed from the screen's first point, which is the
  // negative history's; a double at 1e6 resolves 1e-10 s, a hundred-thousandth of a pixel.
  for (std::size_t k = 1; k < screen.Time.size() - 2; ++k) {
    ASSERT_NEAR(screen.Time[k + 2] - screen.Time[2], static_cast<double>(k) * 50e-6, 3e-10) << k;
  }
}

TEST(ScopeAxes, AutoAndFillUseThePointsOnTheScreenAndTheMultiplier) {
  Recorder recorder;
  ScopeBench b({.Offset = 3.0, .Multiplier = 2.0});
  ZelScope& scope = b.Scope;
  SignalChannel& trace = b.Trace();
  scope.FillVertical(trace);  // nothing on the screen
  EXPECT_EQ(recorder.Take(), Messages{"Note: Cannot Fill because Max = Min"});

  b.At(0.0, 0.0);
  scope.AutoVertical(trace);
  EXPECT_EQ(trace.Vertical(), (AxisScale{1.0, 0.0}));
  b.At(1.0, -6.0);
  b.At(2.0, 2.0);
  scope.SetVerticalOffset(trace, 5.0);
  scope.AutoVertical(trace);
  EXPECT_EQ(trace.Vertical(), (AxisScale{3.0, 0.0}));  // 2 * 6 / 4
  scope.FillVertical(trace);
  EXPECT_EQ(trace.Vertical(), (AxisScale{2.0, 4.0}));  // 8 * 2 / 8 and -(-4) * 0.5 * 2

  scope.SetHorizontalOffset(trace, 5.0);
  scope.AutoHorizontal(trace);
  EXPECT_EQ(trace.Horizontal(), (AxisScale{2.4, 0.0}));  // 2 * 6 / 5

  // A flat trace: of the sweep that is meant.
  scope.Trigger().SetMode(SweepMode::Cont);
  for (int n = 3; n <= 850; ++n) b.At(n, 2.0);
  EXPECT_TRUE(recorder.Take().empty());
  scope.FillVertical(trace, ScopeSweep::Whole);
  EXPECT_EQ(recorder.Take(), Messages{"Note: Cannot Fill because Max = Min"});
  EXPECT_EQ(trace.Vertical(), (AxisScale{2.0, 4.0}));
}

// A ramp of a second a point on a screen of 400 pixels, which is shown tenfold; the source steps
// at 100 s.
TEST(ScopeAxes, CursorsMeasureWhatIsShown) {
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {.Scale = 40.0});
  Variable step(bench, "Step", "", {.Shown = true});
  Variable hidden(bench, "Hidden", "");
  Variable ramp(bench, "Ramp", "", {.Multiplier = 10.0, .Shown = true});
  ZelScope scope(bench, "MainScope");
  for (int n = 0; n < 300; ++n) {
    time.Value = n;
    ramp.Value = std::min(n, 200);
    step.Value = n < 100 ? -1.0 : 1.0;
    scope.Sample(n);
  }
  const ScreenPixels pixels(400, 300);
  ScopeScreen screen;
  EXPECT_TRUE(MeasureScreen(scope, screen, pixels).empty());
  scope.CopyScreen(ScopeSweep::Present, screen);
  EXPECT_FALSE(ReadCursors(scope, screen, pixels));
  // The first point to the right of the cursor.
  const struct {
    int Mode, First, Second;
    double Step, Ramp, Time;
  } cases[] = {{1, 120, 50, 1, 1210, 0}, {2, 120, 50, 2, 700, 70}, {2, 20, 230, 2, 1790, 210}};
  for (const auto& [mode, first, second, ofStep, ofRamp, ofTime] : cases) {
    scope.SetCursorMode(mode);
    scope.SetCursorX(0, first);
    scope.SetCursorX(1, second);
    const auto reading = ReadCursors(scope, screen, pixels);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading->Values, (std::vector{ofStep, ofRamp}));
    EXPECT_EQ(reading->Time, ofTime);
    // Between two cursors, both ends belong to what is measured.
    const double range = MeasureScreen(scope, screen, pixels)[1].Trace->PeakToPeak();
    EXPECT_EQ(range, mode == 2 ? ofRamp : 2000.0);
  }
  scope.SetCursorX(1, 290);
  const auto between = MeasureScreen(scope, screen, pixels);
  ASSERT_EQ(between.size(), 2U);
  EXPECT_EQ(between[1].Trace->Minimum, 210.0);
  EXPECT_EQ(between[1].Trace->Maximum, 2000.0);
  EXPECT_FALSE(between[0].Step) << "a command does not respond to itself";
  ASSERT_TRUE(between[1].Step);
  // The command jumped somewhere between 99 and 100 s.
  EXPECT_NEAR(between[1].Step->Delay.Value, 50.0, 1e-3);
  EXPECT_EQ(between[1].Step->Delay.Resolution, 1.0);
  scope.SetCursorX(1, 350);  // the sweep has not come so far
  EXPECT_FALSE(ReadCursors(scope, screen, pixels));
  EXPECT_FALSE(MeasureScreen(scope, screen, pixels)[0].Trace);
  scope.SetHorizontalChannel(*scope.Channels()[2]);
  EXPECT_FALSE(ReadCursors(scope, screen, pixels));
  EXPECT_EQ(MeasureScreen(scope, screen, pixels)[1].Trace->Minimum, 0.0);
  const std::string csv = ScreenCsv(scope, screen);
  EXPECT_EQ(csv.substr(0, csv.find("\n2,")), "Time,Step,Ramp\n0,-1,0\n1,-1,10");
}

}  // namespace torvane::test
