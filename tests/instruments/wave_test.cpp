#include "instruments/generator/wave.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "support/bare_model.h"
#include "support/recorder.h"

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

TEST(Wave, NineWaveforms) {
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

// Between two times that hold one edge and no more; what was set before a change is forgotten.
TEST(Wave, TellsWhenItJumps) {
  test::BareModel model;
  ZelWave wave(model.Bench(), "Source", {static_cast<int>(Waveform::Square), 2.0, 1.0, 0.0, 90.0});
  const auto jumps = [&](Waveform waveform, double from, double to) {
    wave.SetWaveform(static_cast<int>(waveform));
    return wave.JumpIn(from, to).value_or(-1.0);
  };
  EXPECT_DOUBLE_EQ(jumps(Waveform::Square, 3.1, 3.2), 3.125);  // a quarter of a period early
  EXPECT_DOUBLE_EQ(jumps(Waveform::Square, -0.2, -0.1), -0.125);
  EXPECT_EQ(jumps(Waveform::Square, 3.0, 3.1), -1.0);
  EXPECT_EQ(jumps(Waveform::Square, 3.0, 3.4), -1.0);
  EXPECT_DOUBLE_EQ(jumps(Waveform::Sawtooth, 3.2, 3.4), 3.375);
  EXPECT_DOUBLE_EQ(jumps(Waveform::BipolarPulse, 3.4, 3.6), 3.5);
  EXPECT_EQ(jumps(Waveform::Sine, 0.0, 0.4), -1.0);
  wave.SetDutyCycle(20.0);
  EXPECT_DOUBLE_EQ(jumps(Waveform::Pulse, 3.4, 3.6), 3.475);
  wave.AtTime(3.45);
  wave.SetPhaseDeg(0.0);
  EXPECT_EQ(jumps(Waveform::Pulse, 3.4, 3.55), -1.0);
  EXPECT_DOUBLE_EQ(jumps(Waveform::Pulse, 3.45, 3.55), 3.5);
}

// Flat waveforms are not computed at every step; what shows is what would be.
TEST(Wave, IsAtEveryStepWhatItIsThere) {
  const auto value = [](Waveform waveform, double x) {
    if (waveform == Waveform::Dc) return 1.0;
    return x < (waveform == Waveform::Pulse ? 0.3 : 0.5) ? 4.0 : -2.0;
  };
  for (const Waveform waveform : {Waveform::Square, Waveform::Pulse, Waveform::Dc}) {
    for (const double hz : {0.0, 19.0, 25.0, 1030.0, 33333.3, 49999.7}) {
      test::BareModel model;
      ZelWave wave(model.Bench(), "Source", {static_cast<int>(waveform), hz, 3.0, 1.0, 77.0, 30.0});
      double t = 1.0;
      for (int i = 0; i < 20000; ++i) {
        if (i == 7000) t = -1.0;  // where a reset looks
        if (i == 9000) t = 1e6;
        wave.AtEndOfStep(t);
        const double cycles = t * hz + 77.0 * 0.002777777777777778;
        const double x = cycles - std::floor(cycles);
        ASSERT_EQ(wave.Computed(), value(waveform, x)) << hz << " Hz at " << t;
        ASSERT_EQ(wave.Sync(), x < 0.5 ? 1.0 : 0.0) << hz << " Hz at " << t;
        t += 1e-5;
      }
    }
  }
}

TEST(Wave, DutyCycleAtItsEnds) {
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

// What a time's value was computed from may change at that time.
TEST(Wave, EverySettingShowsAtOnceAndIsAStepToUndo) {
  test::BareModel model;
  ZelWave wave(model.Bench(), "MainWaveGen", {0, 4.0, 2.0, 1.0, 90.0, 50.0}, 10.0);
  const auto expect = [&](double computed) {
    wave.AtTime(0.0625);
    EXPECT_NEAR(wave.Computed(), computed, 1e-5);  // the sine's zero shows pi's lost digits
  };
  std::vector<double> computed{10.0};
  const auto change = [&](auto set, auto value, double expected) {
    for (int times = 0; times < 2; ++times) (wave.*set)(value);  // once more is no change
    computed.push_back(expected);
    expect(expected);
  };
  expect(10.0);
  change(&ZelWave::SetPhaseDeg, 0.0, 30.0);
  change(&ZelWave::SetWaveform, 3, 0.0);
  change(&ZelWave::SetFreqHz, -8.0, 10.0);  // counts as 8
  change(&ZelWave::SetOffset, 2.0, 20.0);
  change(&ZelWave::SetWaveform, 4, 0.0);
  change(&ZelWave::SetAmplitude, -6.0, 80.0);  // half a cycle is outside of half of it
  change(&ZelWave::SetDutyCycle, 51.0, -40.0);
  ZelUndo& history = model.Bench().History();
  for (computed.pop_back(); !computed.empty(); computed.pop_back()) {
    history.Undo();
    expect(computed.back());
  }
  EXPECT_FALSE(history.CanUndo());
}

TEST(Wave, SettingsAreLimitedSilently) {
  test::BareModel model;
  ZelWave wave(model.Bench(), "Source", {.Index = 99, .FreqHz = -5.0, .DutyCycle = 101.0});
  EXPECT_EQ(model.Bench().FindInstrument(InstrumentKind::WaveGenerator, "Source"), &wave);
  const auto expect = [&](int index, double hz, double duty) {
    EXPECT_EQ(wave.Settings().Index, index);
    EXPECT_EQ(wave.Settings().FreqHz, hz);
    EXPECT_EQ(wave.Settings().DutyCycle, duty);
  };
  expect(8, 5.0, 100.0);
  wave.SetWaveform(-1);
  wave.SetDutyCycle(-1.0);
  expect(0, 5.0, 0.0);
  wave.SetFreqHz(std::numeric_limits<double>::infinity());
  wave.SetDutyCycle(200.0);
  wave.SetWaveform(99);
  expect(8, 5.0, 100.0);
}

TEST(Wave, OutputsFollowThroughStatesOneStepAndTwoStepsLate) {
  test::BareModel model(0.125);
  ZelWave wave(model.Bench(), "Source",
               {.Index = 3, .FreqHz = 1.0, .Amplitude = 4.0, .Offset = 4.0});  // 8 t
  std::vector<double> seen;
  model.Loop = [&](double) { seen.push_back(wave.Output()); };
  const auto step = [&](double output, double delayed) {
    model.Solver().RunUntil(model.Time() + 0.0625);
    EXPECT_EQ(wave.Output(), output);
    EXPECT_EQ(wave.DelayedOutput(), delayed);
  };
  step(1.0, 0.0);  // computed for the end of the step
  step(2.0, 1.0);
  wave.SetOffset(104.0);
  EXPECT_EQ(wave.Output(), 2.0);
  step(103.0, 2.0);
  // Within a step the output rests.
  EXPECT_EQ(seen, (std::vector<double>{0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2}));
  // A step that is fused to one end's value comes to the same.
  wave.AtEndOfStep(0.5);
  EXPECT_EQ(wave.Output(), 104.0);
  EXPECT_EQ(wave.DelayedOutput(), 103.0);
  model.Reset();
  EXPECT_EQ(wave.Output(), 0.0);
  wave.SetOffset(1.7e308);
  EXPECT_FALSE(wave.OverflowsAt(0.0));
  wave.SetAmplitude(-1e308);
  EXPECT_TRUE(wave.OverflowsAt(0.0));
  wave.SetFreqHz(1.7e308);
  wave.SetAmplitude(0.0);
  EXPECT_TRUE(wave.OverflowsAt(2.0));
}

// A jump at 2 s and a ramp; before and behind, the ends go on.
TEST(Wave, PlaysATableUntilAWaveformIsChosen) {
  test::BareModel model;
  const WaveSettings before{.Index = 1, .FreqHz = 5.0, .Amplitude = 3.0, .Offset = 1.0};
  ZelWave wave(model.Bench(), "Source", before);
  const auto at = [&](double t) {
    wave.AtTime(t);
    return wave.Computed();
  };
  wave.Play(std::make_shared<const WaveTable>(
      "jump", std::vector<WaveTable::Point>{{1, 4}, {2, 4}, {2, 8}, {4, 0}}));
  for (const auto& [t, value] :
       {std::pair{0.0, 4.0}, {1.9, 4.0}, {2.0, 8.0}, {3.0, 4.0}, {9.0, 0.0}})
    EXPECT_EQ(at(t), value) << t;
  EXPECT_EQ(wave.JumpIn(1.5, 2.5), 2.0);
  EXPECT_FALSE(wave.JumpIn(2.0, 9.0));
  wave.SetFreqHz(0.4);  // anew each 2.5 s, from the phase on
  EXPECT_NEAR(wave.JumpIn(11.5, 12.2).value_or(0.0), 12.0, 1e-12);  // 2 s into the fifth period
  EXPECT_NEAR(wave.JumpIn(12.2, 12.6).value_or(0.0), 12.5, 1e-12);  // where it begins anew
  EXPECT_FALSE(wave.JumpIn(12.6, 14.4));
  const WaveTable still("still", {{0, 1}, {1, 1}, {1, 1}, {2, 3}, {2, 9}, {2, 3}});
  EXPECT_FALSE(still.JumpIn(0.5, 3.0));  // points at one time, but no other value
  wave.SetAmplitude(-2.0);
  wave.SetOffset(1.0);
  EXPECT_EQ(at(4.5), -15.0);
  wave.SetPhaseDeg(180.0);
  EXPECT_NEAR(at(0.75), -15.0, 1e-12);
  ZelUndo& history = model.Bench().History();
  wave.SetWaveform(0);
  EXPECT_EQ(wave.Settings().Amplitude, 3.0);
  EXPECT_EQ(wave.Settings().FreqHz, 5.0);
  history.Undo();
  ASSERT_TRUE(wave.Played());
  EXPECT_NEAR(at(0.75), -15.0, 1e-12);

  std::string file;
  RecordWriter writer(file, "WaveGen", "Other");
  wave.SaveRecords(writer);
  ZelWave other(model.Bench(), "Other", {});
  LineReader lines(file);
  for (std::string line; lines.Next(line);) other.LoadRecord(ParseRecord(line, 1));
  other.FinishLoading([](int) {});
  other.AtTime(0.75);
  EXPECT_NEAR(other.Computed(), -15.0, 1e-12);
  other.SetDutyCycle(30.0);
  other.SetWaveform(4);
  EXPECT_EQ(other.Settings().FreqHz, 5.0);
  EXPECT_EQ(other.Settings().DutyCycle, 30.0);
  test::Recorder reports;
  for (const char* line : {"File,back,2,-7,1,0", "Points,1 0 0 0", "Amplitude,1", "FreqHz,0"}) {
    other.LoadRecord(ParseRecord("WaveGen,Other," + std::string(line), 1));
  }
  other.FinishLoading([](int) {});
  EXPECT_EQ(reports.Take().size(), 1U);
  EXPECT_EQ(other.Settings().FreqHz, 7.0);
  EXPECT_EQ(other.Settings().Amplitude, 2.0);

  while (history.CanUndo()) history.Undo();
  EXPECT_FALSE(wave.Played());
  EXPECT_EQ(wave.Settings().Amplitude, 3.0);
  while (history.CanRedo()) history.Redo();
  EXPECT_NEAR(at(0.75), -15.0, 1e-12);
}

}  // namespace
}  // namespace torvane
