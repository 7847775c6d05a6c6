#include "instruments/meter/meter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/bare_model.h"
#include "support/recorder.h"
#include "support/two_pi.h"

namespace torvane {
namespace {

using test::Messages;
using test::TwoPi;

/// A meter with updates at exact binary times, served by hand.
class MeterTest : public testing::Test {
 protected:
  MeterTest() { Meter.SetTSample(T); }

  /// `count` updates with x and y as functions of time.
  void Update(int count, const std::function<double(double)>& x,
              const std::function<double(double)>& y) {
    for (int i = 0; i < count; ++i) {
      const double t = Model.Time();
      X.Value = x(t);
      Y.Value = y(t);
      Meter.Service(t);
      Model.Bench().AdvanceTime(T);
    }
  }
  void Update(int count, double x, double y = 0.0) {
    Update(
        count, [=](double) { return x; }, [=](double) { return y; });
  }

  static constexpr double T = 1.0 / 4096.0;
  static constexpr int OnePeriod = 2048;  ///< updates in a period of the default 2 Hz

  test::Recorder Reports;
  test::BareModel Model{T};
  Variable Hidden{Model.Bench(), "Hidden", "", {}, Visibility::Internal};
  Variable X{Model.Bench(), "x", "volts"};
  Variable Y{Model.Bench(), "y", "", {.Multiplier = 2.0}};
  ZelMeter Meter{Model.Bench(), "Meter"};
};

TEST_F(MeterTest, AsksForATimeEveryPeriodAndSkipsEarlierCalls) {
  Model.Bench().AdvanceTime(1.0);
  ZelMeter meter(Model.Bench(), "Late");
  meter.SetTSample(0.125);
  for (const auto& [served, next] :
       {std::pair{0.5, 1.0}, {1.0, 1.125}, {1.0625, 1.125}, {1.2, 1.25}, {1.25, 1.375}}) {
    EXPECT_TRUE(meter.Service(served));
    EXPECT_EQ(meter.NextTime(), next);
  }
}

TEST_F(MeterTest, SmoothsRmsAndAverage) {
  // After k updates of a constant x the mean is x (1 - a^k), the mean square x^2 (1 - a^k). Some
  // rounding for each of the thousand updates.
  const double rest = std::pow(std::exp(-TwoPi * 24.5 * T), 1000);
  Update(1000, -3.0);
  EXPECT_NEAR(Meter.Value(), 3.0 * std::sqrt(1.0 - rest), 1e-12);
  Meter.SetKind(MeterKind::Average);
  Update(1000, -3.0);
  EXPECT_NEAR(Meter.Value(), -3.0 * (1.0 - rest), 1e-12);
  EXPECT_EQ(Meter.AngleDeg(), 0.0);

  // The pole follows its frequency and the period at once.
  Meter.SetLpf(1000.0);
  Meter.SetTSample(2 * T);
  const double a = std::exp(-TwoPi * 1000.0 * 2 * T);
  const double mean = Meter.Value();
  Update(1, 5.0);
  EXPECT_NEAR(Meter.Value(), a * mean + (1.0 - a) * 5.0, 1e-14);
}

TEST_F(MeterTest, CorrelatesWithASecondSignal) {
  Meter.SetCorrVar("y");
  Meter.SetKind(MeterKind::Correlation);
  Update(10, 3.0, 0.0);
  EXPECT_EQ(Meter.Value(), 0.0);
  // Every instrument sees y doubled: the gain of 3 against 12. P and Q are exact multiples of 9.
  Update(1, 3.0, 6.0);
  EXPECT_NEAR(Meter.Value(), 0.25, 1e-15);
}

TEST_F(MeterTest, HasTheUnitOfWhatItReads) {
  Variable other(Model.Bench(), "z", "amps");
  using enum MeterKind;
  const struct {
    MeterKind Kind;
    bool Transfer, Db;
    const char *Of, *Against, *Unit;
  } cases[] = {{Rms, true, true, "x", "y", "volts"},
               {Average, false, false, "y", "x", "(Unitless)"},
               {Harmonic, false, true, "x", "y", "volts"},
               {Harmonic, true, false, "x", "y", "volts"},
               {Correlation, true, true, "x", "z", "volts/amps"},
               {Correlation, true, true, "y", "z", "1/amps"}};
  for (const auto& [kind, transfer, db, of, against, unit] : cases) {
    Meter.SetKind(kind);
    Meter.SetHarmonicXfer(transfer);
    Meter.SetUseDb(db);
    EXPECT_TRUE(Meter.SetVariable(of) && Meter.SetCorrVar(against));
    EXPECT_TRUE(Meter.SetHarmonicXferVar(against));
    EXPECT_EQ(Meter.UnitText(), unit) << of << against;
  }
  EXPECT_FALSE(Meter.SetVariable("Hidden") || Meter.SetCorrVar("?") ||
               Meter.SetHarmonicXferVar("?"));
  EXPECT_EQ(Reports.Take(), (Messages{"Error: Error in Meter:  Variable not found.",
                                      "Error: Error in Meter:  CorrVar not found.",
                                      "Error: Error in Meter:  Harm Xfer Var not found"}));
}

TEST_F(MeterTest, ReadsAHarmonicAfterOneWholeWindow) {
  Meter.SetKind(MeterKind::Harmonic);
  Meter.SetTWindow(0.01);
  for (const double lead : {0.0, 60.0, 135.0, -100.0}) {
    const auto sine = [&](double t) { return 5.0 * std::sin(TwoPi * 2.0 * t + lead / 57.29578); };
    // The first update opens the window; another harmonic and a constant do not disturb.
    const auto x = [&](double t) { return sine(t) + 4.0 * std::cos(TwoPi * 6.0 * t) + 1.0; };
    Update(2 * OnePeriod + 1, x, x);
    // The truncated 2 pi leaves a period open by 5e-8 of a radian.
    EXPECT_NEAR(Meter.Value(), 5.0, 2e-6) << lead;
    EXPECT_NEAR(Meter.AngleDeg(), lead > 90.0 ? lead - 360.0 : lead, 2e-5) << lead;
  }
  // Window times the frequency, rounded up: 1.2 s is three periods.
  Meter.SetTWindow(1.2);
  Update(3 * OnePeriod, 0.0);
  EXPECT_NE(Meter.Value(), 0.0);
  Update(1, 0.0);
  EXPECT_EQ(Meter.Value(), 0.0);
}

TEST_F(MeterTest, MeasuresAHarmonicTransfer) {
  const auto y = [](double t) { return std::sin(TwoPi * 2.0 * t + 1.0); };
  const auto x = [](double t) { return 20.0 * std::sin(TwoPi * 2.0 * t + 0.5); };
  Meter.SetKind(MeterKind::Harmonic);
  Meter.SetHarmonicXfer(true);
  ASSERT_TRUE(Meter.SetHarmonicXferVar("y"));
  Update(OnePeriod + 1, x, y);
  // As above, the open period of the truncated 2 pi.
  EXPECT_NEAR(Meter.Value(), 10.0, 1e-5);
  EXPECT_NEAR(Meter.AngleDeg(), -0.5 * 57.29578, 1e-4);
  Meter.SetUseDb(true);
  Update(OnePeriod, x, y);
  EXPECT_NEAR(Meter.Value(), 20.0, 1e-5);

  // Without a reference the ratio stays; without a signal there is no gain.
  Update(2 * OnePeriod, x, [](double) { return 0.0; });
  EXPECT_NEAR(Meter.Value(), 20.0, 1e-5);
  Update(
      2 * OnePeriod, [](double) { return 0.0; }, y);
  EXPECT_EQ(Meter.Value(), -200.0);
}

// So small a value at a quarter period that its cosine part, 1e-8 of it, is no longer a number but
// 0, while the sine part is one.
TEST_F(MeterTest, KeepsItsAnglesOfSumsWithoutACosine) {
  const auto quarter = [this] {
    return [at = Model.Time() + 511 * T](double t) { return t == at ? -1e-315 : 0.0; };
  };
  Meter.SetKind(MeterKind::Harmonic);
  Update(OnePeriod + 1, 0.0);
  EXPECT_NEAR(Meter.AngleDeg(), 90.0, 1e-12);
  Update(OnePeriod, quarter(), quarter());
  EXPECT_NEAR(Meter.AngleDeg(), -90.0, 1e-12);
  // As a reference the same sums stand at +90 degrees.
  Meter.SetHarmonicXfer(true);
  Meter.SetHarmonicXferVar("y");
  Update(
      OnePeriod + 1, [](double t) { return std::sin(TwoPi * 2.0 * t); }, quarter());
  EXPECT_NEAR(Meter.AngleDeg(), -90.0, 1e-4);
}

TEST_F(MeterTest, TakesTheMeanOffWithAcCoupling) {
  Meter.SetAcCoupled(true);
  Meter.SetAcHpf(2.0);
  Update(1, 5.0);
  // Starting at the signal makes no step.
  EXPECT_EQ(Meter.Value(), 0.0);
  // At the corner the one-pole high-pass b (1 - z^-1) / (1 - b z^-1) passes a sine as follows; the
  // start has decayed to e^-100 and the open period counts as in the other harmonic readings.
  const double b = std::exp(-TwoPi * 2.0 * T);
  const double w = TwoPi * 2.0 * T;
  const double gain = b * 2.0 * std::sin(w / 2.0) / std::sqrt(1.0 - 2.0 * b * std::cos(w) + b * b);
  Meter.SetKind(MeterKind::Harmonic);
  const auto x = [](double t) { return 5.0 + std::sin(TwoPi * 2.0 * t); };
  Update(16 * OnePeriod + 1, x, x);
  EXPECT_NEAR(Meter.Value(), gain, 1e-6);

  // Both signals of a transfer pass the same filter.
  Meter.SetHarmonicXfer(true);
  Meter.SetHarmonicXferVar("y");
  Update(16 * OnePeriod + 1, x, x);
  EXPECT_NEAR(Meter.Value(), 0.5, 1e-9);
  EXPECT_NEAR(Meter.AngleDeg(), 0.0, 1e-6);
}

TEST_F(MeterTest, ExcitesAMultipleOfTheHarmonic) {
  EXPECT_EQ(Model.Bench().MeterExcitation(Model.Bench().Time()), 0.0);
  Meter.SetUseExcitation(true);
  Meter.SetExcitationMag(3.0);
  Meter.SetExcitationOff(1.0);
  Meter.SetExcitationMult(0.5);
  Meter.SetHarmonicFreq(10.0);
  EXPECT_EQ(Meter.Excitation(0.3), 3.0 * std::sin(TwoPi * 10.0 * 0.5 * 0.3) + 1.0);
  EXPECT_EQ(Model.Bench().MeterExcitation(Model.Bench().Time()), 1.0);
}

TEST_F(MeterTest, RecoversFromALoopThatDiverged) {
  for (const double huge : {1e200, HUGE_VAL, std::nan("")}) {
    for (const MeterKind kind : {MeterKind::Rms, MeterKind::Average, MeterKind::Harmonic}) {
      Meter.SetKind(kind);
      Meter.SetAcCoupled(kind == MeterKind::Harmonic);
      Update(3, huge, huge);
      Update(4 * OnePeriod, 0.0);
      EXPECT_TRUE(std::isfinite(Meter.Value())) << huge;
    }
    // A reference that overflowed is no matter of another kind.
    Meter.SetHarmonicXfer(true);
    Update(3, 1.0, huge);
    Meter.SetAcCoupled(false);
    Meter.SetKind(MeterKind::Rms);
    Update(OnePeriod, 1.0);
    EXPECT_NEAR(Meter.Value(), 1.0, 1e-12);  // 76 time constants of the low-pass
  }
}

TEST(Meters, HaveNamesOfTheirOwn) {
  test::BareModel model;
  {
    // A meter that is gone makes room, and a bench without signals is measured as 0.
    const ZelMeter passing(model.Bench(), "Meter");
  }
  EXPECT_EQ(AddMeter(model, "Meter")->Name(), "Meter");
  EXPECT_EQ(AddMeter(model, "Meter")->Name(), "Meter #2");
  model.Bench().ServiceInstruments();
}

}  // namespace
}  // namespace torvane
