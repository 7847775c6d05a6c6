#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/constant.h"
#include "library/low_pass1.h"
#include "library/low_pass2.h"
#include "library/notch.h"
#include "library/two_inertia_mechanism.h"
#include "support/bare_model.h"
#include "support/recorder.h"

// The continuous blocks: slopes and outputs of single evaluations, in numbers that are exact in
// binary.

namespace torvane {
namespace {

using test::Messages;

// The frequency of an angular frequency in rad/s. The way there and back costs a unit or two in the
// last place, which EXPECT_DOUBLE_EQ grants.
double Hz(double omega) {
  return omega / (2.0 * 3.1415926);
}

struct StateAt {
  const char* Name;
  double Value;
  double Slope;
};

/// Evaluates at the given states and expects their slopes.
template <class Block>
void Evaluate(test::BareModel& model, Block& block, std::initializer_list<StateAt> states) {
  for (const StateAt& state : states) model.Signal(state.Name).Value = state.Value;
  block.AtTime(0.0);
  for (const StateAt& state : states) {
    EXPECT_DOUBLE_EQ(model.Slope(state.Name), state.Slope) << state.Name;
    EXPECT_TRUE(model.Signal(state.Name).Internal()) << state.Name;
  }
}

TEST(ContinuousFilters, WriteTheSlopesOfTheirStates) {
  test::BareModel model;
  ZelLowPass1 first(model.Bench(), Hz(1.0));
  first.SetFrequency(Hz(2.0));
  first.SetInput(5.0);
  Evaluate(model, first, {{"LowPass1", 2.0, 6.0}});
  EXPECT_EQ(first.Output(), 2.0);

  ZelLowPass2 second(model.Bench(), Hz(2.0), 0.5);
  second.SetInput(5.0);
  Evaluate(model, second,
           {{"LowPass2 #1", 2.0, 3.0}, {"LowPass2 #2", 3.0, 4.0 * (5.0 - 2.0) - 2.0 * 3.0}});
  EXPECT_EQ(second.Output(), 2.0);

  // Poles at 2 rad/s and 0.5, zeros at 4 rad/s and 0.25: b0 = 1/4, b1 = 1/2, a1 = 2, a2 = 4.
  ZelNotch notch(model.Bench(), Hz(2.0), 0.5, Hz(4.0), 0.25);
  notch.SetInput(8.0);
  Evaluate(model, notch,
           {{"Notch #1", 1.0, 4.0 + 3.0 - 6.0}, {"Notch #2", 3.0, 4.0 * (8.0 - 3.0)}});
  EXPECT_DOUBLE_EQ(notch.Output(), 3.0);
  // Both frequencies at 3 rad/s: b0 = 1, b1 = 1.5, a1 = 6 with a damping of 1, a2 = 9.
  notch.SetFrequency(Hz(3.0));
  notch.SetDamping(1.0);
  Evaluate(model, notch, {{"Notch #1", 1.0, 12.0 + 3.0 - 54.0}, {"Notch #2", 3.0, -9.0}});
  // At 0 Hz everything passes and nothing moves but what moved.
  notch.SetFrequency(0.0);
  Evaluate(model, notch, {{"Notch #1", 1.0, 3.0}, {"Notch #2", 3.0, 0.0}});
  EXPECT_EQ(notch.Output(), 9.0);
}

TEST(ContinuousFilters, FollowLinkedConstantsOnceAfterEachChange) {
  test::BareModel model;
  Constant frequency(model.Bench(), "f", "Hz", 40.0, 0.0, 1000.0);
  Constant damping(model.Bench(), "zeta", "", 0.25, 0.0, 10.0);
  ZelLowPass2 filter(model.Bench(), 900.0, 0.707);
  filter.LinkFrequency(frequency);
  filter.LinkDamping(damping);
  filter.AtTime(0.0);
  EXPECT_EQ(filter.Frequency(), 40.0);
  EXPECT_EQ(filter.Damping(), 0.25);
  frequency.Set(70.0);
  filter.SetDamping(0.5);
  filter.AtTime(0.0);
  EXPECT_EQ(filter.Frequency(), 70.0);
  EXPECT_EQ(filter.Damping(), 0.5);
}

// Friction in both directions: it has no preferred one.
struct Visit {
  double Position;
  double Velocity;
  double Torque;
};

void Walk(const FrictionSettings& settings, std::initializer_list<Visit> visits) {
  for (const double sign : {1.0, -1.0}) {
    ZelFricCalc friction(settings);
    int index = 0;
    for (const Visit& visit : visits) {
      EXPECT_EQ(friction.Friction(sign * visit.Position, sign * visit.Velocity),
                sign * visit.Torque)
          << "visit " << index << " in direction " << sign;
      ++index;
    }
  }
}

TEST(Friction, SticksBreaksAwaySlidesAndReverses) {
  Walk({.TC = 2.0, .TS = 4.0, .PS = 0.5},
       {{0.25, 9.0, -2.0},    // half of the travel, half of the breakaway torque, at any velocity
        {0.5, 1.0, -4.0},     // the very edge still holds
        {0.75, 1.0, -2.0},    // breakaway drops to the sliding torque
        {1.0, 1.0, -2.0},     // sliding
        {1.0, 0.0, -2.0},     // velocity 0 sticks, with the torque it had; anchor at 0.75
        {1.125, 1.0, -3.0},   // stuck again: the spring goes on from there
        {0.25, -1.0, 4.0},    // the other edge
        {0.125, -1.0, 2.0},   // sliding backwards
        {-1.0, -1.0, 2.0},    //
        {-1.0, 1.0, 2.0},     // a velocity that has turned sticks first; anchor at -0.75
        {-0.625, 1.0, -1.0}}  //
  );
  // The full travel when the breakaway torque is not above the sliding one.
  Walk({.TC = 4.0, .TS = 2.0, .PS = 0.5},
       {{0.25, 0.0, -2.0}, {1.0, 1.0, -4.0}, {1.0, -1.0, -4.0}, {0.75, -1.0, -2.0}});
  Walk({.TC = 0.0, .TS = 4.0, .PS = 0.5},  // sticks relaxed, as it slid without torque
       {{1.0, 1.0, 0.0}, {1.0, 0.0, 0.0}, {1.25, 0.0, -2.0}});
}

TEST(Mechanism, WritesTheSlopesOfMotorAndLoad) {
  test::BareModel model;
  const FrictionSettings motor{.TC = 0.5, .TS = 1.0, .PS = 0.5};
  const FrictionSettings load{.TC = 0.25, .TS = 0.5, .PS = 1.0};
  Zel2JMech mech(model.Bench(), {2.0, 4.0, 10.0, 0.5, 2.0, 0.25, motor, 0.125, load});
  mech.SetMotorTorque(3.0);
  mech.SetLoadTorque(5.0);
  mech.SetSecondMotorTorque(1.0);
  Evaluate(model, mech,
           {{"Zel2JMech-vM", 6.0, -1.25},  // (3 + 1 - 1.5 - 0.5 - 4.5) / 2
            {"Zel2JMech-pM", 0.75, 6.0},
            {"Zel2JMech-vL", 1.0, 3.4375},  // (5 - 0.125 - 0.125 + 9) / 4
            {"Zel2JMech-pL", 0.25, 1.0}});
  EXPECT_EQ(mech.ShaftTorque(), 4.5);  // (6 - 2) 0.5 + (0.75 - 0.5) 10
  const auto values = [](const Zel2JMech::Side& s) {
    return std::vector{s.Velocity,      s.Position,  s.FrictionTorque,
                       s.ViscousTorque, s.NetTorque, s.Acceleration};
  };
  EXPECT_EQ(values(mech.Motor()), (std::vector{6.0, 0.75, -0.5, -1.5, -2.5, -1.25}));
  EXPECT_EQ(values(mech.Load()), (std::vector{1.0, 0.25, -0.125, -0.125, 13.75, 3.4375}));
  // The shaft cut, and other inertias.
  mech.SetKS(0.0);
  mech.SetKCV(0.0);
  mech.SetJM(5.0);
  mech.SetJL(2.0);
  Evaluate(model, mech, {{"Zel2JMech-vM", 6.0, 0.4}, {"Zel2JMech-vL", 1.0, 2.375}});
}

TEST(Mechanism, ReportsEachBadParameterInOrder) {
  test::BareModel model;
  test::Recorder recorder;
  const FrictionSettings bad{.TC = -1.0, .TS = -1.0, .PS = 0.0};
  Zel2JMech mech(model.Bench(), {0.0, -1.0, 0.0, 0.0, 0.0, -1.0, bad, -1.0, bad});
  mech.SetJM(0.0);
  mech.SetJL(0.0);
  Messages expected;
  for (const char* report : {"Zel2JMech, jM <=",   "Zel2JMech, jL <=",   "Zel2JMech, kS <=",
                             "Zel2JMech, kCV <=",  "Zel2JMech, Gear <=", "Zel2JMech, kVM <",
                             "Zel2JMech, tCM <",   "Zel2JMech, tSM <",   "Zel2JMech, pSM <=",
                             "Zel2JMech, kVL <",   "Zel2JMech, tCL <",   "Zel2JMech, tSL <",
                             "Zel2JMech, pSL <=",  "ZelFricCalc, tC <",  "ZelFricCalc, tS <",
                             "ZelFricCalc, pS <=", "ZelFricCalc, tC <",  "ZelFricCalc, tS <",
                             "ZelFricCalc, pS <=", "Zel2JMech, jM <=",   "Zel2JMech, jL <="}) {
    expected.push_back("Error: " + std::string(report) + " 0.");
  }
  EXPECT_EQ(recorder.Take(), expected);
  mech.SetMotorTorque(1.0);
  mech.AtTime(0.0);
  EXPECT_DOUBLE_EQ(model.Slope("Zel2JMech-vM"), 1e10);  // very fast, but finite
}

TEST(ContinuousBlocks, FollowAResetAndDropWhatAnOverflowLeft) {
  test::BareModel model;
  ZelLowPass1 first(model.Bench(), 10.0);
  ZelLowPass2 second(model.Bench(), 10.0, 0.7);
  ZelNotch notch(model.Bench(), 10.0, 0.7);
  const FrictionSettings friction{.TC = 2.0, .TS = 4.0, .PS = 0.5};
  Zel2JMech mech(model.Bench(), {1.0, 1.0, 1.0, 1.0, 1.0, 0.0, friction});
  const auto& variables = model.Bench().Variables();
  const auto drive = [&](double input, double state) {
    first.SetInput(input);
    second.SetInput(input);
    notch.SetInput(input);
    mech.SetMotorTorque(input);
    for (Variable* variable : variables) variable->Value = state;
    model.Bench().UpdateTimeDriven(0.0);
    model.Reset();
  };
  drive(std::numeric_limits<double>::infinity(), 4.0);
  EXPECT_EQ(first.Output() + second.Output() + notch.Output() + mech.Motor().Position, 0.0);
  model.Signal("Zel2JMech-pM").Value = std::numeric_limits<double>::infinity();
  mech.AtTime(0.0);  // the friction's anchor goes with it
  model.Reset();
  model.Bench().UpdateTimeDriven(0.0);
  for (const Variable* variable : variables) {
    if (const auto* state = dynamic_cast<const StateVariable*>(variable)) {
      EXPECT_EQ(state->Derivative, 0.0) << state->Name();
    }
  }
  // A finite input stays.
  drive(5.0, 0.0);
  EXPECT_EQ(notch.Output(), 5.0);
  EXPECT_EQ(model.Slope("Zel2JMech-vM"), 5.0);
}

}  // namespace
}  // namespace torvane
