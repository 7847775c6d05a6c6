#include "library/wave.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/bare_model.h"

namespace torvane {
namespace {

// The sources take pi to eight digits, 5.4e-8 short; the other waveforms only round, in cycles
// other than the first one with slopes of up to 10.
constexpr double EightDigitPi = 2e-7;
constexpr double Rounding = 1e-14;

// Amplitude 2 about 1, one cycle a second: the time is the fraction of the cycle.
void Check(Waveform waveform, double duty, const std::vector<double>& xs,
           const std::vector<double>& values, double tolerance = Rounding) {
  ASSERT_EQ(xs.size(), values.size());
  test::BareModel model;
  const int index = static_cast<int>(waveform);
  ZelWave wave(model.Bench(), "Source", {index, 1.0, 2.0, 1.0, 0.0, duty});
  for (std::size_t i = 0; i < xs.size(); ++i) {
    for (const double cycle : {0.0, 5.0, -2.0}) {
      wave.AtTime(xs[i] + cycle);
      EXPECT_NEAR(wave.Computed(), values[i], tolerance)
          << "waveform " << index << ", duty " << duty << ", at " << xs[i] << " + " << cycle;
      EXPECT_EQ(wave.Sync(), xs[i] < 0.5 ? 1.0 : 0.0);
    }
  }
}

TEST(WaveTest, NineWaveforms) {
  Check(Waveform::Sine, 50.0, {0.0, 0.125, 0.25, 0.5, 0.75}, {1, 2.4142135624, 3, 1, -1},
        EightDigitPi);
  Check(Waveform::Square, 10.0, {0.0, 0.499, 0.5, 0.999}, {3, 3, -1, -1});
  Check(Waveform::Triangle, 10.0, {0.0, 0.25, 0.375, 0.5, 0.75, 0.875}, {-1, 1, 2, 3, 1, 0});
  Check(Waveform::Sawtooth, 10.0, {0.0, 0.25, 0.5, 0.75}, {-1, 0, 1, 2});
  Check(Waveform::Dc, 10.0, {0.0, 0.25, 0.75}, {1, 1, 1});

  // A duty cycle of 75 per cent puts every edge on a number that is exact in binary.
  Check(Waveform::Pulse, 75.0, {0.0, 0.749, 0.75, 0.999}, {3, 3, -1, -1});
  Check(Waveform::BipolarPulse, 75.0, {0.0, 0.374, 0.375, 0.5, 0.501, 0.874, 0.875, 0.999},
        {3, 3, 1, 1, -1, -1, 1, 1});
  const std::vector<double> ramps = {0, 0.0625, 0.125, 0.25, 0.375, 0.5, 0.5625, 0.6875, 0.75, 0.9};
  Check(Waveform::Trapezoid, 75.0, ramps, {1, 1.5, 2, 3, 3, 3, 2.5, 1.5, 1, 1});
  // At a quarter of a ramp: u - sin(2 pi u) / 2 pi = 0.25 - 0.1591549431.
  Check(Waveform::SCurve, 75.0, ramps,
        {1, 1.1816901138, 2, 3, 3, 3, 2.8183098862, 1.1816901138, 1, 1}, EightDigitPi);
}

TEST(WaveTest, DutyCycleAtItsEnds) {
  const std::vector<double> quarters = {0.0, 0.25, 0.5, 0.75};
  Check(Waveform::Pulse, 0.0, quarters, {-1, -1, -1, -1});
  Check(Waveform::Pulse, 100.0, quarters, {3, 3, 3, 3});
  Check(Waveform::BipolarPulse, 0.0, quarters, {1, 1, 1, 1});
  Check(Waveform::BipolarPulse, 100.0, quarters, {3, 3, 1, -1});
  Check(Waveform::Trapezoid, 0.0, quarters, {1, 1, 1, 1});
  Check(Waveform::SCurve, 0.0, quarters, {1, 1, 1, 1});
  // Thirds of the period: up, on, and down to its very end.
  Check(Waveform::Trapezoid, 100.0, {0.25, 0.5, 0.75, 0.9375}, {2.5, 3, 2.5, 1.375});
}

TEST(WaveTest, EverySettingShowsAtTheSameInstant) {
  test::BareModel model;
  ZelWave wave(model.Bench(), "Source", {0, 4.0, 2.0, 1.0, 90.0, 50.0}, 10.0);
  const auto computed = [&] {
    wave.AtTime(0.0625);  // a quarter of a cycle
    return wave.Computed();
  };
  wave.AtTime(0.0);
  EXPECT_NEAR(wave.Computed(), 30.0, 1e-13);  // the crest is flat: pi's lost digits do not show
  wave.SetPhaseDeg(0.0);
  EXPECT_NEAR(computed(), 30.0, 1e-13);
  wave.SetWaveform(3);
  EXPECT_EQ(computed(), 0.0);
  wave.SetFreqHz(8.0);
  EXPECT_EQ(computed(), 10.0);
  wave.SetOffset(2.0);
  EXPECT_EQ(computed(), 20.0);
  wave.SetWaveform(4);
  wave.SetAmplitude(-6.0);
  EXPECT_EQ(computed(), 80.0);  // half a cycle is outside of half of the cycle
  wave.SetDutyCycle(51.0);
  EXPECT_EQ(computed(), -40.0);
}

TEST(WaveTest, SettingsAreLimitedSilently) {
  test::BareModel model;
  ZelWave wave(model.Bench(), "Source", {.Index = 99, .FreqHz = -5.0, .DutyCycle = 101.0});
  EXPECT_EQ(wave.Settings().Index, 8);
  EXPECT_EQ(wave.Settings().FreqHz, 5.0);
  EXPECT_EQ(wave.Settings().DutyCycle, 100.0);
  wave.SetWaveform(-1);
  wave.SetFreqHz(-0.5);
  wave.SetDutyCycle(-1.0);
  EXPECT_EQ(wave.Settings().Index, 0);
  EXPECT_EQ(wave.Settings().FreqHz, 0.5);
  EXPECT_EQ(wave.Settings().DutyCycle, 0.0);
  EXPECT_EQ(model.Bench().FindInstrument(InstrumentKind::WaveGenerator, "Source"), &wave);
}

TEST(WaveTest, OutputsFollowThroughStatesOneStepAndTwoStepsLate) {
  test::BareModel model(0.125);
  ZelWave wave(model.Bench(), "Source",
               {.Index = 3, .FreqHz = 1.0, .Amplitude = 4.0, .Offset = 4.0});  // 8 t
  std::vector<double> seen;
  model.Loop = [&](double) { seen.push_back(wave.Output()); };
  const auto step = [&] { model.Solver().RunUntil(model.Time() + 0.0625); };
  step();
  EXPECT_EQ(wave.Output(), 1.0);  // computed for the end of the step
  EXPECT_EQ(wave.DelayedOutput(), 0.0);
  step();
  EXPECT_EQ(wave.Output(), 2.0);
  EXPECT_EQ(wave.DelayedOutput(), 1.0);
  wave.SetOffset(104.0);
  EXPECT_EQ(wave.Output(), 2.0);
  step();
  EXPECT_EQ(wave.Output(), 103.0);
  EXPECT_EQ(wave.DelayedOutput(), 2.0);
  // Within a step the output rests.
  EXPECT_EQ(seen, (std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2}));
  model.Reset();
  EXPECT_EQ(wave.Output(), 0.0);
}

TEST(Wave, ItsSettingsUndoOneByOneAndAGestureAsOne) {
  test::BareModel model;
  ZelWave wave(model.Bench(), "Source", {1, 10.0, 2.0, 0.0, 0.0, 50.0});
  ZelUndo& history = model.Bench().History();
  wave.SetFreqHz(-20.0);
  wave.SetFreqHz(20.0);  // no change
  wave.SetWaveform(3);
  history.BeginGesture();
  for (const double amplitude : {3.0, 4.0, 5.0}) wave.SetAmplitude(amplitude);
  wave.SetDutyCycle(200.0);
  history.EndGesture();
  history.Undo();
  EXPECT_EQ(wave.Settings().Amplitude, 2.0);
  EXPECT_EQ(wave.Settings().DutyCycle, 50.0);
  EXPECT_EQ(wave.Settings().Index, 3);
  history.Undo();
  history.Undo();
  EXPECT_EQ(wave.Settings().FreqHz, 10.0);
  EXPECT_FALSE(history.CanUndo());
  while (history.CanRedo()) history.Redo();
  EXPECT_EQ(wave.Settings().Amplitude, 5.0);
  EXPECT_EQ(wave.Settings().DutyCycle, 100.0);
  EXPECT_EQ(wave.Settings().FreqHz, 20.0);
  // The value computed for a time is none of the settings' that have changed since.
  wave.AtTime(0.0);
  const double before = wave.Computed();
  history.Undo();
  wave.AtTime(0.0);
  EXPECT_NE(wave.Computed(), before);
}

}  // namespace
}  // namespace torvane
