#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "core/files/record.h"
#include "instruments/scope/screen_pixels.h"
#include "instruments/scope_bench.h"
#include "support/recorder.h"

namespace torvane::test {

namespace {

struct UndoCaption : UndoItems {
  void SetCaption(UndoItem item, const std::string& caption) override {
    if (item == UndoItem::UndoMenu) Caption = caption;
  }
  void SetEnabled(UndoItem /*item*/, bool /*enabled*/) override {}
  std::string Caption;
};

}  // namespace

TEST(ScopeAxes, VerticalPixelsTruncateAndEndAboveTheBottomEdge) {
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {});
  Variable signal(bench, "Signal", "",
                  {.Scale = 4.0, .Offset = 1.0, .Multiplier = 2.0, .Shown = true});
  const SignalChannel channel(signal, 8, 4);
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
  EXPECT_EQ(b.Scope.HorizontalChannel(), &time);
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
  EXPECT_TRUE(b.Scope.XYMode());
  EXPECT_EQ(b.Scope.HorizontalChannel(), &trace);
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
  std::vector<int> x;
  ScreenPixels(4002, 400).XOfPoints(b.Scope, screen, 2, x);
  ASSERT_EQ(x.size(), 399U);
  // Sample k of the run, 10.005 pixels apart, is placed from the screen's first point, which is the
  // negative history's; a double at 1e6 resolves 1e-10 s, a hundred-thousandth of a pixel.
  for (std::size_t k = 1; k < screen.Time.size() - 2; ++k) {
    ASSERT_NEAR(screen.Time[k + 2] - screen.Time[2], static_cast<double>(k) * 50e-6, 3e-10) << k;
  }
}

TEST(ScopeAxes, AutoAndFillUseThePointsOnTheScreenAndTheMultiplier) {
  Recorder recorder;
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {.Scale = 40.0});
  Variable signal(bench, "Signal", "", {.Offset = 3.0, .Multiplier = 2.0});
  ZelScope scope(bench, "MainScope");
  SignalChannel& trace = *scope.Channels()[0];
  scope.FillVertical(trace);  // nothing on the screen
  EXPECT_EQ(recorder.Take(), Messages{"Note: Cannot Fill because Max = Min"});

  scope.Sample(0.0);
  scope.AutoVertical(trace);
  EXPECT_EQ(trace.Vertical(), (AxisScale{1.0, 0.0}));
  signal.Value = -6.0;
  scope.Sample(1.0);
  signal.Value = 2.0;
  scope.Sample(2.0);
  scope.SetVerticalOffset(trace, 5.0);
  scope.AutoVertical(trace);
  EXPECT_EQ(trace.Vertical(), (AxisScale{3.0, 0.0}));  // 2 * 6 / 4
  scope.FillVertical(trace);
  EXPECT_EQ(trace.Vertical(), (AxisScale{2.0, 4.0}));  // 8 * 2 / 8 and -(-4) * 0.5 * 2

  // A flat trace: of the sweep that is meant.
  scope.Trigger().SetMode(SweepMode::Cont);
  for (int n = 3; n <= 850; ++n) scope.Sample(n);
  EXPECT_TRUE(recorder.Take().empty());
  scope.FillVertical(trace, ScopeSweep::Whole);
  EXPECT_EQ(recorder.Take(), Messages{"Note: Cannot Fill because Max = Min"});
  EXPECT_EQ(trace.Vertical(), (AxisScale{2.0, 4.0}));
}

// Every setting undoes to the first state and redoes to the last, one entry each, and what it says
// while it does loads silently.
TEST(ScopeAxes, EverySettingIsUndone) {
  Recorder recorder;
  ScopeBench b;
  Variable other(b.Bench, "Other", "", {});
  ZelScope scope(b.Bench, "Second");
  SignalChannel& signal = *scope.Channels()[0];
  SignalChannel& hidden = *scope.Channels()[1];
  ZelTrigger& trigger = scope.Trigger();
  b.Ramp(0, 10);
  const auto state = [&] {
    std::string text;
    RecordWriter writer(text, "Scope", scope.Name());
    scope.SaveState(writer);
    return text;
  };
  const std::vector<std::pair<std::string, std::function<void()>>> changes = {
      {"Show Other", [&] { scope.SetDisplayed(hidden, true); }},
      {"Signal Scale = -2", [&] { scope.SetVerticalScale(signal, -2.0); }},
      {"Signal Offset = 3", [&] { scope.SetVerticalOffset(signal, 3.0); }},
      {"Auto Scale of Signal", [&] { scope.AutoVertical(signal); }},
      {"Horizontal Scale = 4", [&] { scope.SetHorizontalScale(scope.TimeChannel(), 4.0); }},
      {"X Axis = Other", [&] { scope.SetHorizontalChannel(hidden); }},
      {"Horizontal Offset = 0.5", [&] { scope.SetHorizontalOffset(hidden, 0.5); }},
      {"Trigger Mode = Normal", [&] { trigger.SetMode(SweepMode::Normal); }},
      {"Trigger Level = 0.25", [&] { trigger.SetLevel(0.25); }},
      {"Trigger Position = 100", [&] { trigger.SetPosition(1e308); }},
      {"Roll on", [&] { trigger.SetRoll(true); }},
      {"Trigger Source = Other", [&] { trigger.SetSource(hidden); }},
      {"Trigger Slope = Negative", [&] { trigger.SetPositiveSlope(false); }},
      {"Initial Delay on", [&] { trigger.SetInitialDelay(true); }},
      {"Initial Delay = 2", [&] { trigger.SetInitialDelayTime(2.0); }},
      {"Count Events on", [&] { trigger.SetCountEvents(true); }},
      {"Number of Events = 3", [&] { trigger.SetNumberOfEvents(3); }},
      {"Delay After on", [&] { trigger.SetDelayAfter(true); }},
      {"Delay After = 0.001", [&] { trigger.SetDelayAfterTime(0.001); }},
      {"Single Shot on", [&] { scope.SetSingleShot(true); }},
      {"Stop Model on", [&] { scope.SetStopsModel(true); }},
      {"Constants Panel",
       [&] {
         scope.SetConstForm({false, 200, 90});
       }},
  };
  std::vector<std::string> states{state()};
  UndoCaption items;
  b.Bench.History().Attach(&items);
  for (const auto& [caption, change] : changes) {
    change();
    EXPECT_EQ(items.Caption, "Undo " + caption);
    states.push_back(state());
    change();  // nothing new, nothing to undo
  }
  for (std::size_t i = changes.size(); i-- > 0;) {
    b.Bench.History().Undo();
    EXPECT_EQ(state(), states[i]) << changes[i].first;
  }
  EXPECT_FALSE(b.Bench.History().CanUndo());
  for (std::size_t i = 0; i < changes.size(); ++i) {
    b.Bench.History().Redo();
    EXPECT_EQ(state(), states[i + 1]) << changes[i].first;
  }
  EXPECT_TRUE(recorder.Take().empty());
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
  EXPECT_EQ(b.Trace().Vertical().Scale, 1.0);
  EXPECT_EQ(b.Scope.SampleInterval(), 1.0);

  const ScreenPixels none;
  none.Y(b.Trace(), 0.0);
  none.X(b.Trace(), 0.0);
  none.TimeX(b.Scope.TimeChannel(), 0.0, 0.0);
  EXPECT_EQ(recorder.Take(), (Messages{"Error: Internal Error: ScreenHeight not initialized",
                                       "Error: Internal Error: ScreenDimensions not initialized",
                                       "Error: Internal Error: Uninit ScreenDimension"}));
}

}  // namespace torvane::test
