// What makes a response doubtful, and what is never shown as one.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <span>

#include "core/angle.h"
#include "core/constant.h"
#include "instruments/analyser/margins.h"
#include "instruments/analyser/shown_responses_csv.h"
#include "instruments/fft_bench.h"
#include "instruments/sweep/limit_watch.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane {
namespace {

constexpr int Length = 4096;
constexpr int Excited = 3072;

// Signals whose share at a limit is counted as they are made; all but the limited ones have none.
TEST(SignalRecord, TellsALimitFromWhatOnlyLooksLikeOne) {
  std::minstd_rand random;
  std::normal_distribution<float> white;
  float slow = 0.0F;
  // As a loop's signals are: the excitation's filter passes a fifth of the sample rate.
  const auto normal = [&](auto& from) { return slow = 0.6F * slow + 0.8F * white(from); };
  const auto share = [&](auto value) {
    std::vector<float> samples;
    for (int i = 0; i < Length; ++i) samples.push_back(i < Excited ? value(i) : 0.0F);
    return ReadSignal(samples, Excited).AtLimit;
  };
  int limited = 0;
  const auto clamped = [&](float limit) {
    return [&, limit](int) {
      const float x = normal(random);
      limited += std::abs(x) > limit ? 1 : 0;
      return std::clamp(x, -limit, limit);
    };
  };
  for (const float limit : {0.5F, 1.5F, 2.0F}) {
    limited = 0;
    const double read = share(clamped(limit));
    EXPECT_EQ(read, static_cast<double>(limited) / Excited) << limit;
  }
  float held = 0.0F;
  EXPECT_EQ(share([&](int) { return normal(random); }), 0.0);
  EXPECT_EQ(share([&](int i) { return held = i % 20 == 0 ? normal(random) : held; }), 0.0);
  for (const float step : {0.01F, 0.3F, 1.5F}) {
    EXPECT_EQ(share([&](int) { return step * std::floor(normal(random) / step); }), 0.0) << step;
  }
  EXPECT_EQ(share([&](int) { return normal(random) > 0.0F ? 1.0F : -1.0F; }), 0.0);
  EXPECT_EQ(share([](int) { return 2.0F; }), 0.0);
}

TEST(LimitWatch, TellsACutSineFromOneThatIsHeldOrQuantised) {
  const auto atLimit = [](auto shape) {
    std::vector<double> values;
    for (int i = 0; i < 450; ++i) values.push_back(shape(std::sin(TwoPi * (i + 0.3) / 150.0), i));
    const auto seenBy = [&](std::size_t block) {
      LimitWatch watch;
      for (std::size_t i = 0; i < values.size(); i += block) {
        watch.See(std::span(values).subspan(i, std::min(block, values.size() - i)));
      }
      return watch.AtLimit();
    };
    EXPECT_EQ(seenBy(24), seenBy(1));
    return seenBy(7);
  };
  EXPECT_TRUE(atLimit([](double x, int) { return std::clamp(x, -0.9, 0.9); }));
  EXPECT_TRUE(atLimit([](double x, int) { return std::min(x, 0.5); }));
  // Nine times, the least that counts, from the last but one of a block on.
  EXPECT_TRUE(atLimit([](double x, int i) { return i % 96 >= 70 && i % 96 < 79 ? 2.0 : x; }));
  EXPECT_FALSE(atLimit([](double x, int i) { return i % 96 >= 70 && i % 96 < 78 ? 2.0 : x; }));
  EXPECT_FALSE(atLimit([](double x, int) { return x; }));
  for (const double step : {0.01, 0.1, 0.4}) {
    EXPECT_FALSE(atLimit([=](double x, int) { return step * std::floor(x / step); })) << step;
  }
  double held = 0.0;
  EXPECT_FALSE(atLimit([&](double x, int i) { return held = i % 10 == 0 ? x : held; }));
  EXPECT_FALSE(atLimit([](double, int) { return 3.0; }));
}

class ResponseTrust : public testing::Test, protected test::FftBench {};

// In words that any of the doubts holds.
bool Has(const std::vector<std::string>& doubts, const std::string& words) {
  return std::ranges::any_of(
      doubts, [&](const std::string& doubt) { return doubt.find(words) != std::string::npos; });
}

TEST_F(ResponseTrust, AMarkStaysWithItsTrace) {
  Constant gain(Model.Bench(), "KP", "", 1.0, 0.0, 10.0);
  TakeRecord(Impulse, Impulse);
  EXPECT_TRUE(Xfer.ShownDoubts().empty());
  TakeRecord(Impulse, [&](int n) {
    gain.Set(n == 7 ? 2.0 : 1.0);  // there and back
    return Impulse(n);
  });
  const std::vector<std::string> marked{"Current: KP was changed while it was measured."};
  EXPECT_EQ(Xfer.ShownDoubts(), marked);
  EXPECT_EQ(ShownResponsesCsv(Xfer).substr(0, 49), "# " + marked[0] + "\n");
  EXPECT_TRUE(Xfer.StoreData(2));
  TakeRecord(Impulse, Impulse);
  Xfer.SetOutput("In");
  EXPECT_EQ(Xfer.ShownDoubts().at(0).substr(0, 22), "Memory 2: KP was chang");
  // A sweep is not of its own excitation while the other analyser measures.
  ZelSweptDSA sweep(Model.Bench(), "Sweep");
  sweep.Run();
  Xfer.Run();
  for (int i = 0; sweep.PointCount() < 2; ++i) {
    Model.Bench().AdvanceTime(sweep.TSample());
    sweep.Service(Model.Bench().Time());
  }
  EXPECT_TRUE(Has(sweep.ShownDoubts(), "other analyser excited"));
  // A copy has all that was known of it, and a sample time that is set later is not its own.
  const double accurate = sweep.AccurateUpTo();
  EXPECT_TRUE(Xfer.CopyFrom(sweep, 3, "Sweep"));
  sweep.SetTSample(2 * sweep.TSample());
  EXPECT_EQ(sweep.ResponseAt(0).Subject().AccurateUpTo, accurate);
  EXPECT_EQ(Xfer.ResponseAt(3).Subject().AccurateUpTo, accurate);
  EXPECT_EQ(Xfer.Origin(3).Constants, sweep.Origin(0).Constants);
  EXPECT_TRUE(Has(Xfer.ShownDoubts(), "Memory 3: The other analyser excited"));
}

TEST_F(ResponseTrust, DependsOnThePair) {
  const auto doubts = [&](const auto& input, const auto& output) {
    TakeRecord(input, output);
    return Xfer.ResponseAt(0).Doubts();
  };
  const auto grown = [](int n) { return std::exp2(n); };
  EXPECT_TRUE(Has(doubts(Zero, Impulse), "In is nearly nothing beside Out"));
  EXPECT_TRUE(Has(doubts([](int n) { return n == 0 ? 1e-7 : 0.0; }, Impulse), "nearly nothing"));
  EXPECT_FALSE(Has(doubts([](int n) { return n == 0 ? 1e-5 : 0.0; }, Impulse), "nearly nothing"));
  EXPECT_TRUE(Has(doubts(ImpulseAt(3), grown), "Out grew until the record's end"));
  // A ramp of the output leaves a step of its whole height.
  EXPECT_TRUE(Has(doubts(ImpulseAt(3), [](int n) { return 1.0 * n; }), "does not end as it began"));
  Xfer.SetOutput("In");
  EXPECT_TRUE(Xfer.ResponseAt(0).Doubts().empty());
}

// The phase crosses -180 degrees at bin 2, 8 Hz, whatever is added for the eye.
TEST_F(ResponseTrust, WhatIsAddedToAPhaseIsNoPartOfItsMargins) {
  Xfer.AddSetup("Open+180", "In", "Out", 180.0);
  TakeRecord(Impulse, ImpulseAt(4, 0.1));
  Xfer.SelectSetup(0);
  EXPECT_EQ(Xfer.PhaseRead(0, 8.0), 0.0);
  MarginReader reader;
  EXPECT_NEAR(reader.Read(Xfer, 0, ReadAs::Open).SmallestGainMargin()->Hz, 8.0, 1e-12);
  Model.Bench().History().Undo();
  EXPECT_EQ(Xfer.PhaseRead(0, 8.0), -180.0);
}

// A measurement goes, and comes back as it was, when a spectrum is looked at in between.
TEST_F(ResponseTrust, ASpectrumIsNoResponseAndLeavesItAsItWas) {
  TakeRecord(Impulse, ImpulseAt(4, 0.5));
  const double phase = *Xfer.PhaseRead(0, 12.0);
  Xfer.ClickSpectrum(true);
  EXPECT_TRUE(Xfer.HasData(0)) << "its output's spectrum, until samples come";
  Steps(-2, 16, One, One);
  EXPECT_EQ(Xfer.SampleState(), ZelXfer::State::Complete);
  EXPECT_EQ(Xfer.ResponseGain(0, 0.0), 20.0 * std::log10(32.0));
  Xfer.ClickSpectrum(false);
  EXPECT_EQ(Xfer.NextTime(), -1.0) << "nothing is recorded without excitation";
  EXPECT_EQ(Xfer.PhaseRead(0, 12.0), phase);
  Xfer.SetInput("Out");
  EXPECT_EQ(Xfer.PhaseRead(0, 12.0), 0.0);
  // In the middle of a spectrum's record, and of one that the run button excites.
  Xfer.ClickSpectrum(true);
  Steps(-2, 5, One, One);
  Xfer.ClickSpectrum(false);
  EXPECT_EQ(Xfer.PhaseRead(0, 12.0), 0.0);
  Xfer.SetSpectrum(true);
  TakeRecord(One, Impulse);
  Model.Bench().History().Undo();
  EXPECT_EQ(Xfer.PhaseRead(0, 12.0), 0.0);
}

TEST_F(ResponseTrust, UndoOfASetUpTakesItsMeasurementsUpAgain) {
  TakeRecord(Impulse, ImpulseAt(4, 0.5));
  Xfer.StoreData(1);
  const double phase = *Xfer.PhaseRead(0, 12.0);
  FftSetup other = Xfer.Setup();
  other.Order = 3;
  other.TSample = 2 * Period;
  EXPECT_TRUE(Xfer.Apply(other));
  EXPECT_FALSE(Xfer.HasData(0) || Xfer.HasData(1) || Xfer.TraceAt(1).Enabled);
  TakeRecord(Impulse, Impulse);
  Xfer.StoreData(2);
  Model.Bench().History().Undo();
  EXPECT_FALSE(Xfer.HasData(0)) << "the record of the other set-up has taken its place";
  EXPECT_TRUE(Xfer.TraceAt(1).Shown && !Xfer.HasData(2));
  EXPECT_EQ(Xfer.PhaseRead(1, 12.0), phase);
  Model.Bench().History().Redo();
  EXPECT_TRUE(Xfer.HasData(0) && Xfer.TraceAt(2).Shown && !Xfer.HasData(1));
}

}  // namespace
}  // namespace torvane
