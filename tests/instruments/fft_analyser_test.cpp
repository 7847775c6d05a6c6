#include "instruments/fft/fft_analyser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>
#include <random>
#include <utility>
#include <vector>

#include "instruments/analyser/excitation.h"
#include "support/bare_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using State = ZelXfer::State;

/// Two signals on a bench, and an analyser of records of up to 16 samples that is served by hand.
/// Times are multiples of 1/64 s, exact in binary.
class FftAnalyser : public testing::Test {
 protected:
  FftAnalyser() {
    Xfer.SetTSample(Period);
    Xfer.SetTStartDelay(2 * Period);
    Xfer.SetTEndDelay(0.0);
    Xfer.SetBypassFilter(true);
  }

  void Step(double input, double output) {
    In.Value = input;
    Out.Value = output;
    Xfer.Service(Model.Bench().Time());
    Model.Bench().AdvanceTime(Period);
  }

  /// Takes a whole record: sample n is the signal at n.
  void TakeRecord(const std::function<double(int)>& input,
                  const std::function<double(int)>& output) {
    Xfer.Run();
    for (int i = -2; Xfer.Measuring(); ++i) Step(input(i), output(i));
  }

  static constexpr double Period = 1.0 / 64.0;

  test::Recorder Reports;
  test::BareModel Model{1.0 / 1024.0};
  Variable In{Model.Bench(), "In", "volts"};
  Variable Hidden{Model.Bench(), "Hidden", "", {}, Visibility::Internal};
  Variable Out{Model.Bench(), "Out", "", {.Multiplier = 2.0}};
  ZelXfer Xfer{Model.Bench(), 4};
};

double Zero(int) {
  return 0.0;
}
double One(int) {
  return 1.0;
}
double Impulse(int n) {
  return n == 0 ? 1.0 : 0.0;
}

TEST(RandomSequence, FollowsItsRecurrence) {
  // (7141 * 0 + 54773) mod 259200, (7141 * 54773 + 54773) mod 259200, ... by hand.
  RandomSequence sequence;
  EXPECT_EQ(sequence.Uniform(2.0, 10.0), (54773.0 / 259200.0 - 0.5) * 2.0 + 10.0);
  EXPECT_EQ(sequence.Binary(2.0, 10.0), 8.0);
  EXPECT_EQ(sequence.State(), 55966);
  sequence.Uniform(1.0, 0.0);
  EXPECT_EQ(sequence.State(), 21579);
  EXPECT_EQ(sequence.Uniform(0.0, 3.0), 3.0);
  sequence.Restart();
  EXPECT_EQ(sequence.State(), 0);
}

TEST(SmoothingFilter, HasItsOwnStepResponseAndUnityGain) {
  SmoothingFilter filter;
  // Worked out from the coefficients' formulas in another language; some units of rounding.
  for (const double expected : {0.03788136241906995, 0.14879524207706296, 0.32893428067788094,
                                0.5432268108493123, 0.7504845594586209, 0.9207960288344794}) {
    EXPECT_NEAR(filter.Step(1.0), expected, 1e-14);
  }
  for (int i = 0; i < 500; ++i) filter.Step(1.0);
  EXPECT_NEAR(filter.Step(1.0), 1.0, 1e-14);
}

TEST_F(FftAnalyser, AsksForNothingUntilRun) {
  EXPECT_EQ(Xfer.NextTime(), -1.0);
  EXPECT_FALSE(Xfer.Measuring());
  EXPECT_FALSE(Xfer.HasData(0));
  EXPECT_FALSE(Xfer.StoreData(1));
  EXPECT_EQ(Xfer.Excitation(0.0), 0.0);
  ASSERT_EQ(Xfer.Channels().size(), 2U);
  EXPECT_EQ(Xfer.Input()->Name(), "In");
  EXPECT_EQ(Xfer.Output()->Name(), "Out");
  EXPECT_EQ(Xfer.Input()->Label(), "In (volts)");
  EXPECT_EQ(Reports.Take(), Messages{"Note: There is no measurement to store."});
}

