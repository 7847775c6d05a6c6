#include <gtest/gtest.h>

#include <cmath>

#include "models/loop.h"

// The sampled position loops, sample by sample.

namespace torvane {
namespace {

using test::Loop;
using test::Settings;

constexpr double Period = 0.00025;
constexpr double RpmToRad = 0.10471975333333333;
// The position that the finest encoder reads lies up to a count of 1.6e-10 rad below the real one,
// and the sums here hold up to six of them.
constexpr double Encoder = 1e-9;

const std::string Cascade = "16-1 Cascade Position Loop";
const std::string Pid = "16-2 PID Position Loop";

class PositionLoops : public testing::Test {
 protected:
  PositionLoops() {
    for (const std::string& name : {Cascade, Pid}) test::BringClassToRest(name);
  }
};

TEST_F(PositionLoops, PositionCommandSumsTheVelocityCommand) {
  for (const std::string& name : {Cascade, Pid}) {
    Loop loop(name);
    double sum = 0.0;
    for (int k = 0; k < 4; ++k) {
      const double command = (50.0 + k) * RpmToRad;
      loop.Generate(50.0 + k);
      loop.Sample(k * Period);
      sum += command * Period;
      EXPECT_EQ(loop["pC"], sum) << name;
      EXPECT_EQ(loop["pE"], sum) << name;
      // Between two samples nothing is added.
      loop.Bench().UpdateTimeDriven(-1.0);
      loop.Model().Derivatives(k * Period);
      EXPECT_EQ(loop["pC"], sum) << name;
    }
  }
}

TEST_F(PositionLoops, CascadeFeedsVelocityAndAccelerationForward) {
  Loop loop(Cascade, {{"KP", "100"}, {"KFV", "40"}, {"KFA", "10"}, {"KVP", "0.5"}, {"KT", "2"}});
  loop.Generate(30.0);
  loop.Sample(0.0);
  const double v = 30.0 * RpmToRad;
  EXPECT_NEAR(loop["vC"], 100.0 * v * Period + 0.4 * v + 0.1 * v / Period * 0.002 / (2.0 * 0.5),
              1e-12);
}

TEST_F(PositionLoops, PidAddsItsTerms) {
  Loop loop(
      Pid,
      {{"KPD", "0.2"}, {"KPP", "3"}, {"KPI", "0.5"}, {"KFV", "10"}, {"KFA", "20"}, {"KT", "2"}});
  loop["pM"] = -0.001;
  loop.Generate(3.0);
  loop.Sample(0.0);
  const double v = 3.0 * RpmToRad;
  const double error = v * Period + 0.001;
  EXPECT_NEAR(loop["iC"],
              0.2 * (v + 0.001 / Period) + 3.0 * error + 0.5 * error + 0.1 * v +
                  0.2 * v / Period * 0.002 / 2.0,
              0.2 * Encoder / Period + Encoder);
}

TEST_F(PositionLoops, PidGivesExactlyTwentyAmperes) {
  for (const double sign : {1.0, -1.0}) {
    Loop loop(Pid, {{"KPD", "0"}, {"KPP", "1000"}});
    loop["pM"] = -sign * 0.019;
    loop.Sample(0.0);
    EXPECT_NEAR(loop["iC"], sign * 19.0, 1000.0 * Encoder);
    loop["pM"] = -sign * 0.021;
    loop.Sample(Period);
    EXPECT_EQ(loop["iC"], sign * 20.0);
  }
}

/// 16-2 with its integral alone. The error is minus the position while the command rests.
const Settings IntegralOnly{{"KPD", "0"}, {"KPP", "0"}, {"KPI", "1"}};

/// The integral term after samples with the given position errors, and what each of them gave.
std::vector<double> Integrate(Loop& loop, const std::vector<double>& errors) {
  std::vector<double> currents;
  for (const double error : errors) {
    loop["pM"] = -error;
    loop.Sample(1e6);  // due whenever it is asked for
    currents.push_back(loop["iC"]);
  }
  return currents;
}

void ExpectNear(const std::vector<double>& actual, const std::vector<double>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], Encoder) << "sample " << i;
  }
}

TEST_F(PositionLoops, IntegralIsAPlainSumUpToItsLimit) {
  Loop loop(Pid, IntegralOnly);
  ExpectNear(Integrate(loop, {1.0, 1.5, 2.0, 1.0, -1.0, -7.0}), {1.0, 2.5, 3.0, 3.0, 2.0, -3.0});
}

// Limit and gain of 0: a comparison that were not strict would divide 0 by 0.
TEST_F(PositionLoops, IntegralLimitIsStrict) {
  Loop loop(Pid, IntegralOnly);
  loop.Set({{"KPI", "0"}, {"IKPISat", "0"}});
  ExpectNear(Integrate(loop, {1.0, 1.0}), {0.0, 0.0});
  loop.Set({{"KPI", "1"}, {"IKPISat", "20"}});
  ExpectNear(Integrate(loop, {1.0}), {3.0});
}

TEST_F(PositionLoops, IntegralIsEmptiedByACommandButNeverByAReversal) {
  Loop loop(Pid, IntegralOnly);
  loop.Set({{"Zero on Rev?", "Yes"}});
  ExpectNear(Integrate(loop, {2.0, -0.5, 0.25}), {2.0, 1.5, 1.75});
  loop.Set({{"Zero on Move?", "Yes"}});
  ExpectNear(Integrate(loop, {0.25}), {2.0});
  loop.Generate(1e-3);
  EXPECT_EQ(Integrate(loop, {0.25, 0.25}), (std::vector<double>{0.0, 0.0}));
  loop.Set({{"Zero on Move?", "No"}});
  EXPECT_NE(Integrate(loop, {0.25})[0], 0.0);
}

}  // namespace
}  // namespace torvane
