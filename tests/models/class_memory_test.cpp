#include <gtest/gtest.h>

#include "models/loop.h"

// What a model's class remembers from one model to the next. It is meant to: these tests fail when
// somebody tidies it up. Each runs in a process of its own, where the memory starts at 0.

namespace torvane {
namespace {

using test::Loop;
using test::Settings;

constexpr double Period = 0.00025;
constexpr double RpmToRad = 0.10471975333333333;
// The position that the finest encoder reads lies up to a count below the real one. That of 13-1
// has a quarter of the resolution.
constexpr double OneCount = 1.6e-10;

struct Differenced {
  std::string Model;
  std::string Position;
  std::string Velocity;
  Settings Set;
};

TEST(ClassMemory, FirstSampleDiffersAgainstTheLastRun) {
  const std::vector<Differenced> cases{
      {"2-1 PI+ Controller", "pM", "vF", {}},
      {"4-1 Digital PI Controller", "pM", "vF", {{"Feedback", "Encoder"}}},
      {"6-1 PID Controller", "pM", "vF", {{"Feedback", "Encoder"}}},
      {"7-1 Dist. Response of PI Controller", "pM", "vF", {}},
      {"8-1 Feed-forward", "pM", "vF", {{"Feedback", "Encoder"}}},
      {"13-1 Motor Feedback", "pM", "vF", {{"Res", "1e10"}}},
      {"15-1 Resonance", "pM", "vMF", {}},
      {"15-1 Resonance", "pL", "vLF", {}},
      {"16-1 Cascade Position Loop", "pM", "vF", {}},
      {"16-2 PID Position Loop", "pM", "vF", {}},
  };
  for (const Differenced& c : cases) {
    SCOPED_TRACE(c.Model + " " + c.Position);
    {
      Loop first(c.Model, c.Set);
      first[c.Position] = 3.0;
      first.Sample(0.0);
    }
    Loop second(c.Model, c.Set);
    second[c.Position] = 1.0;
    second.Sample(0.0);
    EXPECT_NEAR(second[c.Velocity], (1.0 - 3.0) / Period, 8.0 * OneCount / Period);
    second.Bench().UpdateTimeDriven(0.1 * Period);
    second.Model().Reset();
    second[c.Position] = 0.0;
    second.Sample(0.01);
    EXPECT_NEAR(second[c.Velocity], (0.0 - 1.0) / Period, 8.0 * OneCount / Period);
  }
}

TEST(ClassMemory, AccelerationDiffersAgainstTheLastCommand) {
  struct Case {
    std::string Model;
    std::string Signal;
    Settings Set;
    double Factor;  ///< from the command's acceleration to the signal
  };
  const std::vector<Case> cases{
      {"8-1 Feed-forward", "iC", {{"KVP", "0"}, {"KVF", "1"}}, 0.01 * 0.002},
      {"16-1 Cascade Position Loop", "vC", {{"KP", "0"}, {"KFA", "100"}}, 0.002 / 1.2},
      {"16-2 PID Position Loop", "iC", {{"KPD", "0"}, {"KPP", "0"}, {"KFA", "1"}}, 0.01 * 0.002},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Model);
    {
      Loop first(c.Model, c.Set);
      first.Generate(60.0);
      first.Sample(0.0);
    }
    Loop second(c.Model, c.Set);
    second.Sample(0.0);
    const double expected = -60.0 * RpmToRad / Period * c.Factor;
    EXPECT_NEAR(second[c.Signal], expected, 1e-12 * std::abs(expected));
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
    { Loop(name).Sample(5.0); }
    Loop second(name);
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
  test::BringClassToRest("16-2 PID Position Loop");
  for (const double expected : {2.0, 4.0}) {
    Loop loop("16-2 PID Position Loop", integralOnly);
    loop["pM"] = -2.0;
    loop.Sample(0.0);
    EXPECT_NEAR(loop["iC"], expected, 4.0 * OneCount);
  }
}

TEST(ClassMemory, AliasingTakesOneSampleAPeriodStrictlyAfterIt) {
  const Settings period{{"TSample", "0.5"}};
  {
    Loop first("5-1 Aliasing", period);
    const auto takes = [&](double t) {
      first.Generate(t + 1.0);
      first.Sample(t);
      EXPECT_EQ(first["vC"], t + 1.0);
      return first["vSample"] == t + 1.0;
    };
    EXPECT_FALSE(takes(0.0));  // not after the first sample time
    EXPECT_TRUE(takes(0.25));
    EXPECT_FALSE(takes(0.5));
    EXPECT_TRUE(takes(0.75));
    // Far behind, it catches up one period a sample: 1, 1.5, 2.
    EXPECT_TRUE(takes(2.125));
    EXPECT_TRUE(takes(2.25));
    EXPECT_TRUE(takes(2.375));
    EXPECT_FALSE(takes(2.5));
    first.Model().Reset();
    EXPECT_FALSE(takes(2.5));
  }
  // A new model starts at time 0 and waits for the next sample time of the last one.
  Loop second("5-1 Aliasing", period);
  second.Generate(3.0);
  for (const double t : {0.0, 1.0, 2.5}) second.Sample(t);
  EXPECT_EQ(second["vSample"], 0.0);
  second.Sample(2.75);
  EXPECT_EQ(second["vSample"], 3.0);
}

/// The filter of 5-2 in whole counts with a pole of one half, where every product is exact.
struct CoarseFilter {
  using Quantiser = double (*)(double);
  static double Floor(double x) { return std::floor(x); }
  static double Round(double x) { return std::floor(x + 0.5); }

