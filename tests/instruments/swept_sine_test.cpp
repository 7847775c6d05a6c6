#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "instruments/sweep/swept_sine_analyser.h"
#include "instruments/sweep/turning_sine.h"
#include "support/bare_model.h"
#include "support/recorder.h"
#include "support/two_pi.h"

namespace torvane {
namespace {

using test::Messages;
using test::TwoPi;
using SweepState = ZelSweptDSA::State;

/// A first-order low-pass of 20 Hz behind the analyser's excitation, with ticks at every eighth
/// step.
class SweptSine : public testing::Test {
 protected:
  SweptSine() {
    Model.Loop = [this](double) {
      X.Value = Sweep.Excitation(Model.Time());
      Y.Derivative = W * (X.Value - Y.Value);
    };
    Sweep.SetTSample(Tick);
    Sweep.SetFreqRange(1.0, 10.0);
    Sweep.SetSettleTime(0.25);
  }

  void RunToTheEnd() {
    Sweep.Run();
    while (Sweep.Measuring()) Advance();
  }
  /// One chunk, up to the next tick also where none is asked for.
  void Advance() {
    Model.Solver().RunUntil(Sweep.NextTick());
    Model.Bench().ServiceInstruments();
  }

  static constexpr double Tick = 1.0 / 512.0;
  static constexpr double W = 2.0 * 3.1415926 * 20.0;