TEST_F(FftAnalyser, TakesOneRecordAfterTheStartDelay) {
  Model.Bench().AdvanceTime(10.0);
  Xfer.SetOffset(5.0);
  Xfer.SetTEndDelay(12 * Period);
  Xfer.Run();
  EXPECT_EQ(Xfer.NextTime(), 10.0);
  for (int i = 0; i < 2; ++i) {
    Step(0.0, 0.0);
    EXPECT_EQ(Xfer.SampleState(), State::Sampling);
    EXPECT_EQ(Xfer.SampleCount(), 0);
    EXPECT_EQ(Xfer.Excitation(Model.Bench().Time()), 5.0);
    EXPECT_EQ(Xfer.NextTime(), 10.0 + (i + 1) * Period);
  }
  RandomSequence sequence;
  double before = 5.0;
  for (int n = 0; n < 16; ++n) {
    const double instant = Model.Bench().Time();
    Step(0.0, 0.0);
    // The first four samples excite, and the model sees it half a sample later.
    const double drawn = n < 4 ? sequence.Uniform(1.0, 5.0) : 5.0;
    EXPECT_EQ(Xfer.Excitation(instant), before) << n;
    EXPECT_EQ(Xfer.Excitation(instant + 0.4999 * Period), before) << n;
    EXPECT_EQ(Xfer.Excitation(instant + 0.5 * Period), drawn) << n;
    EXPECT_EQ(Xfer.Measuring(), n < 15) << n;
    before = drawn;
  }
  EXPECT_EQ(Xfer.SampleState(), State::Complete);
  EXPECT_EQ(Xfer.NextTime(), -1.0);
  EXPECT_TRUE(Xfer.HasData(0));
  EXPECT_TRUE(Xfer.TraceAt(0).Shown);
  EXPECT_TRUE(Xfer.TakeNeedsRedraw());
}

TEST_F(FftAnalyser, BeginsTheFirstRecordAtTimeZeroHalfASampleLate) {
  // No sample has been drawn, but time 0 counts as one of value 0.
  Xfer.SetOffset(5.0);
  Xfer.Run();
  Step(0.0, 0.0);
  EXPECT_EQ(Xfer.Excitation(0.4999 * Period), 0.0);
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
}

TEST_F(FftAnalyser, LagsBehindLongStepsWithoutEmptyChunks) {
  test::BareModel slow(4 * Period);
  Variable a(slow.Bench(), "a", "");
  Variable b(slow.Bench(), "b", "");
  ZelXfer xfer(slow.Bench(), 4);
  xfer.SetTSample(Period);
  xfer.SetTStartDelay(0.0);
  xfer.Run();
  slow.RunChunk();
  // The chunk at time 0 makes no step; each later one makes one step and takes one sample.
  for (int n = 1; n < 16; ++n) {
    slow.RunChunk();
    EXPECT_EQ(slow.Time(), n * 4 * Period);
    EXPECT_EQ(xfer.SampleCount(), n + 1);
  }
  EXPECT_EQ(xfer.SampleState(), State::Complete);
}

TEST_F(FftAnalyser, ReadsGainAndPhaseOfABin) {
  TakeRecord(Impulse, [](int n) { return n == 4 ? 0.5 : 0.0; });
  AnalyserChannel& in = *Xfer.Input();
  AnalyserChannel& out = *Xfer.Output();
  EXPECT_EQ(in.Gain(0, 3), 0.0);
  EXPECT_EQ(in.Phase(0, 3), 0.0);
  // The multiplier of 2 makes a unit impulse of the output; four samples late it turns a quarter
  // turn a bin. Single precision's rounding, 6e-8, in degrees and dB.
  const double late[] = {0.0, -90.0, -180.0, 90.0, 0.0, -90.0, -180.0, 90.0};
  for (int k = 0; k < 8; ++k) {
    EXPECT_NEAR(out.Gain(0, k), 0.0, 1e-5) << k;
    EXPECT_NEAR(std::remainder(out.Phase(0, k) - late[k], 360.0), 0.0, 1e-4) << k;
    EXPECT_GE(out.Phase(0, k), -270.0);
    EXPECT_LE(out.Phase(0, k), 90.0);
  }
  EXPECT_EQ(in.Gain(0, 16), 0.0);
  EXPECT_EQ(in.Phase(0, -1), 0.0);
  EXPECT_EQ(Reports.Take(),
            (Messages{"Error: ZelXferChannel:  Attempt to get gain outside range",
                      "Error: ZelXferChannel:  Attempt to get phase outside range"}));
}

