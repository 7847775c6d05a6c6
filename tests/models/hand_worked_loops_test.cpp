#include <cmath>

#include "models/loop.h"
#include "support/two_pi.h"

// The loops of which there are no reference trajectories: by hand, or against one of which there
// are.

namespace torvane {
namespace {

using test::Loop;
using test::RpmToRad;
using test::SamplePeriod;
using test::TwoPi;

const std::string Disturbance = "7-1 Dist. Response of PI Controller";
const std::string MotorFeedback = "13-1 Motor Feedback";

void ExpectRelative(double actual, double expected) {
  EXPECT_NEAR(actual, expected, 1e-12 * std::abs(expected));
}

/// The signals that sampled velocity loops share, while a square wave moves them into their limits.
std::vector<double> Trajectory(const std::string& name, const std::string& generator,
                               const std::string& lines) {
  Loop loop(name, {{"TCalc", "30"}, {"CLoop", "600"}, {"KT", "1.3"}, {"J", "0.003"}});
  loop.Set({{"KVP", "0.9"}, {"KVI", "150"}, {"TSample", "0.0003"}});
  const std::string wave = "WaveGen," + generator + ",";
  loop.Load(wave + "Waveform,1\n" + wave + "FreqHz,30\n" + wave + "Amplitude,150\n" + lines);
  std::vector<double> values;
  while (loop.Model().Time() < 0.05) {
    loop.Run(loop.Model().Time() + 0.001);
    for (const char* signal : {"vC", "vM", "vE", "vF", "pM", "pF", "iC", "iF", "tM"}) {
      values.push_back(loop[signal]);
    }
  }
  return values;
}

TEST(HandWorkedLoops, WithoutWhatTheyAddSampledLoopsAreThatOfDigitalPi) {
  const auto digitalPi = [](const std::string& lines) {
    return Trajectory("4-1 Digital PI Controller", "MainWaveGen",
                      "Constant,Feedback,Encoder\nConstant,a (Inv Trap),0\n" + lines);
  };
  const auto disturbance = [](const std::string& lines) {
    return Trajectory(Disturbance, "Command Source",
                      "WaveGen,Disturbance Source,Amplitude,0\n" + lines);
  };
  const std::string coarse = "Constant,Use Res?,Yes\nConstant,Res,500\n";
  EXPECT_EQ(disturbance(""), digitalPi(""));
  EXPECT_EQ(disturbance(coarse), digitalPi(coarse));
  EXPECT_EQ(Trajectory(MotorFeedback, "MainWaveGen", "Constant,Res,2000\n"), digitalPi(coarse));
}

TEST(HandWorkedLoops, BodeTypeSendsTheExcitationToCommandOrDisturbance) {
  Loop loop(Disturbance);
  loop.Generate(60.0, 0);
  loop.Generate(0.5, 1);
  loop.Bench().AdvanceTime(1.0);
  loop.Load("Xfer,MainXFer,ExAmplitude,0\nXfer,MainXFer,ExOffset,3\n");
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

TEST(HandWorkedLoops, DisturbanceIsDecoupledThroughItsFilter) {
  Loop loop(Disturbance,
            {{"KVP", "0"}, {"KDD", "1.5"}, {"DD LPF", "50"}, {"KT-Est", "2"}, {"KT", "3"}});
  loop.Generate(4.0, 1);
  const double pole = std::exp(-TwoPi * 50.0 * SamplePeriod);
  double rest = 1.0;
  for (int k = 0; k < 2; ++k) {
    loop.Sample(k * SamplePeriod);
    rest *= pole;
    ExpectRelative(loop["iC"], -1.5 * (1.0 - rest) * 4.0 / 2.0);
  }
  loop["LowPass2 #1"] = 2.0;
  loop.Bench().UpdateTimeDriven(-1.0);
  loop.Model().Derivatives(SamplePeriod);
  EXPECT_EQ(loop["tE"], 6.0);
  EXPECT_EQ(loop["tM"], 10.0);
  EXPECT_EQ(loop.Slope("vM"), 10.0 / 0.002);
}

TEST(HandWorkedLoops, SensorErrorGoesRoundWithTheMotor) {
  Loop loop(MotorFeedback, {{"Pos Err", "30"}, {"Err Harm", "3"}, {"Res", "1e10"}});
  double t = 0.0;
  for (const double position : {0.4, 1.0, -2.0}) {
    loop["pM"] = position;
    loop.Generate(60.0);
    loop.Sample(t);
    t += SamplePeriod;
    // Half a degree; pi is taken to eight digits.
    const double error = 0.5 * M_PI / 180.0 * std::sin(3.0 * position);
    EXPECT_NEAR(loop["pE"], error, 1e-9);
    EXPECT_NEAR(loop["pF"], position + error, 2e-9);  // the finest count is 6e-10 rad
    ExpectRelative(loop["pC"], 60.0 * RpmToRad * t);
  }
}

TEST(HandWorkedLoops, SwitchesChooseTheFeedbackFilters) {
  const double b1 = 1.0 - std::exp(-TwoPi * 200.0 * SamplePeriod);
  const double b2 = 1.0 - std::exp(-TwoPi * 400.0 * SamplePeriod);
  for (int choice = 0; choice < 8; ++choice) {
    const auto yes = [&](int bit) { return (choice & bit) != 0; };
    const auto text = [&](int bit) { return yes(bit) ? "Yes" : "No"; };
    Loop loop(MotorFeedback, {{"Use LPF1?", text(1)},
                              {"Use LPF2?", text(2)},
                              {"Use FbFilt?", text(4)},
                              {"LPF1", "200"},
                              {"LPF2", "400"},
                              {"KVP", "1"},
                              {"KVI", "0"}});
    loop.Model().Derivatives(-1.0);
    loop["pM"] = 0.002;
    loop.Sample(0.0);
    EXPECT_GT(loop["vF"], 0.0);
    const double filtered = loop["vF"] * (yes(1) ? b1 : 1.0) * (yes(2) ? b2 : 1.0);
    ExpectRelative(loop["vF-Filt"], filtered);
    ExpectRelative(loop["iC"], -(yes(4) ? filtered : loop["vF"]));
  }
}

// Command 0. The integral of the error, -5 or 5 after the limit, is pending until the step's end.
TEST(HandWorkedLoops, SeminarPiLimitsItsCurrentAndItsIntegral) {
  struct Case {
    double Velocity, Integral;
    double Current, Pending;
  };
  for (const Case& c : {Case{2.0, 0.25, 0.5 * (40.0 * 0.25 - 2.0), 0.25},  // within the limit
                        Case{0.0, 1.1, 20.0, 1.1},  // 22: past it, not past 24
                        Case{2.0, 2.0, 20.0, (24.0 / 0.5 + 2.0) / 40.0},
                        Case{-2.0, -2.0, -20.0, -(24.0 / 0.5 + 2.0) / 40.0}}) {
    Loop loop("Seminar--Analog PI Controller",
              {{"KVP", "0.5"}, {"KVI", "40"}, {"KT", "3"}, {"J", "0.5"}, {"CLoop", "500"}});
    loop.Generate(0.0);
    loop["vM"] = c.Velocity;
    loop["vEInt"] = c.Integral;
    loop["LowPass2 #1"] = 2.0;
    loop.Bench().UpdateTimeDriven(-1.0);
    loop.Model().Derivatives(0.0);
    EXPECT_EQ(loop["vF"], c.Velocity);
    EXPECT_EQ(loop["vE"], -c.Velocity);
    EXPECT_EQ(loop.Slope("vEInt"), -c.Velocity);
    EXPECT_EQ(loop.Slope("pM"), c.Velocity);
    EXPECT_EQ(loop["iC"], c.Current);
    EXPECT_EQ(loop["iF"], 2.0);
    EXPECT_EQ(loop["tM"], 6.0);
    EXPECT_EQ(loop.Slope("vM"), 12.0);
    loop.Bench().UpdateTimeDriven(-1.0);
    const double w = 2.0 * 3.1415926 * 500.0;
    ExpectRelative(loop.Slope("LowPass2 #2"), w * w * (c.Current - 2.0));
    auto& integral = dynamic_cast<StateVariable&>(*loop.Bench().FindVar("vEInt"));
    integral.Numbers.TakePending();
    ExpectRelative(integral.Value, c.Pending);
  }
}

}  // namespace
}  // namespace torvane
