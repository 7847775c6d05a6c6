#include "kit/position_loop.h"

namespace torvane {

std::vector<Signal> PositionSignals(PositionLoop& s, const std::string& velocityError,
                                    DisplayDefaults positionError,
                                    const std::vector<Signal>& more) {
  std::vector<Signal> signals{
      {s.vPC, "vPC", "RPM", Shown(20, 0, RadToRpm), "Velocity of the position command"}};
  signals.insert(signals.end(), more.begin(), more.end());
  const std::vector<Signal> rest{
      {s.vM, "vM", "RPM", Hidden(20, RadToRpm), "Motor velocity"},
      {s.vE, "vE", "RPM", Hidden(20, RadToRpm), velocityError},
      {s.vF, "vF", "RPM", Shown(20, 0, RadToRpm), "Feedback velocity: what the controller is told"},
      {s.pM, "pM", "Revs", Hidden(0.02, RadToRevs), "Motor position"},
      {s.pF, "pF", "Revs", Hidden(0.02, RadToRevs), "Feedback position, as sampled"},
      {s.pC, "pC", "Revs", Hidden(0.02, RadToRevs), "Position command"},
      {s.pE, "pE", "Revs", positionError, "Position error"},
      {s.iC, "iC", "Amps", Hidden(5), "Current command: what the controller asks for"},
      {s.iF, "iF", "Amps", Hidden(5), "Current feedback: the current that flows"},
      {s.tD, "tD", "Nm", Hidden(2), "Disturbance torque"},
      {s.tM, "tM", "Nm", Hidden(5), "Torque that turns the motor"},
      {s.tE, "tE", "Nm", Hidden(5), "Torque of the current alone: KT iF"},
  };
  signals.insert(signals.end(), rest.begin(), rest.end());
  return signals;
}

}  // namespace torvane