TEST_F(FftAnalyser, ReadsNothingAsMinus200dBAndPurelyImaginaryAs90) {
  // A real odd record of order 3 whose only samples cancel on bin 0; bin 2 is exactly imaginary.
  Xfer.SetOrder(3);
  TakeRecord(Zero, [](int n) { return n == 0 ? 1.0 : n == 4 ? -1.0 : 0.0; });
  EXPECT_EQ(Xfer.Input()->Gain(0, 1), -200.0);
  EXPECT_EQ(Xfer.Input()->Phase(0, 1), 90.0);
  EXPECT_EQ(Xfer.Output()->Gain(0, 0), -200.0);
  EXPECT_EQ(Xfer.Output()->Gain(0, 1), 20.0 * std::log10(4.0));
}

TEST_F(FftAnalyser, ReadsTheResponseBetweenBins) {
  const auto noise = [](int n) { return std::sin(n * n * 0.7) + 0.2; };
  TakeRecord(noise, [&](int n) { return noise(n) / 2.0; });
  for (double x = 0.0; x < 8.0; x += 0.25) {
    EXPECT_EQ(Xfer.ResponseGain(0, x), 0.0);
    EXPECT_EQ(Xfer.ResponsePhase(0, x), 0.0);
  }
  EXPECT_EQ(Xfer.IndexAt(0, 6.0), 1.5);
  EXPECT_EQ(Xfer.DataRange(0).Low, 4.0);
  EXPECT_EQ(Xfer.DataRange(0).High, 32.0);

  // Bin to bin the value is linear; output alone in spectrum mode.
  TakeRecord(Impulse, noise);
  const double g2 = Xfer.Output()->Gain(0, 2);
  const double g3 = Xfer.Output()->Gain(0, 3);
  EXPECT_NEAR(Xfer.ResponseGain(0, 2.25), 0.75 * g2 + 0.25 * g3, 1e-12);
  EXPECT_EQ(Xfer.ResponseGain(0, 2.0), g2);

  // A lag of 5 samples turns by -112.5 degrees a bin: each bin is wrapped before the two are mixed.
  TakeRecord(Impulse, [](int n) { return n == 5 ? 1.0 : 0.0; });
  EXPECT_NEAR(Xfer.ResponsePhase(0, 2.0), -225.0, 1e-4);
  EXPECT_NEAR(Xfer.ResponsePhase(0, 3.0), 22.5, 1e-4);
  EXPECT_NEAR(Xfer.ResponsePhase(0, 2.5), (-225.0 + 22.5) / 2.0, 1e-4);
  EXPECT_EQ(Reports.Take(), Messages{});

  // The last position asks for a bin that is not there; so does one that is no number.
  Xfer.SetSpectrum(true);
  Xfer.ResponseGain(0, 16.0);
  Xfer.ResponseGain(0, std::nan(""));
  EXPECT_EQ(Reports.Take().size(), 2U);
}

TEST_F(FftAnalyser, WindowsSamplesInSpectrumMode) {
  Xfer.SetSpectrum(true);
  TakeRecord(Zero, One);
  // The window of peak 2 has the mean 1, so the constant 2 sums up to 2 N. Exact: all eighths.
  EXPECT_EQ(Xfer.ResponseGain(0, 0.0), 20.0 * std::log10(32.0));
  ZelXferChannel channel(In, Fft(4));
  channel.SetWindow(true);
  In.Value = 1.0;
  for (int i = 0; i < 16; ++i) channel.Sample(i);
  EXPECT_EQ(channel.Real(0, 0), 0.0F);
  EXPECT_EQ(channel.Real(0, 7), 1.75F);
  EXPECT_EQ(channel.Real(0, 8), 2.0F);
  EXPECT_EQ(channel.Real(0, 9), 1.75F);
}

