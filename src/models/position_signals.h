#pragma once

#include "models/velocity_signals.h"

namespace torvane {

// The signals of a position loop come in two runs, as the cascade registers one more between them.

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

}  // namespace torvane