  double Next(double x, Quantiser in, Quantiser back, double dither) const {
    return in(0.125 * x) + back(1.5 * Y1) - back(0.75 * Y2) + back(0.125 * Y3) + dither;
  }
  void Push(double y) {
    Y3 = Y2;
    Y2 = Y1;
    Y1 = y;
  }
  double Y1 = 0.0, Y2 = 0.0, Y3 = 0.0;
};

TEST(ClassMemory, LimitCyclesKeepTheirOutputsAndTheirDither) {
  CoarseFilter filter;
  double sign = 1.0;
  int wouldDiffer = 0;
  double t = 0.0;
  // Each mode goes on where the model before it stopped. "Round" truncates the input all the same.
  struct Mode {
    const char* Name;
    const char* Dither;
    CoarseFilter::Quantiser Back;
  };
  for (const Mode& mode :
       {Mode{"Round", "0", CoarseFilter::Round}, Mode{"Truncate", "0", CoarseFilter::Floor},
        Mode{"Round", "3", CoarseFilter::Round}, Mode{"Truncate", "2", CoarseFilter::Floor}}) {
    SCOPED_TRACE(std::string(mode.Name) + " " + mode.Dither);
    Loop loop("5-2 Dither and Limit Cycles",
              {{"Pole", "0.5"}, {"Res", "1"}, {"Quantize?", mode.Name}, {"Dither", mode.Dither}});
    for (const double x : {45.0, 47.0, 13.0, -21.0, -3.0, 30.0, 71.0}) {
      const double dither = std::stod(mode.Dither) * sign;
      const double y = filter.Next(x, CoarseFilter::Floor, mode.Back, dither);
      wouldDiffer += y != filter.Next(x, CoarseFilter::Round, mode.Back, dither);
      loop.Generate(x);
      loop.Sample(t += 1.0);
      EXPECT_EQ(loop["Output"], y) << x;
      filter.Push(y);
      sign = -sign;
    }
    // Between two samples nothing moves.
    loop.Generate(1000.0);
    loop.Bench().UpdateTimeDriven(-1.0);
    loop.Model().Derivatives(t);
    EXPECT_EQ(loop["Input"], 71.0);
    EXPECT_EQ(loop["Output"], filter.Y1);
  }
  EXPECT_GE(wouldDiffer, 8);

  Loop exact("5-2 Dither and Limit Cycles",
             {{"Pole", "0.5"}, {"Quantize?", "Float"}, {"Dither", "5"}});
  exact.Generate(45.0);
  exact.Sample(0.0);
  EXPECT_EQ(exact["Output"], 0.125 * 45.0 + 1.5 * filter.Y1 - 0.75 * filter.Y2 + 0.125 * filter.Y3);
}

}  // namespace
}  // namespace torvane
