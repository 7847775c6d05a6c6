#pragma once

#include <string>
#include <vector>

#include "kit/velocity_loop.h"

namespace torvane {

/// What moves in a sampled position loop: velocities in rad/s, positions in radians, currents and
/// torques, the current loop and the clock. The position command is the integral of its velocity.
struct PositionLoop {
  double vPC = 0, vE = 0, vF = 0, pF = 0, pC = 0, pE = 0;
  double iC = 0, iF = 0, tD = 0, tM = 0, tE = 0;
  State vM, pM;
  LowPass2 currentLoop{600, Butterworth};
  ControllerClock clock;
};

/// Its signals, with more of a loop's own behind the command. What the velocity error is, and the
/// size of the position error, which a new scope shows below the velocities, differ from loop to
/// loop.
std::vector<Signal> PositionSignals(PositionLoop& s, const std::string& velocityError,
                                    DisplayDefaults positionError,
                                    const std::vector<Signal>& more = {});

/// What a position controller sees of a sample: the command position moves on with the command
/// velocity, the motor's is read off the encoder, and the feedback velocity is its change.
inline void SampleMotion(PositionLoop& s, double period, double linesPerRev,
                         PreviousSample& previousPF) {
  s.pC += s.vPC * period;
  s.pF = FloorToStep(s.pM, EncoderCount(linesPerRev));
  s.vF = previousPF.Difference(s.pF) / period;
  s.pE = s.pC - s.pF;
}

/// The continuous part of a position loop: the current and the disturbance turn the motor.
inline void RunMotor(PositionLoop& s, double t, double outputInstant, const MotorConstants& motor) {
  s.iF = FollowCurrent(s.currentLoop, s.iC, t, outputInstant);
  s.tE = s.iF * motor.kt.Value();
  s.tM = s.tE + s.tD;
  TurnInertia(s.tM, motor.j.Value(), s.vM, s.pM);
}

}  // namespace torvane
