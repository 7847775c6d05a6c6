#include <cmath>

#include "models/loop.h"

// What a model's class remembers from one model to the next. It is meant to: these tests fail when
// somebody tidies it up.

namespace torvane {
namespace {

using test::RpmToRad;
using test::SamplePeriod;
using test::Settings;

// The position that the finest encoder reads lies up to a count below the real one; that of 13-1
// has a quarter of the resolution.
constexpr double OneCount = 6.4e-10;

/// A loop that remembers what the one before it has left.
class LaterLoop : public test::Loop {
 public:
  explicit LaterLoop(const std::string& name, const Settings& settings = {})
      : test::Loop(name, settings, ClassMemory::Kept) {}
};
using Fresh = test::Loop;

struct Remembered {
  const char* Model;
  const char* Source;  ///< a state, or the generator
  const char* Signal;  ///< the change of the source per second, that often:
  double Factor;
  Settings Set;
};

TEST(ClassMemory, AFirstSampleDiffersAgainstTheLastOfAnotherRun) {
  const Settings encoder{{"Feedback", "Encoder"}};
  const std::vector<Remembered> cases{
      {"2-1 PI+ Controller", "pM", "vF", 1.0, {}},
      {"4-1 Digital PI Controller", "pM", "vF", 1.0, encoder},
      {"6-1 PID Controller", "pM", "vF", 1.0, encoder},
      {"7-1 Dist. Response of PI Controller", "pM", "vF", 1.0, {}},
      {"8-1 Feed-forward", "pM", "vF", 1.0, encoder},
      {"13-1 Motor Feedback", "pM", "vF", 1.0, {{"Res", "1e10"}}},
      {"15-1 Resonance", "pM", "vMF", 1.0, {}},
      {"15-1 Resonance", "pL", "vLF", 1.0, {}},
      {"16-1 Cascade Position Loop", "pM", "vF", 1.0, {}},
      {"16-2 PID Position Loop", "pM", "vF", 1.0, {}},
      {"8-1 Feed-forward", "", "iC", 2e-5 * RpmToRad, {{"KVP", "0"}, {"KVF", "1"}}},
      {"16-1 Cascade Position Loop",
       "",
       "vC",
       0.002 / 1.2 * RpmToRad,
       {{"KP", "0"}, {"KFA", "100"}}},
      {"16-2 PID Position Loop",
       "",
       "iC",
       2e-5 * RpmToRad,
       {{"KPD", "0"}, {"KPP", "0"}, {"KFA", "1"}}},
  };
  for (const Remembered& c : cases) {
    SCOPED_TRACE(std::string(c.Model) + " " + c.Signal);
    const auto sample = [&](test::Loop& loop, double value, double t) {
      loop.Generate(0.0);
      if (*c.Source) {
        loop[c.Source] = value;
      } else {
        loop.Generate(value);
      }
      loop.Sample(t);
      return loop[c.Signal] / c.Factor * SamplePeriod;
    };
    Fresh first(c.Model, c.Set);
    EXPECT_NEAR(sample(first, 3.0, 0.0), 3.0, 8.0 * OneCount);
    LaterLoop second(c.Model, c.Set);
    EXPECT_NEAR(sample(second, 1.0, 0.0), 1.0 - 3.0, 8.0 * OneCount);
    second.Bench().UpdateTimeDriven(0.1 * SamplePeriod);
    second.Model().Reset();
    EXPECT_NEAR(sample(second, 0.5, 0.01), 0.5 - 1.0, 8.0 * OneCount);
  }
}

TEST(ClassMemory, OutputInstantOutlivesItsModel) {
  // At rest the input of the current loop shows in the slope of the loop's rate.
  const double gain = std::pow(2.0 * 3.1415926 * 800.0, 2);
  for (const char* name :
       {"4-1 Digital PI Controller", "6-1 PID Controller", "7-1 Dist. Response of PI Controller",
        "8-1 Feed-forward", "13-1 Motor Feedback", "15-1 Resonance", "16-1 Cascade Position Loop",
        "16-2 PID Position Loop"}) {
    SCOPED_TRACE(name);
    { Fresh(name).Sample(5.0); }
    LaterLoop second(name);
    second["iC"] = 7.0;
    const auto inputAt = [&](double t) {
      second.Model().Derivatives(t);
      second.Bench().UpdateTimeDriven(-1.0);
      return second.Slope("LowPass2 #2") / gain;
    };
    EXPECT_EQ(inputAt(1.0), 0.0);
    EXPECT_NEAR(inputAt(6.0), 7.0, 1e-12);
  }
}

TEST(ClassMemory, PositionIntegralOutlivesItsModel) {
  const Settings integralOnly{{"KPD", "0"}, {"KPP", "0"}, {"KPI", "1"}, {"IKPISat", "20"}};
  const auto current = [](test::Loop& loop, double error) {
    loop["pM"] = -error;
    loop.Sample(1e6);  // due whenever it is asked for
    return loop["iC"];
  };
  Fresh first("16-2 PID Position Loop", integralOnly);
  EXPECT_NEAR(current(first, 2.0), 2.0, OneCount);
  LaterLoop second("16-2 PID Position Loop", integralOnly);
  EXPECT_NEAR(current(second, 2.0), 4.0, OneCount);
  second.Set({{"Zero on Rev?", "Yes"}});  // which never empties it
  EXPECT_NEAR(current(second, -0.5), 3.5, 2.0 * OneCount);
  // Limit and gain of 0: a comparison that were not strict would divide 0 by 0.
  second.Set({{"KPI", "0"}, {"IKPISat", "0"}});
  EXPECT_EQ(current(second, 1.0), 0.0);
  second.Set({{"KPI", "1"}, {"IKPISat", "20"}});
  EXPECT_NEAR(current(second, 1.0), 5.5, 4.0 * OneCount);
}

TEST(ClassMemory, AliasingTakesOneSampleAPeriodStrictlyAfterIt) {
  struct Sample {
    double Time;
    bool Taken;
  };
  const auto expect = [](test::Loop& loop, std::initializer_list<Sample> samples) {
    for (const Sample& sample : samples) {
      loop.Generate(sample.Time + 1.0);
      loop.Sample(sample.Time);
      EXPECT_EQ(loop["vSample"] == sample.Time + 1.0, sample.Taken) << sample.Time;
    }
  };
  const Settings period{{"TSample", "0.5"}};
  Fresh first("5-1 Aliasing", period);
  expect(first, {{0.0, false}, {0.25, true}, {0.5, false}, {0.75, true}});
  // Far behind, it catches up one period a sample: 1, 1.5, 2.
  expect(first, {{2.125, true}, {2.25, true}, {2.375, true}, {2.5, false}});
  first.Model().Reset();
  expect(first, {{2.5, false}});
  // A new model starts at time 0 and waits for the next sample time of the last one.
  LaterLoop second("5-1 Aliasing", period);
  expect(second, {{0.0, false}, {1.0, false}, {2.5, false}, {2.75, true}});
}

// A pole of one half in whole counts: y = x / 8 + 1.5 y1 - 0.75 y2 + y3 / 8 + dither.
TEST(ClassMemory, LimitCyclesKeepTheirOutputsAndTheirDither) {
  struct Mode {
    const char* Name;
    const char* Dither;
    double Input, Output;
  };
  const auto settings = [](const Mode& mode) {
    return Settings{
        {"Pole", "0.5"}, {"Res", "1"}, {"Quantize?", mode.Name}, {"Dither", mode.Dither}};
  };
  double t = 0.0;
  { Fresh("5-2 Dither and Limit Cycles"); }
  for (const Mode& mode : {Mode{"Float", "5", 12.0, 1.5},       // without dither
                           Mode{"Round", "3", 15.0, 0.0},       // 1 + 2 - 3
                           Mode{"Truncate", "2", -20.0, -2.0},  // -3 + 0 - 1 + 2
                           Mode{"Truncate", "0", 0.0, -3.0},    //
                           Mode{"Float", "0", 0.0, -3.0},       // -4.5 + 1.5
                           Mode{"Round", "0", 0.0, -2.0}}) {    // -4 + 2
    SCOPED_TRACE(mode.Name);
    LaterLoop loop("5-2 Dither and Limit Cycles", settings(mode));
    loop.Generate(mode.Input);
    loop.Sample(t += 1.0);
    EXPECT_EQ(loop["Output"], mode.Output);
    // Between two samples nothing moves.
    loop.Generate(1000.0);
    loop.Bench().UpdateTimeDriven(-1.0);
    loop.Model().Derivatives(t);
    EXPECT_EQ(loop["Input"], mode.Input);
    EXPECT_EQ(loop["Output"], mode.Output);
  }
}

}  // namespace
}  // namespace torvane
