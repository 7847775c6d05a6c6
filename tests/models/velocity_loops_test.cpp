#include <gtest/gtest.h>

#include <cmath>

#include "models/loop.h"

// The sampled velocity loops, sample by sample.

namespace torvane {
namespace {

using test::Loop;
using test::Settings;

constexpr double Period = 0.00025;
constexpr double RpmToRad = 0.10471975333333333;
constexpr double TwoPi = 6.2831852;
// Sums of a few products: some units of rounding.
constexpr double Rounding = 1e-12;

void ExpectRelative(double actual, double expected) {
  EXPECT_NEAR(actual, expected, Rounding * std::abs(expected));
}

const std::string PiPlus = "2-1 PI+ Controller";
const std::string DigitalPI = "4-1 Digital PI Controller";
const std::string DigitalPID = "6-1 PID Controller";
const std::string Disturbance = "7-1 Dist. Response of PI Controller";
const std::string FeedForward = "8-1 Feed-forward";
const std::string MotorFeedback = "13-1 Motor Feedback";
const std::string Resonance = "15-1 Resonance";
const std::string Cascade = "16-1 Cascade Position Loop";
const std::string PositionPid = "16-2 PID Position Loop";

/// What drives the current loop. At rest it shows in the slope of the loop's rate; time -1 asks for
/// no sample.
double CurrentLoopInput(Loop& loop) {
  loop.Bench().UpdateTimeDriven(-1.0);
  return loop.Slope("LowPass2 #2") / std::pow(2.0 * 3.1415926 * 800.0, 2);
}

TEST(VelocityLoops, CalculationTimeDelaysTheCurrentCommand) {
  for (const std::string& name : {DigitalPI, DigitalPID, Disturbance, FeedForward, MotorFeedback,
                                  Resonance, Cascade, PositionPid}) {
    for (const double tCalc : {0.0, 50.0, 95.0}) {
      SCOPED_TRACE(name + " " + std::to_string(tCalc));
      constexpr double t = 0.5;
      Loop loop(name, {{"TCalc", std::to_string(tCalc)}});
      loop.Generate(60.0);
      loop.Sample(t);
      const double current = loop["iC"];
      ASSERT_NE(current, 0.0);
      if (tCalc > 0.0) {
        EXPECT_EQ(CurrentLoopInput(loop), 0.0);
        loop.Model().Derivatives(t + (0.01 * tCalc - 0.001) * Period);
        EXPECT_EQ(CurrentLoopInput(loop), 0.0);
        loop.Model().Derivatives(t + (0.01 * tCalc + 0.001) * Period);
      }
      ExpectRelative(CurrentLoopInput(loop), current);
    }
  }
  Loop undelayed(PiPlus);
  undelayed.Generate(60.0);
  undelayed.Sample(0.5);
  ASSERT_NE(undelayed["iC"], 0.0);
  ExpectRelative(CurrentLoopInput(undelayed), undelayed["iC"]);
}

TEST(VelocityLoops, EncoderTruncatesTowardsMinusInfinity) {
  // 400 counts a revolution, as 100 lines or as counts.
  constexpr double Count = 1.0 / (4.0 * 100.0 * 0.15915494580678602);
  struct Case {
    std::string Model;
    Settings Set;
  };
  for (const Case& c : {Case{DigitalPI, {{"Use Res?", "Yes"}, {"Feedback", "Encoder"}}},
                        Case{DigitalPID, {{"Use Res?", "Yes"}, {"Feedback", "Encoder"}}},
                        Case{Disturbance, {{"Use Res?", "Yes"}}}, Case{MotorFeedback, {}},
                        Case{Cascade, {}}, Case{PositionPid, {}}}) {
    SCOPED_TRACE(c.Model);
    Loop loop(c.Model, c.Set);
    loop.Set({{"Res", c.Model == MotorFeedback ? "400" : "100"}});
    double t = 0.0;
    double before = 0.0;
    // Slower than a count a sample, the velocity is 0 or one count.
    for (const double counts : {-0.2, 0.4, 0.8, 1.2, 1.6, 2.2, 2.7, 7.9}) {
      loop["pM"] = counts * Count;
      loop.Sample(t);
      t += 0.01;
      EXPECT_NEAR(loop["pF"] / Count, std::floor(counts), Rounding) << counts;
      EXPECT_NEAR(loop["vF"] * Period / Count, std::floor(counts) - before, 8.0 * Rounding);
      before = std::floor(counts);
    }
  }
  for (const std::string& name : {DigitalPI, DigitalPID, Disturbance}) {
    Loop exact(name);
    exact["pM"] = -0.2 * Count;
    exact.Sample(0.0);
    EXPECT_EQ(exact["pF"], -0.2 * Count) << name;
  }
}

TEST(VelocityLoops, FeedbackIsTachOrDifference) {
  for (const std::string& name : {DigitalPI, DigitalPID, FeedForward}) {
    SCOPED_TRACE(name);
    Loop loop(name);
    loop["vM"] = 5.0;
    loop["pM"] = 1.0;
    loop.Sample(0.0);
    EXPECT_EQ(loop["vF"], 5.0);
    // The position was kept under the tach as well.
    loop.Set({{"Feedback", "Encoder"}});
    loop["pM"] = 1.5;
    loop.Sample(0.01);
    ExpectRelative(loop["vF"], 0.5 / Period);
    if (name != DigitalPI) continue;
    // Inverse trapezoid: (1 + a) d - a vF of before.
    loop.Set({{"a (Inv Trap)", "0.25"}});
    loop["pM"] = 1.75;
    loop.Sample(0.02);
    ExpectRelative(loop["vF"], (1.25 * 0.25 - 0.25 * 0.5) / Period);
  }
}

TEST(VelocityLoops, SignalsThatNobodyWritesStayAsTheyAre) {
  for (const auto& [name, signals] : {std::pair{PiPlus, std::vector<std::string>{"vE", "pF"}},
                                      std::pair{PositionPid, std::vector<std::string>{"vE"}}}) {
    Loop loop(name);
    for (const std::string& signal : signals) loop[signal] = 123.25;
    loop.Generate(60.0);
    loop.Run(0.01);
    EXPECT_NE(loop["vM"], 0.0);
    for (const std::string& signal : signals) EXPECT_EQ(loop[signal], 123.25) << name << signal;
  }
}

// c1 and c2 of a sampled pair of frequency hz and damping zeta < 1.
struct Pair {
  Pair(double hz, double zeta) {
    const double w = TwoPi * hz * Period;
    C1 = -2.0 * std::exp(-zeta * w) * std::cos(w * std::sqrt(1.0 - zeta * zeta));
    C2 = std::exp(-2.0 * zeta * w);
  }
  double Sum() const { return 1.0 + C1 + C2; }
  double C1;
  double C2;
};

TEST(VelocityLoops, FeedForwardIsScaledByTheEstimates) {
  const Settings set{
      {"KVP", "0"}, {"KVF", "2"}, {"KT-Est", "4"}, {"J-Est", "1"}, {"CLoop-Est", "500"}};
  Loop loop(FeedForward, set);
  const double acceleration = RpmToRad / Period;
  const double scale = 0.01 * 2.0 * 1.0 / 4.0;
  loop.Generate(1.0);
  loop.Sample(0.0);
  ExpectRelative(loop["iC"], scale * acceleration);
  // The inverse of the power converter has run all the time: it goes on from that sample.
  loop.Set({{"Use Inv. PC", "Yes"}});
  loop.Sample(Period);
  const Pair poles(2000.0, 0.707);
  const Pair zeros(500.0, 0.707);
  const double gain = poles.Sum() / zeros.Sum();
  const double first = gain * acceleration;
  ExpectRelative(loop["iC"], scale * (gain * zeros.C1 * acceleration - poles.C1 * first));
  // The plant has its own constants.
  loop.Set({{"KT", "3"}, {"J", "0.5"}});
  loop["LowPass2 #1"] = 2.0;
  loop.Bench().UpdateTimeDriven(-1.0);
  loop.Model().Derivatives(0.0);
  EXPECT_EQ(loop["tM"], 6.0);
  EXPECT_EQ(loop.Slope("vM"), 12.0);
}

TEST(VelocityLoops, ResonanceMixesMotorAndLoadVelocity) {
  for (const double mix : {0.0, 1.0, 0.25}) {
    Loop loop(Resonance, {{"VMix", std::to_string(mix)}});
    const double m = loop["pM"] = 0.5;
    const double l = loop["pL"] = 0.125;
    // The class may remember earlier positions: this sample makes them known.
    loop.Sample(0.0);
    loop["pM"] = m + 0.25;
    loop["pL"] = l + 1.0;
    loop.Sample(Period);
    ExpectRelative(loop["vMF"], 0.25 / Period);
    ExpectRelative(loop["vLF"], 1.0 / Period);
    ExpectRelative(loop["vF"], (mix * 0.25 + (1.0 - mix) * 1.0) / Period);
  }
}

// Without velocity gain the coupling term alone passes the filters, whose first output from rest is
// b0 of its input. The sample period leaves their coefficients as they are.
TEST(VelocityLoops, ResonanceFiltersTheCouplingTerm) {
  const Settings set{{"KVP", "0"}, {"KCVA", "2"}, {"LPF", "300"}, {"Notch", "150"}};
  const auto firstCurrent = [&](const Settings& more) {
    { Loop(Resonance).Sample(0.0); }  // both previous positions: 0
    Loop loop(Resonance, set);
    loop.Set(more);
    loop.Model().Derivatives(-1.0);
    loop["pM"] = 0.5;
    loop["pL"] = 0.25;
    loop.Sample(0.0);
    return loop["iC"];
  };
  const double lowPass = Pair(300.0, 0.707).Sum();
  const double notch = Pair(150.0, 0.4).Sum() / (2.0 - 2.0 * std::cos(TwoPi * 150.0 * Period));
  ExpectRelative(firstCurrent({}), -0.25 / Period * 2.0 * lowPass);
  // b0 is a small difference of numbers near 1.
  EXPECT_NEAR(firstCurrent({{"Use Notch?", "Yes"}}) / (-0.5 / Period * lowPass * notch), 1.0,
              1e-10);
  ExpectRelative(firstCurrent({{"TSample", "0.001"}}), -0.25 / 0.001 * 2.0 * lowPass);
}

TEST(VelocityLoops, BodeTypeSendsTheExcitationToCommandOrDisturbance) {
  Loop loop(Disturbance);
  loop.Generate(60.0, 0);
  loop.Generate(0.5, 1);
  loop.Bench().AdvanceTime(1.0);
  loop.Fft().SetAmplitude(0.0);
  loop.Fft().SetOffset(3.0);
  const auto expect = [&](double command, double torque) {
    loop.Model().Derivatives(0.0);
    EXPECT_EQ(loop["vC"], command * RpmToRad);
    EXPECT_EQ(loop["tD"], torque);
    EXPECT_EQ(loop["tM"], loop["tE"] + torque);
  };
  expect(60.0, 0.5);
  loop.Fft().Run();
  expect(60.0, 3.0);
  loop.Set({{"Bode type", "Cmd"}});
  expect(3.0, 0.5);
  loop.Fft().Halt();
  expect(60.0, 0.5);
}

TEST(VelocityLoops, DisturbanceIsDecoupledThroughItsFilter) {
  Loop loop(Disturbance,
            {{"KVP", "0"}, {"KDD", "1.5"}, {"DD LPF", "50"}, {"KT-Est", "2"}, {"KT", "3"}});
  loop.Generate(4.0, 1);
  const double pole = std::exp(-TwoPi * 50.0 * Period);
  loop.Sample(0.0);
  EXPECT_NEAR(loop["iC"], -1.5 * (1.0 - pole) * 4.0 / 2.0, 4.0 * Rounding);
  loop.Sample(Period);
  EXPECT_NEAR(loop["iC"], -1.5 * (1.0 - pole * pole) * 4.0 / 2.0, 4.0 * Rounding);
  loop["LowPass2 #1"] = 2.0;
  loop.Bench().UpdateTimeDriven(-1.0);
  loop.Model().Derivatives(Period);
  EXPECT_EQ(loop["tE"], 6.0);
  EXPECT_EQ(loop["tM"], 10.0);
}

TEST(VelocityLoops, SensorErrorGoesRoundWithTheMotor) {
  Loop loop(MotorFeedback, {{"Pos Err", "30"}, {"Err Harm", "3"}, {"Res", "1e10"}});
  double command = 0.0;
  double t = 0.0;
  for (const double position : {0.4, 1.0, -2.0}) {
    loop["pM"] = position;
    loop.Generate(60.0);
    loop.Sample(t);
    t += Period;
    command += 60.0 * RpmToRad * Period;
    // Half a degree; pi is taken to eight digits.
    const double error = 0.5 * M_PI / 180.0 * std::sin(3.0 * position);
    EXPECT_NEAR(loop["pE"], error, 1e-9);
    // The finest count is 6e-10 rad.
    EXPECT_NEAR(loop["pF"], position + error, 2e-9);
    EXPECT_EQ(loop["pC"], command);
  }
}

TEST(VelocityLoops, SwitchesChooseTheFeedbackFilters) {
  const double b1 = 1.0 - std::exp(-TwoPi * 200.0 * Period);
  const double b2 = 1.0 - std::exp(-TwoPi * 400.0 * Period);
  for (const bool use1 : {false, true}) {
    for (const bool use2 : {false, true}) {
      for (const bool fed : {false, true}) {
        const auto choice = [](bool yes) { return yes ? "Yes" : "No"; };
        { Loop(MotorFeedback).Sample(0.0); }  // the previous position: 0
        Loop loop(MotorFeedback, {{"Use LPF1?", choice(use1)},
                                  {"Use LPF2?", choice(use2)},
                                  {"Use FbFilt?", choice(fed)},
                                  {"LPF1", "200"},
                                  {"LPF2", "400"},
                                  {"KVP", "1"},
                                  {"KVI", "0"}});
        loop.Model().Derivatives(-1.0);
        loop["pM"] = 0.002;
        loop.Sample(0.0);
        EXPECT_GT(loop["vF"], 0.0);
        const double filtered = loop["vF"] * (use1 ? b1 : 1.0) * (use2 ? b2 : 1.0);
        ExpectRelative(loop["vF-Filt"], filtered);
        ExpectRelative(loop["iC"], -(fed ? filtered : loop["vF"]));
      }
    }
  }
}

}  // namespace
}  // namespace torvane
