#pragma once

#include <vector>

#include "core/constant.h"
#include "core/numeric.h"
#include "kit/loop_parts.h"
#include "kit/signals.h"

namespace torvane {

/// Positions in the list "Feedback".
enum FeedbackChoice { Tach, Encoder };
/// Positions in lists that say no or yes.
enum YesNoChoice { No, Yes };

/// What moves in a sampled velocity loop: velocities in rad/s, positions in radians, currents and
/// torque, the current loop and the clock.
struct VelocityLoop {
  double vC = 0, vE = 0, vF = 0, pF = 0, iC = 0, iF = 0, tM = 0;
  State vM, pM;
  LowPass2 currentLoop{600, Butterworth};
  ControllerClock clock;
};

/// Its signals. A new scope shows command and feedback velocity, both at the given RPM per
/// division, and the current command as given.
std::vector<Signal> VelocitySignals(VelocityLoop& s, double rpm,
                                    DisplayDefaults current = Hidden(5));

/// The continuous part of a velocity loop: the current turns the motor.
inline void RunMotor(VelocityLoop& s, double t, double outputInstant, const MotorConstants& motor) {
  s.iF = FollowCurrent(s.currentLoop, s.iC, t, outputInstant);
  s.tM = s.iF * motor.kt.Value();
  TurnInertia(s.tM, motor.j.Value(), s.vM, s.pM);
}

/// Sampled position feedback: the position itself or, with "Use Res?" at "Yes", truncated towards
/// minus infinity to whole encoder counts.
inline double EncoderPosition(double position, const Constant& useRes, const Constant& res) {
  return useRes.Choice() == Yes ? FloorToStep(position, EncoderCount(res.Value())) : position;
}

}  // namespace torvane