TEST_F(FftAnalyser, ClickingSpectrumTakesARecordUnderTheGenerator) {
  Xfer.ClickSpectrum(true);
  EXPECT_FALSE(Xfer.Measuring());
  EXPECT_EQ(Xfer.SampleState(), State::Armed);
  for (int i = -2; i < 16; ++i) Step(0.0, 1.0);
  EXPECT_TRUE(Xfer.HasData(0));
  // Until a model runs, on and off again leaves the record that was taken.
  Xfer.ClickSpectrum(false);
  Xfer.ClickSpectrum(true);
  EXPECT_TRUE(Xfer.HasData(0));
  EXPECT_TRUE(Xfer.GainRead(0, 1.0 / (16 * Period)));
  EXPECT_FALSE(Xfer.GainRead(0, 1.0 / Period) || Xfer.PhaseRead(1, 8.0));
  // In the middle of a record the change of window starts another one.
  Xfer.Run();
  for (int i = -2; i < 5; ++i) Step(0.0, 1.0);
  Xfer.SetSpectrum(false);
  EXPECT_EQ(Xfer.SampleState(), State::Armed);
  EXPECT_TRUE(Xfer.Measuring());
}

TEST_F(FftAnalyser, KeepsMemoriesUntilTheRecordChangesItsMeasure) {
  TakeRecord(Impulse, One);
  const double before = Xfer.Output()->Gain(0, 0);
  EXPECT_TRUE(Xfer.StoreData(2));
  Xfer.SetShown(2, false);
  EXPECT_TRUE(Xfer.StoreData(2));
  EXPECT_TRUE(Xfer.TraceAt(2).Shown);
  EXPECT_FALSE(Xfer.StoreData(5));
  EXPECT_EQ(Reports.Take(), Messages{"Error: Fault in ZelXferChannel :: StoreData"});
  TakeRecord(Impulse, Zero);
  EXPECT_EQ(Xfer.ResponseGain(0, 0.0), -200.0);
  EXPECT_EQ(Xfer.ResponseGain(2, 0.0), before);

  Xfer.Run();
  Xfer.SetTSample(Period);
  Xfer.SetOrder(4);
  EXPECT_TRUE(Xfer.Measuring());
  EXPECT_TRUE(Xfer.HasData(2));
  Xfer.SetOrder(3);
  EXPECT_FALSE(Xfer.Measuring());
  EXPECT_EQ(Xfer.SampleState(), State::Halted);
  EXPECT_EQ(Xfer.NextTime(), -1.0);
  EXPECT_FALSE(Xfer.HasData(0));
  EXPECT_FALSE(Xfer.HasData(2));
  EXPECT_TRUE(Xfer.TraceAt(0).Enabled);
}

TEST_F(FftAnalyser, RefusesTransformsThatHaveNoSamples) {
  const Fft fft(4);
  ZelXferChannel channel(In, fft);
  channel.RunFFT(0);
  channel.RunFFT(0);
  channel.RunFFT(1);
  channel.Sample(16);
  channel.SetOrder(5);
  EXPECT_EQ(Reports.Take(), (Messages{"Error: Attempt to execute RunFFT in illegal state",
                                      "Error: Internal Error:  Running FFT on unitiilized vector",
                                      "Error: ZelXferChannel:  Attempt to sample outside range",
                                      "Error: ZelXferChannel:  Attempt to set order > MaxOrder"}));
}

TEST_F(FftAnalyser, RefusesSettingsOutOfRange) {
  const std::vector<std::pair<std::function<void()>, std::string>> refused = {
      {[&] { Xfer.SetOrder(2); }, "Attempt to set Order < MinOrder"},
      {[&] { Xfer.SetOrder(5); }, "Attempt to set Order > MaxOrder"},
      {[&] { Xfer.SetTSample(-1.0); }, "Attempt to set TSample < 0"},
      {[&] { Xfer.SetTSample(0.0); }, "Attempt to set TSample < 0"},
      {[&] { Xfer.SetTSample(std::nan("")); }, "Attempt to set TSample < 0"},
      {[&] { Xfer.SetTEndDelay(-1.0); }, "Attempt to set tEndDelay < 0%"},
      {[&] { Xfer.SetTEndDelay(16 * Period); }, "Attempt to set tEndDelay >= 100% of Sample Time"},
      {[&] { Xfer.SetTStartDelay(-1.0); }, "Attempt to set TStartDelay < 0"},
      {[&] { Xfer.SetAmplitude(-1.0); }, "Attempt to set Excitation Amplitude < 0"},
      {[&] { Xfer.SetFreqMin(0.0); }, "Attempt to set Xfer FreqMin <= 0"},
      {[&] { Xfer.SetGainScale(0.0); }, "Attempt to set Xfer Gain Scale <= 0"},
      {[&] { Xfer.SetPhaseScale(-90.0); }, "Attempt to set Xfer Phase Scale <= 0"},
      {[&] { Xfer.SetInput("vQ"); }, "Cannot find channel vQ"},
      {[&] { Xfer.SetOutput("Hidden"); }, "Cannot find channel Hidden"},
  };
  for (const auto& [set, message] : refused) {
    set();
    EXPECT_EQ(Reports.Take(), Messages{"Error: " + message});
  }
  EXPECT_EQ(Xfer.Order(), 4);
  EXPECT_EQ(Xfer.TSample(), Period);
  EXPECT_EQ(Xfer.GainScale(), 20.0);
  EXPECT_EQ(Xfer.Input()->Name(), "In");
}

