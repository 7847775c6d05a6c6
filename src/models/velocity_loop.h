#pragma once

#include "core/constant.h"
#include "core/numeric.h"
#include "models/loop_parts.h"

namespace torvane {

// Positions in the lists that loops share.
enum FeedbackChoice { Tach, Encoder };
enum YesNoChoice { No, Yes };

/// The signals of a sampled velocity loop, in the order in which they are registered. A new scope
/// shows command and feedback velocity, both at the given RPM per division, and the current command
/// as given.
struct VelocitySignals {
  VelocitySignals(ZelBenchTop& bench, double rpm, DisplayDefaults current = Hidden(5))
      : vC(bench, "vC", "RPM", Shown(rpm, 0, RadToRpm)),
        vM(bench, "vM", "RPM", 0, Hidden(rpm, RadToRpm)),
        vE(bench, "vE", "RPM", Hidden(rpm, RadToRpm)),
        vF(bench, "vF", "RPM", Shown(rpm, 0, RadToRpm)),
        pM(bench, "pM", "Revs", 0, Hidden(0.01, RadToRevs)),
        pF(bench, "pF", "Revs", Hidden(0.01, RadToRevs)),
        iC(bench, "iC", "Amps", current),
        iF(bench, "iF", "Amps", Hidden(5)),
        tM(bench, "tM", "Nm", Hidden(5)) {}

  Variable vC;       ///< command velocity
  StateVariable vM;  ///< motor velocity
  Variable vE;       ///< velocity error
  Variable vF;       ///< feedback velocity
  StateVariable pM;  ///< motor position
  Variable pF;       ///< feedback position
  Variable iC;       ///< current command
  Variable iF;       ///< current feedback
  Variable tM;       ///< motor torque
};

/// A sampled velocity loop: its signals, the current loop and the clock, which is built with the
/// given period.
struct VelocityLoop : VelocitySignals {
  VelocityLoop(ZelBenchTop& bench, double period, double rpm, DisplayDefaults current = Hidden(5))
      : VelocitySignals(bench, rpm, current),
        currentLoop(bench, 600, Butterworth),
        clock(bench, period) {}

  ZelLowPass2 currentLoop;
  ZelDController clock;
};

/// The continuous part of a velocity loop: the current turns the motor.
inline void RunMotor(VelocityLoop& s, double t, double outputInstant, const MotorConstants& motor) {
  s.iF.Value = FollowCurrent(s.currentLoop, s.iC.Value, t, outputInstant);
  s.tM.Value = s.iF.Value * motor.kt.Value();
  TurnInertia(s.tM.Value, motor.j.Value(), s.vM, s.pM);
}

/// Sampled position feedback: the position itself or, with "Use Res?" at "Yes", truncated towards
/// minus infinity to whole encoder counts.
inline double EncoderPosition(double position, const Constant& useRes, const Constant& res) {
  return useRes.Choice() == Yes ? FloorToStep(position, EncoderCount(res.Value())) : position;
}

}  // namespace torvane
