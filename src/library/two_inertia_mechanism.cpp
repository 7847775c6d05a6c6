#include "library/two_inertia_mechanism.h"

#include "core/numeric.h"
#include "library/forget.h"

namespace torvane {

namespace {

// In the order of the parameters, so that the reports come in that order too.
MechanismSettings Checked(MechanismSettings s) {
  s.JM = Positive(s.JM, "Zel2JMech, jM");
  s.JL = Positive(s.JL, "Zel2JMech, jL");
  s.KS = Positive(s.KS, "Zel2JMech, kS");
  s.KCV = Positive(s.KCV, "Zel2JMech, kCV");
  s.Gear = Positive(s.Gear, "Zel2JMech, Gear");
  s.KVM = NonNegative(s.KVM, "Zel2JMech, kVM");
  s.MotorFriction.TC = NonNegative(s.MotorFriction.TC, "Zel2JMech, tCM");
  s.MotorFriction.TS = NonNegative(s.MotorFriction.TS, "Zel2JMech, tSM");
  s.MotorFriction.PS = Positive(s.MotorFriction.PS, "Zel2JMech, pSM");
  s.KVL = NonNegative(s.KVL, "Zel2JMech, kVL");
  s.LoadFriction.TC = NonNegative(s.LoadFriction.TC, "Zel2JMech, tCL");
  s.LoadFriction.TS = NonNegative(s.LoadFriction.TS, "Zel2JMech, tSL");
  s.LoadFriction.PS = Positive(s.LoadFriction.PS, "Zel2JMech, pSL");
  return s;
}

}  // namespace

// The friction elements get their parameters as they were given: each object reports for itself.
TwoInertiaMechanism::TwoInertiaMechanism(const MechanismSettings& settings)
    : parameters_(Checked(settings)),
      motorFriction_(settings.MotorFriction),
      loadFriction_(settings.LoadFriction),
      frictionless_(motorFriction_.None() && loadFriction_.None()) {}

void TwoInertiaMechanism::FollowReset(ResetKind kind) {
  CopyOutputs();
  Forget(kind, {&motorTorque_, &loadTorque_, &secondMotorTorque_});
  motorFriction_.Reset(kind);
  loadFriction_.Reset(kind);
}

void TwoInertiaMechanism::SetSettings(const MechanismSettings& settings) {
  parameters_ = settings;
  motorFriction_.SetSettings(settings.MotorFriction);
  loadFriction_.SetSettings(settings.LoadFriction);
  frictionless_ = motorFriction_.None() && loadFriction_.None();
}

void TwoInertiaMechanism::SetJM(double inertia) {
  parameters_.JM = Positive(inertia, "Zel2JMech, jM");
}

void TwoInertiaMechanism::SetJL(double inertia) {
  parameters_.JL = Positive(inertia, "Zel2JMech, jL");
}

}  // namespace torvane