TEST_F(FftAnalyser, ChecksASetupAsAWhole) {
  using enum SetupFinding::Kind;
  const FftSetup good = {Period, 4, 0.0, 4 * Period, 1.0, 0.0};
  const auto with = [&](auto member, auto value) {
    FftSetup setup = good;
    setup.*member = value;
    return setup;
  };
  const std::vector<std::pair<FftSetup, SetupFinding>> cases = {
      {good, {}},
      {with(&FftSetup::TSample, 0.0), {Refusal, "Sample Time must be > 0", {}}},
      {with(&FftSetup::TSample, 1e-6), {Refusal, "Sample Time must be >= the solver's step", {}}},
      {with(&FftSetup::Order, 2), {Refusal, "Minimum Order = 3", {}}},
      {with(&FftSetup::Order, 5), {Refusal, "Maximum Order = 4", {}}},
      {with(&FftSetup::TStartDelay, -1.0), {Refusal, "Start Zero Time must be >= 0", {}}},
      {with(&FftSetup::TEndDelay, -1.0), {Refusal, "End Zero Time must be >= 0", {}}},
      {with(&FftSetup::Amplitude, 0.0), {Refusal, "Amplitude must be > 0", {}}},
      {with(&FftSetup::TEndDelay, 17 * Period), {Refusal, "Active Sample Time < 0%.  Raise", {}}},
      {with(&FftSetup::TEndDelay, 13 * Period), {Warning, "Active Sample Time < 25%.  You", {}}},
      {with(&FftSetup::TEndDelay, 0.0), {SetupFinding::Kind::Note, "End Zero Time = 0.", {}}},
  };
  for (const auto& [setup, expected] : cases) {
    const SetupFinding found = Xfer.Check(setup);
    EXPECT_EQ(found.What, expected.What) << found.Text;
    EXPECT_TRUE(found.Text.starts_with(expected.Text)) << found.Text;
    EXPECT_EQ(Xfer.Apply(setup), expected.What != Refusal);
  }
  // A shorter record never leaves an end delay that covers it.
  Xfer.Apply(with(&FftSetup::TEndDelay, 12 * Period));
  Xfer.SetOrder(3);
  EXPECT_EQ(Xfer.TEndDelay(), 0.2 * 8 * Period);
}

TEST_F(FftAnalyser, ARecordFromTimeZeroRestsAtZeroForHalfASample) {
  Xfer.SetOffset(5.0);
  Xfer.Run();
  Xfer.Service(0.0);
  EXPECT_EQ(Xfer.Excitation(0.0), 0.0);
  EXPECT_EQ(Xfer.Excitation(0.49 * Xfer.TSample()), 0.0);
  EXPECT_EQ(Xfer.Excitation(0.5 * Xfer.TSample()), 5.0);
}

TEST_F(FftAnalyser, OffsetSetterThrowsLowExcitationsToTheTop) {
  constexpr double Later = 1.0;  // past the half sample for which the excitation is held
  Xfer.SetAmplitude(2.0);
  Xfer.SetOffset(0.5);
  EXPECT_EQ(Xfer.Excitation(Later), 0.0);
  Xfer.SetOffset(-3.0);
  EXPECT_EQ(Xfer.Excitation(Later), -2.0);
  // Below the lower bound of 9 it becomes the upper one all the same.
  Xfer.SetOffset(10.0);
  EXPECT_EQ(Xfer.Excitation(Later), 11.0);
}

