#pragma once

#include <cmath>

#include "core/constant.h"
#include "core/numeric.h"
#include "core/variable.h"
#include "library/d_controller.h"
#include "library/low_pass2.h"
#include "models/units.h"

namespace torvane {

// What the drive limits and the controllers of the velocity and position loops have in common.
inline constexpr double CurrentLimit = 20.0;  ///< Amps
inline constexpr double WindUpFactor = 1.2;   ///< the integrator gives way past this much of it
inline constexpr double Butterworth = 0.707;  ///< damping of most second-order blocks

/// Hands a constant's value on when it has changed.
template <class Use>
void HandOn(Constant& constant, Use&& use) {
  if (constant.TakeChanged()) use(constant.Value());
}

/// One count of a quadrature encoder (four counts a line), in radians.
inline double EncoderCount(double linesPerRev) {
  return 1.0 / (4.0 * linesPerRev * RadToRevs);
}

/// When a sampled controller's output reaches the plant: the calculation time, in per cent of the
/// sample period, after the sample at t.
inline double OutputInstant(double t, const Constant& tCalc, const Constant& tSample) {
  return t + 0.01 * tCalc.Value() * tSample.Value();
}

/// A rigid motor: torque turns the inertia.
inline void TurnInertia(double torque, double inertia, StateVariable& velocity,
                        StateVariable& position) {
  velocity.Derivative = torque / inertia;
  position.Derivative = velocity.Value;
}

/// A value and the one of the sample before it.
class PreviousSample {
 public:
  /// Change since the sample before, which is replaced.
  double Difference(double now) {
    const double change = now - value_;
    // A run that overflowed must not carry on into the next one: from a value near the largest
    // number the first difference of that run would overflow again.
    value_ = std::abs(now) < Sane ? now : 0.0;
    return change;
  }

 private:
  static constexpr double Sane = 1e200;
  double value_ = 0.0;
};

/// Limits a continuous PI controller's output to -limit..limit. The integral gives way only when
/// the output passes the wind-up level, which lies above the limit: then the state is set to what
/// would hold the output at that level.
inline double LimitWithAntiWindUp(double output, double error, StateVariable& errorIntegral,
                                  double kp, double ki, double limit, double windUp) {
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