  test::Recorder Reports;
  test::BareModel Model{Tick / 8.0};
  Variable X{Model.Bench(), "x", ""};
  StateVariable Y{Model.Bench(), "y", "", 0.0};
  ZelSweptDSA Sweep{Model.Bench(), "Sweep"};
};

/// Ticks of a channel from time `start` to `end`, of the signal that is given as a function of
/// time.
SweepWindow Accumulate(ZelSweptDSAChannel& channel, Variable& signal, double hz, double start,
                       double end, const std::function<double(double)>& x) {
  SweepWindow window;
  for (double t = start; t < end; t += 1.0 / 512.0) {
    signal.Value = x(t);
    channel.Accumulate(window);
    window.Add(SweepTick::At(hz, t));
  }
  return window;
}

TEST_F(SweptSine, ReadsASineExactly) {
  // A sine of amplitude 3, 50 degrees ahead, on a constant: over whole periods of 32 ticks, and
  // over periods of 21.3 ticks, where the sums are not orthogonal. Some hundred units of rounding.
  Variable turned(Model.Bench(), "turned", "", {.Multiplier = -2.0});
  for (const double f : {16.0, 24.0}) {
    for (Variable* signal : {&X, &turned}) {
      ZelSweptDSAChannel channel(*signal, 4);
      const SweepWindow window =
          Accumulate(channel, *signal, f, 0.3, 0.3 + 2.0 / f + Tick, [&](double t) {
            return 3.0 * std::sin(TwoPi * f * t + 50.0 / 57.295780490442965) + 7.0;
          });
      ASSERT_TRUE(channel.Measure(0, window));
      const double shown = signal == &turned ? 6.0 : 3.0;
      EXPECT_NEAR(channel.Gain(0, 0), 20.0 * std::log10(shown), 1e-10) << f;
      EXPECT_NEAR(channel.Phase(0, 0), signal == &turned ? -130.0 : 50.0, 1e-9) << f;
    }
  }
  // The tick that closes the period opens the next one. Counted twice, harmonics would leak in by
  // one part in 32; the truncated 2 pi leaves the period open by 5e-8 of a radian.
  ZelSweptDSAChannel channel(X, 1);
  const SweepWindow window = Accumulate(channel, X, 16.0, 0.0, 32.5 * Tick, [](double t) {
    const double angle = TwoPi * 16.0 * t;
    return std::sin(angle) + std::cos(2.0 * angle) + std::cos(3.0 * angle);
  });
  channel.Measure(0, window);
  EXPECT_NEAR(channel.Gain(0, 0), 0.0, 1e-6);
  EXPECT_NEAR(channel.Phase(0, 0), 0.0, 1e-5);
}

TEST_F(SweptSine, ReadsAFinitePointFromTooFewTicks) {
  ZelSweptDSAChannel channel(X, 3);
  SweepWindow window;
  channel.Measure(0, window);
  EXPECT_EQ(channel.Gain(0, 0), -200.0);
  X.Value = 1.0;
  for (const int tick : {1, 2}) {
    channel.Accumulate(window);
    window.Add(SweepTick::At(256.0, tick * 0.001));
    channel.Measure(tick, window);
    EXPECT_TRUE(std::isfinite(channel.Gain(0, tick)));
  }
}

TEST_F(SweptSine, MeasuresALowPassAt26Points) {
  Sweep.SetOffset(3.0);
  EXPECT_EQ(Sweep.Excitation(0.0), 0.0);
  EXPECT_EQ(Sweep.NextTime(), -1.0);
  RunToTheEnd();
  EXPECT_EQ(Sweep.SweepState(), SweepState::Done);
  EXPECT_EQ(Sweep.NextTime(), -1.0);
  EXPECT_EQ(Sweep.Excitation(Model.Time()), 0.0);
  ASSERT_EQ(Sweep.PointCount(), 26);
  EXPECT_EQ(Sweep.PointFrequency(0, 0), 1.0);
  // 25 rounded products.
  EXPECT_NEAR(Sweep.PointFrequency(0, 25), 10.0 * std::pow(1.000001, 25), 1e-13 * 25 * 10);
  EXPECT_TRUE(Sweep.TraceAt(0).Shown);

  // At a tick, x is still what was set a tick before: y[k] = a y[k-1] + (1 - a) x[k]. The transient
  // has settled to e^(-31); the rest of the gain is the solver's error, (W h)^5 / 120 = 2e-10 a
  // step. A phase that passes -90 degrees is off by 180 degrees in two values of pi, 3e-6.
  const double a = std::exp(-W * Tick);
  for (int i = 0; i < 26; ++i) {
    const std::complex<double> z1 = std::polar(1.0, -TwoPi * Sweep.PointFrequency(0, i) * Tick);
    const std::complex<double> h = (1.0 - a) / (1.0 - a * z1);
    EXPECT_NEAR(Sweep.ResponseGain(0, i), 20.0 * std::log10(std::abs(h)), 1e-7) << i;
    EXPECT_NEAR(Sweep.ResponsePhase(0, i), std::arg(h) * 57.295780490442965, 1e-5) << i;
  }
  // A memory keeps its own range.
  EXPECT_TRUE(Sweep.StoreData(1));
  const double stored = *Sweep.GainRead(1, 2.0);
  Sweep.SetFreqRange(2.0, 4.0);
  RunToTheEnd();
  EXPECT_EQ(Sweep.ResponseAt(0).LowestHz(), 2.0);
  EXPECT_TRUE(Sweep.ResponseAt(1).LowestHz() == 1.0 && Sweep.ResponseAt(1).HighestHz() >= 10.0);
  EXPECT_EQ(*Sweep.GainRead(1, 2.0), stored);
  // Interpolated on the logarithm: 1e-3 dB is the curvature between two of 25 points a decade.
  EXPECT_NEAR(stored, *Sweep.GainRead(0, 2.0), 1e-3);
  EXPECT_NEAR(Sweep.ResponseAt(1).IndexAt(
                  std::sqrt(Sweep.PointFrequency(1, 3) * Sweep.PointFrequency(1, 4))),
              3.5, 1e-9);
  Sweep.SetVisible(true);
  EXPECT_TRUE(Sweep.TraceAt(1).Enabled);
  Sweep.SetVisible(false);
  EXPECT_FALSE(Sweep.TraceAt(0).Enabled || Sweep.TraceAt(1).Enabled);
  // What is kept over a change of the model is kept of a hidden window too.
  EXPECT_TRUE(Sweep.HasData(1));
  // Shown again, the window has what it had, and no memory that is empty.
  Sweep.SetVisible(true);
  Sweep.SetShown(0, false);
  for (const bool visible : {false, false, true}) Sweep.SetVisible(visible);
  EXPECT_TRUE(Sweep.TraceAt(0).Enabled && !Sweep.TraceAt(0).Shown);
  EXPECT_TRUE(Sweep.TraceAt(1).Shown && !Sweep.TraceAt(2).Enabled);
  EXPECT_EQ(*Sweep.GainRead(1, 2.0), stored);
  EXPECT_EQ(Reports.Take(), Messages{});
  EXPECT_FALSE(Sweep.StoreData(0));
  EXPECT_EQ(Reports.Take(), Messages{"Error: Fault in ZelSweptDSAChannel :: StoreData"});
}

// Frequency and phase become others, ticks come late, twice at one time and earlier.
TEST(TurningSine, IsTheSineAtEvenAndUnevenTicks) {
  for (const double start : {0.0, 1000.0}) {
    TurningSine sine;
    double t = start;
    for (int i = 0; i < 4000; ++i) {
      const double f = i < 2003 ? 700.0 : 900.0;
      const double phase = i < 3005 ? 0.3 : -2.0;
      if (i % 2003 == 0) sine.Start(f);
      sine.SetPhase(phase);
      // Near 1,000 s the times are multiples of 1.1e-13, of 32 ticks' angle 2e-8 at most.
      ASSERT_NEAR(sine.At(t), std::sin(TwoPi * f * t + phase), start > 0.0 ? 2e-8 : 1e-12)
          << "tick " << i;
      if (i == 3500) t -= 0.006;
      if (i < 1000 || i % 7 != 3) t += i % 50 == 9 ? 2e-5 : 1e-5;
    }
  }
}

TEST_F(SweptSine, StepsTheFrequencyWithoutAPhaseJump) {
  Sweep.Run();
  Advance();
  double last = Sweep.Excitation(Model.Time());
  double largest = 0.0;
  int betweenPoints = 0;
  while (Sweep.Measuring()) {
    if (Sweep.SweepState() == SweepState::Advance) {
      // No time is asked for between two points; the next call after the tick goes on.
      EXPECT_EQ(Sweep.NextTime(), -1.0);
      EXPECT_GT(Sweep.NextTick(), Model.Time());
      ++betweenPoints;
    }
    Advance();
    // The sine moves by less than 2 pi f a tick, of the higher frequency; a jump would not.
    const double now = Sweep.Excitation(Model.Time());
    if (Sweep.Measuring()) {
      largest = std::max(largest, std::abs(now - last) / Sweep.Frequency());
    }
    last = now;
  }
  EXPECT_EQ(betweenPoints, 25);
  EXPECT_LE(largest, TwoPi * Tick);
}

TEST_F(SweptSine, MeasuresMorePeriodsWhenMeasurementTimeExceedsTheFrequency) {
  // Measurement time divided by frequency: 2.5 / 1 and 2.5 / 2 give three and two periods, 0 one.
  const auto measured = [&](double f, double time) {
    Sweep.SetFreqRange(f, 100.0);
    Sweep.SetMeasurementTime(time);
    Sweep.Run();
    const double start = Model.Time();
    while (Sweep.SweepState() != SweepState::Advance) Advance();
    return (Model.Time() - start - 0.25) * f;
  };
  EXPECT_EQ(measured(1.0, 2.5), 3.0);
  EXPECT_EQ(measured(2.0, 2.5), 2.0);
  EXPECT_EQ(measured(2.0, 0.0), 1.0);
}

TEST_F(SweptSine, EndsByHandAndASweepThatWouldNotEnd) {
  Sweep.Run();
  for (int i = 0; i < 100; ++i) Advance();
  EXPECT_TRUE(Sweep.Excitation(Model.Time()) != 0.0 && Sweep.Progress() < 1.0);
  Sweep.Halt();
  EXPECT_FALSE(Sweep.Measuring());
  Sweep.SetOffset(3.0);
  EXPECT_EQ(Sweep.Excitation(Model.Time()), 0.0);
  Sweep.SetFreqRange(100.0, 200.0);
  Sweep.SetStepsPerDecade(100000);
  Sweep.SetSettleTime(0.0);
  Sweep.Run();
  EXPECT_FALSE(Sweep.Measuring());
  Sweep.SetFreqRange(100.0, 256.0);
  Sweep.SetStepsPerDecade(25);
  Sweep.Run();
  EXPECT_FALSE(Sweep.Measuring());
  Sweep.SetFreqRange(100.0, 200.0);
  // And one that is given more points while it runs.
  Sweep.Run();
  Sweep.SetStepsPerDecade(100000);
  while (Sweep.Measuring()) Advance();
  EXPECT_EQ(Sweep.PointCount(), ZelSweptDSA::Capacity);
  EXPECT_EQ(Reports.Take(), (Messages{"Error: The sweep has more than 2048 points.  Reduce "
                                      "Steps/decade, or sweep fewer decades.",
                                      "Error: The sweep goes up to 275.43 Hz, and samples tell "
                                      "frequencies below half the sample rate only, 256 Hz.",
                                      "Error: Index overrun in ZelSweptDSAChannel :: Measure"}));
}

TEST_F(SweptSine, AveragesWindowsInARowAtEachPoint) {
  const double once = Sweep.ExpectedPlan().Seconds - 26 * 0.25;
  Sweep.SetAverages(4);
  EXPECT_NEAR(Sweep.ExpectedPlan().Seconds, 26 * 0.25 + 4 * once, 1e-9);
  RunToTheEnd();
  ASSERT_EQ(Sweep.PointCount(), 26);
  ASSERT_TRUE(Sweep.HasCoherence(0));
  for (int point = 0; point < Sweep.PointCount(); ++point) {
    const std::complex<double> lag(1.0, 2.0 * 3.1415926 * Sweep.PointFrequency(0, point) / W);
    // The hold of a tick, up to 3.5 degrees at 10 Hz, and a settled loop without noise.
    EXPECT_NEAR(Sweep.ResponseGain(0, point), -20.0 * std::log10(std::abs(lag)), 0.05);
    EXPECT_NEAR(Sweep.ResponseAt(0).At(point)->Coherence, 1.0, 1e-4);
  }
}

}  // namespace
}  // namespace torvane
