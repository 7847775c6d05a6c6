#include "linear/linearize.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "core/constant.h"
#include "instruments/generator/wave.h"
#include "linear/linear_fault.h"
#include "linear/theory.h"
#include "models/catalogue.h"

namespace torvane::test {
namespace {

using Complex = std::complex<double>;
using std::numbers::pi;

std::unique_ptr<ZelModel> MakeModel(const char* name) {
  return Catalogue().Load(name);
}

ZelWave& Generator(ZelModel& model) {
  return dynamic_cast<ZelWave&>(*model.Bench().Instruments(InstrumentKind::WaveGenerator).front());
}

Complex LowPass(Complex s, double hz, double zeta) {
  const double w = 2.0 * pi * hz;
  return w * w / (s * s + 2.0 * zeta * w * s + w * w);
}

// 3-1's open loop at its defaults.
Complex Loop31(Complex s) {
  return 0.6 * (1.0 + 100.0 / s) * LowPass(s, 800, 0.707) * 500.0 / s * LowPass(s, 350, 0.707);
}

// The engine takes pi with eight digits.
constexpr double Near = 1e-6;

TEST(Linearize, ContinuousLoopIsItsEquations) {
  for (const double offset : {0.0, 20.0}) {
    const auto model = MakeModel("3-1 PI Controller");
    Generator(*model).SetOffset(offset);
    const LinearModel linear = Linearize(*model);
    EXPECT_TRUE(linear.Notes.empty());
    const TheoryPair closed(linear, "Command", "Feedback");
    const TheoryPair open(linear, "Error", "Feedback");
    for (const double hz : {0.1, 5.0, 50.0, 240.0, 3000.0}) {
      const Complex loop = Loop31({0.0, 2.0 * pi * hz});
      const auto check = [hz](const TheoryPair& pair, Complex truth) {
        const ResponsePoint found = pair.At(std::array{hz}, ReadSignals::EveryStep).front();
        EXPECT_NEAR(found.Gain, 20.0 * std::log10(std::abs(truth)), 1e-5) << hz;
        EXPECT_NEAR(std::remainder(found.Phase - std::arg(truth) * 180.0 / pi, 360.0), 0.0, 1e-4)
            << hz;
      };
      check(open, loop);
      check(closed, loop / (1.0 + loop));
    }
    for (const Root& pole : Poles(closed.System())) {
      EXPECT_NEAR(std::abs(Loop31(pole.Value) + 1.0), 0.0, 1e-5) << pole.Value;
    }
    std::vector<Root> poles = Poles(open.System());
    std::vector<Root> zeros = Zeros(open.System(), 0);
    Cancel(poles, zeros);
    ASSERT_EQ(poles.size(), 6u);
    EXPECT_EQ(poles[1].Hz, 0.0);
    EXPECT_NEAR(poles[2].Hz, 350.0, 350.0 * Near);
    EXPECT_NEAR(poles[4].Damping, 0.707, Near);
    ASSERT_EQ(zeros.size(), 1u);
    EXPECT_NEAR(zeros[0].Value.real(), -100.0, Near);
  }
}

// Between any two signals the response, the state space and the poles and zeros are three ways to
// the same figures.
TEST(Linearize, StateSpaceAndRootsGiveTheResponse) {
  int pairs = 0;
  const auto check = [&](const TheoryPair& pair, const std::string& where) {
    const LinearSystem system = pair.System();
    std::vector<Root> poles = Poles(system);
    std::vector<Root> zeros = Zeros(system, 0);
    Cancel(poles, zeros);
    Complex scale;
    for (const double hz : {400.0, 3.0, 20.0, 90.0}) {
      const ResponsePoint point = pair.At(std::array{hz}, ReadSignals::AtItsSamples).front();
      const Complex truth = std::polar(std::pow(10.0, point.Gain / 20.0), point.Phase * pi / 180.0);
      const Complex s(0.0, 2.0 * pi * hz);
      const Complex at = system.Ts > 0.0 ? std::exp(s * system.Ts) : s;
      Complex product = 1.0;
      for (const Root& zero : zeros) product *= at - zero.Value;
      for (const Root& pole : poles) product /= at - pole.Value;
      if (scale == 0.0) scale = truth / product;
      EXPECT_LT(std::abs(system.ResponseAt(hz)[0] / truth - 1.0), 1e-5) << where << hz;
      EXPECT_LT(std::abs(scale * product / truth - 1.0), 1e-3) << where << hz;
    }
    ++pairs;
  };
  for (const std::string& name : ModelNames()) {
    if (name.starts_with("5-")) continue;  // nothing excites their command
    const LinearModel linear = Linearize(*MakeModel(name.c_str()));
    for (const std::string& input : linear.Signals()) {
      for (const std::string& output : linear.Signals()) {
        try {
          check({linear, input, output}, name + ": " + input + " to " + output + " at ");
        } catch (const LinearFault&) {
          // One is not reached, or follows sooner.
        }
      }
    }
  }
  EXPECT_GT(pairs, 600);
}

// The pole pair of a filter that is matched to a frequency keeps it in the z plane; and of each
// filter only its own poles lie between its signals.
TEST(Linearize, FiltersHaveTheirPoles) {
  for (const char* name : {"9-1 Analog Filters", "9-2 Digital Filters"}) {
    const auto model = MakeModel(name);
    const LinearModel linear = Linearize(*model);
    std::vector<Root> poles = Poles(TheoryPair(linear, "vC", "vLP2").System());
    std::erase_if(poles, [](const Root& pole) { return std::isinf(pole.Hz); });
    const auto constant = [&](const char* wanted) {
      return model->Bench().FindConst(wanted)->Value();
    };
    ASSERT_EQ(poles.size(), 2u) << name;
    EXPECT_NEAR(poles[0].Hz, constant("2-Pole Freq"), 1e-4) << name;
    EXPECT_NEAR(poles[0].Damping, constant("2-Pole Zeta"), 1e-6) << name;
  }
}

// Motor torque to motor velocity: JL s^2 + KCV s + KS over s (JM JL s^2 + (JM + JL)(KCV s + KS)).
TEST(Linearize, ResonanceIsWhereItsInertiasPutIt) {
  const auto model = MakeModel("15-1 Resonance");
  const auto set = [&](const char* name, double value) {
    model->Bench().FindConst(name)->Set(value);
    return value;
  };
  set("KVP", 0.03);  // by default the loop is unstable with as little damping
  const double kcv = set("KCV", 0.05);
  const auto constant = [&](const char* name) { return model->Bench().FindConst(name)->Value(); };
  const double jm = constant("JM"), jl = constant("JL"), ks = constant("KS"), kt = constant("KT");
  const LinearModel linear = Linearize(*model);
  const TheoryPair pair(linear, "iF", "vM");
  for (const double hz : {10.0, 167.8, 400.0, 530.5}) {
    const Complex s(0.0, 2.0 * pi * hz);
    const Complex truth = kt * 30.0 / pi * (jl * s * s + kcv * s + ks) /
                          (s * (jm * jl * s * s + (jm + jl) * (kcv * s + ks)));
    const ResponsePoint found = pair.At(std::array{hz}, ReadSignals::EveryStep).front();
    EXPECT_NEAR(found.Gain, 20.0 * std::log10(std::abs(truth)), 0.1) << hz;
  }
}

struct Margin {
  const char* Model;
  double Phase;
  double Gain;
};

// From the loops' equations; what the engine's steps add to a sampled loop is the tolerance.
TEST(Linearize, MarginsAreThoseOfTheEquations) {
  const Margin margins[] = {{"2-1 PI+ Controller", 63.84, 18.36},
                            {"3-1 PI Controller", 55.62, 14.89},
                            {"4-1 Digital PI Controller", 63.03, 17.53},
                            {"6-1 PID Controller", 63.03, 17.53},
                            {"7-1 Dist. Response of PI Controller", 60.33, 15.77},
                            {"8-1 Feed-forward", 63.03, 17.53},
                            {"13-1 Motor Feedback", 60.33, 15.77},
                            {"16-1 Cascade Position Loop", 65.28, 12.26},
                            {"16-2 PID Position Loop", 67.56, 12.61},
                            {"Seminar--Analog PI Controller", 68.96, 25.66}};
  for (const auto& [name, phase, gain] : margins) {
    const auto model = MakeModel(name);
    if (name[0] == '7') model->Bench().FindConst("Bode type")->Set(0);
    const LoopTheory theory = TheoryOfLoop(*model);
    ASSERT_FALSE(theory.Read.PhaseMargins.empty() || theory.Read.GainMargins.empty()) << name;
    EXPECT_NEAR(theory.Read.SmallestPhaseMargin()->Value, phase, 0.06) << name;
    EXPECT_NEAR(theory.Read.SmallestGainMargin()->Value, gain, 0.06) << name;
    // No point of the curve lies nearer to -1 than the margins' own do.
    const double fromPhase = 0.5 / std::sin(0.5 * phase * pi / 180.0);
    EXPECT_GE(theory.Read.Sensitivity->Value, 0.999 * fromPhase) << name;
  }
}

TEST(Linearize, MarginsAndSensitivityAreThoseOfTheEquationsToSixDigits) {
  const auto model = MakeModel("3-1 PI Controller");
  const Margins margins = TheoryOfLoop(*model).Read;
  EXPECT_NEAR(margins.SmallestPhaseMargin()->Value, 55.620938, 1e-5);
  EXPECT_NEAR(margins.SmallestGainMargin()->Value, 14.889581, 1e-5);
  EXPECT_NEAR(margins.SmallestGainMargin()->Hz, 239.639545, 1e-4);
  const auto peak = margins.Sensitivity;
  const auto at = [](double hz) { return 1.0 / std::abs(1.0 + Loop31({0.0, 2.0 * pi * hz})); };
  ASSERT_TRUE(peak);
  EXPECT_NEAR(peak->Value, at(peak->Hz), 1e-6);
  for (const double aside : {0.9999, 1.0001}) EXPECT_LT(at(aside * peak->Hz), at(peak->Hz));
}

// Steps of the model itself against what the linear one makes of the same command. Between
// evaluations blocks show outputs a fraction of a step old, which the linear model does not carry.
// Only the first samples: later on rounding of the time moves one by an evaluation now and then.
TEST(Linearize, SampledLoopStepsAsItsModelDoes) {
  const auto model = MakeModel("4-1 Digital PI Controller");
  const LinearModel linear = Linearize(*model);
  const LinearSystem& system = linear.System();
  const auto same = MakeModel("4-1 Digital PI Controller");
  same->DropClassMemory();
  ZelWave& generator = Generator(*same);
  generator.SetAmplitude(0.0);
  const int samples = 16;
  same->Solver().RunUntil(system.Ts - 1.5 * same->Solver().Step());
  generator.SetOffset(3.0);
  same->Solver().RunUntil(same->Time() + 0.5 * same->Solver().Step());
  Eigen::VectorXd state = Eigen::VectorXd::Zero(system.Order());
  const auto velocity = *linear.Find("vF");
  for (int k = 0; k < samples; ++k) {
    const double shown = system.C.row(velocity) * state + system.D[velocity] * 3.0;
    same->Solver().RunUntil(system.Ts * (k + 1) + 0.5 * same->Solver().Step());
    EXPECT_NEAR(same->Bench().FindVar("vF")->DisplayValue(), shown, 2e-6) << k;
    state = system.A * state + system.B * 3.0;
  }
}

TEST(Linearize, LeavesOtherModelsOfItsClassAlone) {
  const auto run = [](bool disturbed) {
    const auto model = MakeModel("4-1 Digital PI Controller");
    model->DropClassMemory();
    model->Solver().RunUntil(0.01013);
    if (disturbed) Linearize(*MakeModel("4-1 Digital PI Controller"));
    model->Solver().RunUntil(0.02);
    return model->Bench().FindVar("vF")->Value;
  };
  EXPECT_EQ(run(false), run(true));
}

TEST(Linearize, SaysWhatItCannotTell) {
  const auto fault = [](const char* name, const auto& ask) -> std::string {
    const auto model = MakeModel(name);
    try {
      ask(*model);
    } catch (const LinearFault& found) {
      return found.what();
    }
    return {};
  };
  EXPECT_EQ(fault("5-1 Aliasing",
                  [](ZelModel& model) {
                    const LinearModel linear = Linearize(model);
                    TheoryPair(linear, "vC", "vSample");
                  }),
            "no path leads from the command that the analysers excite to vC");
  EXPECT_EQ(fault("5-1 Aliasing", [](ZelModel& model) { TheoryOfLoop(model); }),
            "the model names no loop of its own");
  EXPECT_EQ(fault("3-1 PI Controller",
                  [](ZelModel& model) {
                    model.Bench().FindConst("KP")->Set(5.0);
                    TheoryOfLoop(model);
                  }),
            "the loop is unstable: it has no response");
  EXPECT_EQ(fault("4-1 Digital PI Controller",
                  [](ZelModel& model) {
                    model.Bench().FindConst("TSample")->Set(1.0);
                    Linearize(model);
                  }),
            "a sample time of 1 s is more than 4000 steps of the solver");
  // Its output is rounded again and again.
  EXPECT_EQ(
      fault("5-2 Dither and Limit Cycles", [](ZelModel& model) { Linearize(model); }),
      "the loop does not stand still with its generators at their offsets: it has no operating "
      "point");
  const auto encoder = MakeModel("6-1 PID Controller");
  encoder->Bench().FindConst("Use Res?")->Set(1);
  EXPECT_EQ(Linearize(*encoder).Notes,
            std::vector<std::string>{"the linear model has Use Res? at No"});
}

}  // namespace
}  // namespace torvane::test