TEST_F(FftAnalyser, KeepsTheFrequencyAxisOpen) {
  Xfer.SetTSample(0.001);
  Xfer.AutoRange();
  // First bin 62.5 Hz, raised to the next mantissa of the ladder; half of Nyquist.
  EXPECT_NEAR(Xfer.FreqMin(), 70.7, 1e-9);
  EXPECT_EQ(Xfer.FreqMax(), 250.0);
  Xfer.SetFreqMin(300.0);
  EXPECT_EQ(Xfer.FreqMin(), 0.99 * 250.0);
  Xfer.SetFreqMax(1.0);
  EXPECT_EQ(Xfer.FreqMax(), 1.01 * (0.99 * 250.0));
  Xfer.SetFreqRange(1000.0, 2000.0);
  EXPECT_EQ(Xfer.FreqMin(), 1000.0);
  EXPECT_EQ(Xfer.FreqMax(), 2000.0);
}

TEST_F(FftAnalyser, OffersSetups) {
  Xfer.AddSetup("Back", "Out", "In");
  Xfer.AddSetup("Back+180", "Out", "In", 180.0);
  EXPECT_EQ(Xfer.CurrentSetup(), -1);
  EXPECT_TRUE(Xfer.SelectSetup(1));
  EXPECT_EQ(Xfer.CurrentSetup(), 1);
  TakeRecord(One, One);
  // A gain of a half, turned by half a turn; 180 reads as -180.
  EXPECT_EQ(Xfer.ResponsePhase(0, 0.0), -180.0);
  EXPECT_TRUE(Xfer.SelectSetup(0));
  EXPECT_EQ(Xfer.ResponsePhase(0, 0.0), 0.0);
  EXPECT_EQ(Reports.Take(), Messages{});

  Xfer.AddSetup("No", "In", "vQ");
  Xfer.AddSetup("No", "vQ", "In");
  Xfer.SelectSetup(2);
  EXPECT_EQ(Reports.Take(),
            (Messages{"Error: Call to Set Xfer Channel with unknown output channel: vQ",
                      "Error: Call to Set Xfer Channel with with unknown input channel: vQ",
                      "Error: Call to Enable Xfer Channel Button with Illegal Value"}));
}

TEST(FftAnalyserConstruction, ReportsWhatItCannotBeBuiltFrom) {
  test::Recorder reports;
  test::BareModel model;
  const ZelXfer none(model.Bench(), 40);
  EXPECT_EQ(none.MaxOrder(), ZelXfer::MinOrder);
  EXPECT_EQ(reports.Take(), (Messages{"Fatal Error: Fault in TZelXferF :: TZelXferF",
                                      "Error: Xfer initialized with fewer than 2 variables"}));
  EXPECT_EQ(none.Name(), "MainXFer");
}

// The whole instrument on a first-order low-pass: the response that it reads is the filter's, as
// sampled: y[k] follows the command held over the two halves of a period.
TEST(FftAnalyserMeasurement, ReadsALowPassAsItIsSampled) {
  constexpr double T = 1.0 / 1024.0;
  constexpr double W = 2.0 * 3.1415926 * 20.0;
  test::BareModel model(T / 8.0);
  Variable x(model.Bench(), "x", "");
  StateVariable y(model.Bench(), "y", "", 0.0);
  ZelXfer xfer(model.Bench(), 12);
  xfer.SetTSample(T);
  xfer.SetTStartDelay(0.0);
  xfer.SetTEndDelay(0.5);
  model.Loop = [&](double) {
    x.Value = xfer.Excitation(model.Time());
    y.Derivative = W * (x.Value - y.Value);
  };
  xfer.Run();
  while (xfer.Measuring()) model.RunChunk();

  // A sample sees the command of the step before it, that is x[k], set half a period earlier:
  // y[k] = a y[k-1] + b x[k] + (1 - a - b) x[k-1].
  const double a = std::exp(-W * T);
  const double b = 1.0 - std::exp(-W * T / 2.0);
  for (int bin = 4; bin < 800; bin += 9) {
    const double angle = 2.0 * 3.141592653589793 * bin / 4096.0;
    const std::complex<double> z1 = std::polar(1.0, -angle);
    const std::complex<double> h = (b + (1.0 - a - b) * z1) / (1.0 - a * z1);
    // Single precision's rounding of a record of 4096 samples against lines of a few units.
    EXPECT_NEAR(xfer.ResponseGain(0, bin), 20.0 * std::log10(std::abs(h)), 2e-3) << bin;
    EXPECT_NEAR(xfer.ResponsePhase(0, bin), std::arg(h) * 180.0 / 3.141592653589793, 2e-2) << bin;
  }
}

