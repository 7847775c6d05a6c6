#include "instruments/fft/fft_analyser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "instruments/analyser/excitation.h"
#include "instruments/fft_bench.h"

namespace torvane {
namespace {

using test::Messages;
using XferState = ZelXfer::State;

class FftAnalyser : public testing::Test, protected test::FftBench {};

TEST(Excitation, FollowsItsRecurrence) {
  // (7141 * 0 + 54773) mod 259200, (7141 * 54773 + 54773) mod 259200, ... by hand.
  RandomSequence sequence;
  EXPECT_EQ(sequence.Uniform(2.0, 10.0), (54773.0 / 259200.0 - 0.5) * 2.0 + 10.0);
  EXPECT_EQ(sequence.Binary(2.0, 10.0), 8.0);
  EXPECT_EQ(sequence.State(), 55966);
  int high = 0;
  for (int i = 0; i < 100; ++i) high += sequence.Binary(2.0, 10.0) == 12.0 ? 1 : 0;
  EXPECT_NEAR(high, 50, 15);
}

TEST_F(FftAnalyser, TakesOneRecordAfterTheStartDelay) {
  EXPECT_EQ(Xfer.NextTime(), -1.0);
  EXPECT_EQ(Xfer.Excitation(0.0), 0.0);
  Model.Bench().AdvanceTime(10.0);
  Xfer.SetOffset(5.0);
  Xfer.SetTEndDelay(12 * Period);
  Xfer.Run();
  EXPECT_EQ(Xfer.NextTime(), 10.0);
  for (int i = 0; i < 2; ++i) {
    Step(0.0, 0.0);
    EXPECT_EQ(Xfer.SampleCount(), 0);
    EXPECT_EQ(Xfer.Excitation(Model.Bench().Time()), 5.0);
    // Asked for a little early, so that no rounding moves the sample to the next step.
    const double early = 10.0 + (i + 1) * Period - Xfer.NextTime();
    EXPECT_TRUE(early > 0.0 && early < Model.Solver().Step());
  }
  RandomSequence sequence;
  double before = 5.0;
  for (int n = 0; n < 16; ++n) {
    const double instant = Model.Bench().Time();
    EXPECT_EQ(Xfer.Progress(), n / 16.0);
    EXPECT_TRUE(Xfer.Measuring() && Xfer.SampleState() == XferState::Sampling);
    Step(0.0, 0.0);
    // The first four samples excite, and the model sees it half a sample later.
    const double drawn = n < 4 ? sequence.Uniform(1.0, 5.0) : 5.0;
    EXPECT_EQ(Xfer.Excitation(instant), before) << n;
    EXPECT_EQ(Xfer.Excitation(instant + 0.499 * Period), before) << n;
    EXPECT_EQ(Xfer.Excitation(instant + 0.5 * Period), drawn) << n;
    before = drawn;
  }
  EXPECT_FALSE(Xfer.Measuring());
  EXPECT_EQ(Xfer.SampleState(), XferState::Complete);
  EXPECT_EQ(Xfer.NextTime(), -1.0);
  EXPECT_TRUE(Xfer.HasData(0) && Xfer.TraceAt(0).Shown && Xfer.TakeNeedsRedraw());
}

// Time 0 counts as a sample of value 0.
TEST_F(FftAnalyser, ARecordFromTimeZeroRestsAtZeroForHalfASample) {
  Xfer.SetOffset(5.0);
  Xfer.Run();
  Xfer.Service(0.0);
  EXPECT_EQ(Xfer.Excitation(0.49 * Period), 0.0);
  EXPECT_EQ(Xfer.Excitation(0.5 * Period), 5.0);
}

TEST_F(FftAnalyser, RepeatsItsSequenceButKeepsTheFiltersMemory) {
  const auto record = [&] {
    std::vector<double> excitation;
    Xfer.Run();
    while (Xfer.Measuring()) {
      Step(0.0, 0.0);
      excitation.push_back(Xfer.Excitation(Model.Bench().Time()));
    }
    return excitation;
  };
  const std::vector<double> bare = record();
  EXPECT_EQ(record(), bare);
  Xfer.SetBypassFilter(false);
  // The last value of the unfiltered record is still the output while the delay begins.
  const std::vector<double> fresh = record();
  const std::vector<double> continued = record();
  EXPECT_EQ(fresh[1], continued[1]);
  EXPECT_NE(fresh[2], continued[2]);
  EXPECT_NE(fresh[2], bare[2]);
  // After an overflow nothing is remembered.
  Xfer.Run();
  Xfer.Restart();
  EXPECT_FALSE(Xfer.Measuring());
  EXPECT_EQ(record()[2], fresh[2]);
}

TEST_F(FftAnalyser, ReadsNothingOfARecordThatWasNeverTaken) {
  EXPECT_EQ(Xfer.Output()->Gain(0, 3), -200.0);
  const Fft transform(4);
  ZelXferChannel channel(Out, transform);
  EXPECT_TRUE(channel.StoreData(1));
  EXPECT_EQ(channel.Gain(1, 15), -200.0);
  EXPECT_EQ(Reports.Take(), Messages{});
  channel.Exchange();
  Out.Value = 1.0;
  channel.Sample(0);
  EXPECT_EQ(channel.Gain(0, 5), 20.0 * std::log10(2.0));
  EXPECT_EQ(Reports.Take(), Messages{});
}

TEST_F(FftAnalyser, ReadsGainAndPhaseOfABin) {
  TakeRecord(Impulse, ImpulseAt(4, 0.5));
  // The multiplier of 2 makes a unit impulse of the output; four samples late it turns a quarter
  // turn a bin. Single precision's rounding, 6e-8, in degrees and dB.
  const double late[] = {0.0, -90.0, -180.0, 90.0};
  for (int k = 0; k < 8; ++k) {
    EXPECT_EQ(Xfer.Input()->Gain(0, k), 0.0);
    EXPECT_EQ(Xfer.Input()->Phase(0, k), 0.0);
    EXPECT_NEAR(Xfer.Output()->Gain(0, k), 0.0, 1e-5) << k;
    const double phase = Xfer.Output()->Phase(0, k);
    EXPECT_NEAR(std::remainder(phase - late[k % 4], 360.0), 0.0, 1e-4) << k;
    EXPECT_TRUE(phase >= -270.0 && phase <= 90.0);
  }
  // Between bins the value is linear; each bin is wrapped before two are mixed: a lag of 5 samples
  // turns by -112.5 degrees a bin.
  TakeRecord(Impulse, ImpulseAt(5));
  EXPECT_NEAR(Xfer.ResponsePhase(0, 2.0), -225.0, 1e-4);
  EXPECT_NEAR(Xfer.ResponsePhase(0, 3.0), 22.5, 1e-4);
  EXPECT_NEAR(Xfer.ResponsePhase(0, 2.25), 0.75 * -225.0 + 0.25 * 22.5, 1e-4);
  EXPECT_FALSE(Xfer.PhaseRead(0, 2.25 * 4.0)) << "a wrap lies between";
  EXPECT_TRUE(Xfer.PhaseRead(0, 4.25 * 4.0));
  const Response& response = Xfer.ResponseAt(0);
  EXPECT_EQ(response.IndexAt(6.0), 1.5);
  EXPECT_EQ(response.At(3)->Hz, 12.0);
  EXPECT_TRUE(response.LowestHz() == 4.0 && response.HighestHz() == 32.0);
  EXPECT_TRUE(response.First() == 1 && response.End() == 9);
  EXPECT_EQ(Reports.Take(), Messages{});
  // A shorter record never leaves an end delay that covers it.
  Xfer.SetTEndDelay(8 * Period);
  Xfer.SetOrder(3);
  EXPECT_EQ(Xfer.TEndDelay(), 0.2 * 8 * Period);
  // A real odd record of order 3 whose only samples cancel on bin 0; bin 2 is exactly imaginary.
  TakeRecord(Zero, [](int n) { return n == 0 ? 1.0 : n == 4 ? -1.0 : 0.0; });
  EXPECT_EQ(Xfer.Input()->Gain(0, 1), -200.0);
  EXPECT_EQ(Xfer.Input()->Phase(0, 1), 90.0);
  EXPECT_EQ(Xfer.Output()->Gain(0, 0), -200.0);
  EXPECT_EQ(Xfer.Output()->Gain(0, 1), 20.0 * std::log10(4.0));
}

TEST_F(FftAnalyser, ReadsTheOutputAloneUnderAWindowInSpectrumMode) {
  Xfer.ClickSpectrum(true);  // a record under the generator, not a measurement
  EXPECT_FALSE(Xfer.Measuring());
  EXPECT_EQ(Xfer.SampleState(), XferState::Armed);
  Steps(-2, 16, One, One);
  // The window of peak 2 has the mean 1, so the constant 2 sums up to 2 N. Exact: all eighths.
  EXPECT_EQ(Xfer.ResponseGain(0, 0.0), 20.0 * std::log10(32.0));
  // Until a model runs, on and off again leaves the record that was taken.
  Xfer.ClickSpectrum(false);
  Xfer.ClickSpectrum(true);
  EXPECT_TRUE(Xfer.GainRead(0, 4.0));
  EXPECT_FALSE(Xfer.GainRead(0, 64.0) || Xfer.GainRead(0, 3.9) || Xfer.PhaseRead(1, 8.0));
  // In the middle of a record the change of window starts another one.
  Xfer.Run();
  Steps(-2, 5, Zero, One);
  Xfer.SetSpectrum(false);
  EXPECT_EQ(Xfer.SampleState(), XferState::Armed);
  EXPECT_TRUE(Xfer.Measuring());
}

TEST_F(FftAnalyser, OffsetSetterThrowsLowExcitationsToTheTop) {
  constexpr double Later = 1.0;  // past the half sample for which the excitation is held
  Xfer.SetAmplitude(2.0);
  // Below the lower bound of 9 it becomes the upper one all the same.
  for (const auto& [offset, then] : {std::pair{0.5, 0.0}, {-3.0, -2.0}, {10.0, 11.0}}) {
    Xfer.SetOffset(offset);
    EXPECT_EQ(Xfer.Excitation(Later), then);
  }
}

}  // namespace
}  // namespace torvane
