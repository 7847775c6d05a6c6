#include "library/two_inertia_mechanism.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/bare_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

TEST(TwoInertiaMechanismTest, WritesTheDerivativesOfMotorAndLoad) {
  test::BareModel model;
  Zel2JMech mech(
      model.Bench(),
      {.JM = 2.0, .JL = 4.0, .KS = 10.0, .KCV = 0.5, .Gear = 2.0, .KVM = 0.25, .KVL = 0.125});
  mech.SetMotorTorque(3.0);
  mech.SetLoadTorque(5.0);
  mech.SetSecondMotorTorque(1.0);
  model.Signal("Zel2JMech-vM").Value = 6.0;
  model.Signal("Zel2JMech-pM").Value = 0.75;
  model.Signal("Zel2JMech-vL").Value = 1.0;
  model.Signal("Zel2JMech-pL").Value = 0.25;
  EXPECT_EQ(mech.Motor().Velocity, 0.0);  // outputs are those of the last evaluation
  mech.AtTime(0.0);
  // Ts = (6 - 2) 0.5 + (0.75 - 0.5) 10 = 4.5; all numbers are exact in binary.
  EXPECT_EQ(mech.ShaftTorque(), 4.5);
  EXPECT_EQ(model.Slope("Zel2JMech-vM"), -1.0);  // (3 + 1 - 1.5 - 4.5) / 2
  EXPECT_EQ(model.Slope("Zel2JMech-pM"), 6.0);
  EXPECT_EQ(model.Slope("Zel2JMech-vL"), 3.46875);  // (5 - 0.125 + 9) / 4
  EXPECT_EQ(model.Slope("Zel2JMech-pL"), 1.0);
  EXPECT_EQ(mech.Motor().Velocity, 6.0);
  EXPECT_EQ(mech.Load().Position, 0.25);

  // The shaft cut, and other inertias.
  mech.SetKS(0.0);
  mech.SetKCV(0.0);
  mech.SetJM(5.0);
  mech.SetJL(2.0);
  mech.AtTime(0.0);
  EXPECT_EQ(model.Slope("Zel2JMech-vM"), 0.5);     // (3 + 1 - 1.5) / 5
  EXPECT_EQ(model.Slope("Zel2JMech-vL"), 2.4375);  // (5 - 0.125) / 2
}

TEST(TwoInertiaMechanismTest, AStiffShaftMovesBothInertiasAsOne) {
  test::BareModel model(1e-4);
  Zel2JMech mech(model.Bench(), {.JM = 1.0, .JL = 2.0, .KS = 1e5, .KCV = 100.0});
  mech.SetMotorTorque(3.0);
  model.Solver().RunUntil(0.50005);
  mech.AtTime(model.Time());
  // The shaft's torque is internal: the momentum is torque times time but for the rounding of five
  // thousand steps.
  EXPECT_NEAR(mech.Motor().Velocity + 2.0 * mech.Load().Velocity, 3.0 * model.Time(), 1e-12);
  // The mode at sqrt(1e5 * 3/2) rad/s has decayed with exp(-75 * 0.5).
  EXPECT_NEAR(mech.Motor().Velocity, mech.Load().Velocity, 1e-12);
  EXPECT_NEAR(mech.ShaftTorque(), 2.0, 1e-9);  // what the load's inertia takes; kS times rounding
}

TEST(TwoInertiaMechanismTest, StictionHoldsABodyUnderASmallTorque) {
  test::BareModel model(1e-4);
  const FrictionSettings friction{.TC = 0.5, .TS = 1.0, .PS = 0.01};
  Zel2JMech mech(
      model.Bench(),
      {.JM = 0.01, .JL = 0.01, .KS = 1000.0, .KCV = 1.0, .KVM = 0.5, .MotorFriction = friction});
  mech.SetMotorTorque(0.5);
  model.Solver().RunUntil(3.0);
  mech.AtTime(model.Time());
  // d = T pS / k. The slowest mode decays with exp(-12.5 t): 5e-17 after 3 s.
  EXPECT_NEAR(mech.Motor().Position, 0.005, 1e-14);
  EXPECT_NEAR(mech.Motor().Velocity, 0.0, 1e-13);
  EXPECT_NEAR(mech.Motor().FrictionTorque, -0.5, 1e-12);

  mech.SetMotorTorque(1.5);  // above the breakaway torque: off it goes
  model.Solver().RunUntil(4.0);
  EXPECT_GT(mech.Motor().Position, 0.5);
  EXPECT_EQ(mech.Motor().FrictionTorque, -0.5);
}

TEST(TwoInertiaMechanismTest, ReportsEachBadParameterInOrder) {
  test::BareModel model;
  test::Recorder recorder;
  const FrictionSettings bad{.TC = -1.0, .TS = -1.0, .PS = 0.0};
  Zel2JMech mech(model.Bench(), {0.0, -1.0, 0.0, 0.0, 0.0, -1.0, bad, -1.0, bad});
  test::Messages expected;
  for (const char* report : {"jM <=", "jL <=", "kS <=", "kCV <=", "Gear <=", "kVM <", "tCM <",
                             "tSM <", "pSM <=", "kVL <", "tCL <", "tSL <", "pSL <="}) {
    expected.push_back("Error: Zel2JMech, " + std::string(report) + " 0.");
  }
  for (const char* report : {"tC <", "tS <", "pS <=", "tC <", "tS <", "pS <="}) {
    expected.push_back("Error: ZelFricCalc, " + std::string(report) + " 0.");
  }
  EXPECT_EQ(recorder.Take(), expected);
  mech.SetMotorTorque(1.0);
  mech.AtTime(0.0);
  EXPECT_DOUBLE_EQ(model.Slope("Zel2JMech-vM"), 1e10);  // very fast, but finite
}

TEST(TwoInertiaMechanismTest, RunsAgainAfterAnOverflow) {
  test::BareModel model;
  const FrictionSettings friction{.TC = 2.0, .TS = 4.0, .PS = 0.5};
  Zel2JMech mech(model.Bench(),
                 {.JM = 1.0, .JL = 1.0, .KS = 1.0, .KCV = 1.0, .MotorFriction = friction});
  const double infinity = std::numeric_limits<double>::infinity();
  mech.SetMotorTorque(infinity);
  model.Signal("Zel2JMech-pM").Value = infinity;
  mech.AtTime(0.0);
  model.Reset();
  EXPECT_EQ(mech.Motor().Position, 0.0);
  mech.AtTime(0.0);
  EXPECT_EQ(model.Slope("Zel2JMech-vM"), 0.0);
  EXPECT_EQ(model.Slope("Zel2JMech-vL"), 0.0);
}

}  // namespace
}  // namespace torvane