TEST_F(FftAnalyser, AveragesRecordsThatGoOnFromEachOther) {
  // The output is twice the input, with a disturbance of the same size on it.
  Xfer.SetAverages(200);
  RandomSequence drawn;
  std::minstd_rand disturbance;
  Xfer.Run();
  Step(0.0, 0.0);
  Step(0.0, 0.0);
  while (Xfer.Measuring()) {
    const double next = drawn.Uniform(1.0, 0.0);
    Step(next, next + (disturbance() % 2 == 0 ? 0.25 : -0.25));
    EXPECT_EQ(Xfer.Excitation(Model.Bench().Time()), next);
  }
  EXPECT_EQ(Xfer.RecordsTaken(), 200);
  EXPECT_EQ(Xfer.Progress(), 1.0);
  ASSERT_TRUE(Xfer.HasCoherence(0));
  for (int bin = 1; bin < 8; ++bin) {
    // Power of the response to that of the disturbance: 1/12 to 1/16. Averages of 200 scatter by a
    // fifteenth.
    EXPECT_NEAR(Xfer.ResponseGain(0, bin), 20.0 * std::log10(2.0), 0.6) << bin;
    EXPECT_NEAR(Xfer.ResponsePhase(0, bin), 0.0, 5.0) << bin;
    EXPECT_NEAR(Xfer.Coherence(0, bin), 4.0 / 7.0, 0.12) << bin;
    EXPECT_TRUE(Xfer.Excited(0, bin));
  }
  EXPECT_TRUE(Xfer.StoreData(1));
  EXPECT_EQ(Xfer.Coherence(1, 3), Xfer.Coherence(0, 3));
}

TEST_F(FftAnalyser, TakesTheWholeRecordsOfAnAverageStoppedByHand) {
  Xfer.SetAverages(3);
  Xfer.Run();
  for (int i = -2; i < 20; ++i) Step(Impulse(i), Impulse(i));
  Xfer.Halt();
  EXPECT_EQ(Xfer.RecordsTaken(), 1);
  EXPECT_TRUE(Xfer.HasData(0));
  EXPECT_NEAR(Xfer.ResponseGain(0, 3), 20.0 * std::log10(2.0), 1e-5);  // single precision
  Xfer.SetAverages(0);
  EXPECT_EQ(Reports.Take(), Messages{"Error: Averages must be 1 to 1000"});
}

TEST_F(FftAnalyser, TellsWhereItsExcitationHasNoPowerAndWhatLeaks) {
  Xfer.SetAmplitude(0.0);
  TakeRecord(One, One);
  EXPECT_FALSE(Xfer.Excited(0, 3));
  EXPECT_FALSE(Xfer.HasCoherence(0));
  EXPECT_EQ(Xfer.Warnings().size(), 1U);
  Xfer.SetTEndDelay(Period);
  EXPECT_TRUE(Xfer.Warnings().empty());
}

TEST_F(FftAnalyser, LaysAResponseFromElsewhereIntoAMemory) {
  Xfer.LoadMemory(2, {{1.0, -3.0, 300.0}, {100.0, -7.0, -400.0}}, "bench.csv");
  EXPECT_TRUE(Xfer.TraceAt(2).Shown);
  EXPECT_EQ(Xfer.GainRead(2, 10.0), -5.0);
  EXPECT_EQ(Xfer.PhaseRead(2, 1.0), -60.0);
  EXPECT_EQ(Xfer.PhaseRead(2, 100.0), -40.0);
  EXPECT_FALSE(Xfer.GainRead(2, 101.0));
  // It has nothing to do with the records' length.
  Xfer.SetOrder(3);
  EXPECT_EQ(Xfer.LoadedFrom(2), "bench.csv");
  EXPECT_TRUE(Xfer.HasData(2));
  TakeRecord(One, One);
  EXPECT_TRUE(Xfer.StoreData(2));
  EXPECT_EQ(Xfer.LoadedFrom(2), "");
}

}  // namespace
}  // namespace torvane
