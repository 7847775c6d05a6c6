#pragma once

#include "models/velocity_loop.h"

namespace torvane {

// The signals of a position loop are registered in three runs: the cascade has one more after the
// first.

struct PositionCommand {
  explicit PositionCommand(ZelBenchTop& bench) : vPC(bench, "vPC", "RPM", Shown(20, 0, RadToRpm)) {}

  Variable vPC;  ///< command of the velocity, the integral of which is that of the position
};

/// Electrical and mechanical signals that close the list of a position loop.
struct TorqueSignals {
  explicit TorqueSignals(ZelBenchTop& bench)
      : iC(bench, "iC", "Amps", Hidden(5)),
        iF(bench, "iF", "Amps", Hidden(5)),
        tD(bench, "tD", "Nm", Hidden(2)),
        tM(bench, "tM", "Nm", Hidden(5)),
        tE(bench, "tE", "Nm", Hidden(5)) {}

  Variable iC;  ///< current command
  Variable iF;  ///< current feedback
  Variable tD;  ///< disturbance torque
  Variable tM;  ///< motor torque
  Variable tE;  ///< torque of the current alone
};

/// Motion signals of a position loop. The position error, which a new scope shows below the
/// velocities, differs in size from loop to loop.
struct MotionSignals {
  MotionSignals(ZelBenchTop& bench, DisplayDefaults error)
      : vM(bench, "vM", "RPM", 0, Hidden(20, RadToRpm)),
        vE(bench, "vE", "RPM", Hidden(20, RadToRpm)),
        vF(bench, "vF", "RPM", Shown(20, 0, RadToRpm)),
        pM(bench, "pM", "Revs", 0, Hidden(0.02, RadToRevs)),
        pF(bench, "pF", "Revs", Hidden(0.02, RadToRevs)),
        pC(bench, "pC", "Revs", Hidden(0.02, RadToRevs)),
        pE(bench, "pE", "Revs", error) {}

  StateVariable vM;  ///< motor velocity
  Variable vE;       ///< velocity error
  Variable vF;       ///< feedback velocity
  StateVariable pM;  ///< motor position
  Variable pF;       ///< feedback position
  Variable pC;       ///< command position
  Variable pE;       ///< position error
};

/// A sampled position loop behind its command: its signals, the current loop and the clock.
struct PositionLoop : MotionSignals, TorqueSignals {
  PositionLoop(ZelBenchTop& bench, DisplayDefaults error, double period)
      : MotionSignals(bench, error),
        TorqueSignals(bench),
        currentLoop(bench, 600, Butterworth),
        clock(bench, period) {}

  ZelLowPass2 currentLoop;
  ZelDController clock;
};

/// What a position controller sees of a sample: the command position moves on with the command
/// velocity, the motor's is read off the encoder, and the feedback velocity is its change.
inline void SampleMotion(PositionLoop& s, double commandVelocity, double period, double linesPerRev,
                         PreviousSample& previousPF) {
  s.pC.Value += commandVelocity * period;
  s.pF.Value = FloorToStep(s.pM.Value, EncoderCount(linesPerRev));
  s.vF.Value = previousPF.Difference(s.pF.Value) / period;
  s.pE.Value = s.pC.Value - s.pF.Value;
}

/// The continuous part of a position loop: the current and the disturbance turn the motor.
inline void RunMotor(PositionLoop& s, double t, double outputInstant, const MotorConstants& motor) {
  s.iF.Value = FollowCurrent(s.currentLoop, s.iC.Value, t, outputInstant);
  s.tE.Value = s.iF.Value * motor.kt.Value();
  s.tM.Value = s.tE.Value + s.tD.Value;
  TurnInertia(s.tM.Value, motor.j.Value(), s.vM, s.pM);
}

}  // namespace torvane
