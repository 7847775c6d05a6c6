#include "kit/velocity_loop.h"

namespace torvane {

std::vector<Signal> VelocitySignals(VelocityLoop& s, double rpm, DisplayDefaults current) {
  return {
      {s.vC, "vC", "RPM", Shown(rpm, 0, RadToRpm), "Command velocity"},
      {s.vM, "vM", "RPM", Hidden(rpm, RadToRpm), "Motor velocity"},
      {s.vE, "vE", "RPM", Hidden(rpm, RadToRpm), "Velocity error: what the controller works on"},
      {s.vF, "vF", "RPM", Shown(rpm, 0, RadToRpm),
       "Feedback velocity: what the controller is told"},
      {s.pM, "pM", "Revs", Hidden(0.01, RadToRevs), "Motor position"},
      {s.pF, "pF", "Revs", Hidden(0.01, RadToRevs), "Feedback position, as sampled"},
      {s.iC, "iC", "Amps", current, "Current command: what the controller asks for"},
      {s.iF, "iF", "Amps", Hidden(5), "Current feedback: the current that flows"},
      {s.tM, "tM", "Nm", Hidden(5), "Torque that turns the motor"},
  };
}

}  // namespace torvane
