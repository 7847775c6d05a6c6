#include "models/loop_parts.h"

namespace torvane {

double LimitWithAntiWindUp(double output, double error, StateVariable& errorIntegral, double kp,
                           double ki, double limit, double windUp) {
  if (output > limit) {
    if (ki > 0.0 && output > windUp) {
      const double bound = (windUp / kp - error) / ki;
      if (errorIntegral.Value > bound) errorIntegral.SetPending(bound);
    }
    return limit;
  }
  if (output < -limit) {
    if (ki > 0.0 && output < -windUp) {
      const double bound = (-windUp / kp - error) / ki;
      if (errorIntegral.Value < bound) errorIntegral.SetPending(bound);
    }
    return -limit;
  }
  return output;
}

}  // namespace torvane
