#pragma once

#include <cmath>
#include <string>

#include "core/carried.h"
#include "core/constant.h"
#include "core/numeric.h"
#include "core/variable.h"
#include "kit/units.h"
#include "library/d_controller.h"
#include "library/low_pass2.h"

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

/// Current loop and sampling of a drive.
struct DriveConstants {
  explicit DriveConstants(ZelBenchTop& bench, double calculationPercent = 65)
      : cLoop(bench, "CLoop", "Hz", Adjustable(800, 100, 10000), "Bandwidth of the current loop"),
        tSample(bench, "TSample", "Sec", Adjustable(0.00025, 0.0001, 100),
                "Time between two samples"),
        tCalc(bench, "TCalc", "%", Adjustable(calculationPercent, 0, 95),
              "Delay from a sample to the new current command, as a part of TSample") {}

  void HandOnChanges(ControllerClock& clock, LowPass2& currentLoop) {
    HandOn(tSample, [&](double period) { clock.SetPeriod(period); });
    HandOn(cLoop, [&](double hz) { currentLoop.SetFrequency(hz); });
  }

  /// When a sampled controller's output reaches the plant: the calculation time after the sample
  /// at t.
  double OutputInstant(double t) const { return t + 0.01 * tCalc.Value() * tSample.Value(); }

  Constant cLoop;
  Constant tSample;
  Constant tCalc;
};

/// A motor and its load.
struct MotorConstants {
  explicit MotorConstants(ZelBenchTop& bench, const std::string& torquePerAmp = "Nm/Amp",
                          double largestKt = 10, double largestJ = 1)
      : kt(bench, "KT", torquePerAmp, Adjustable(1, 0.1, largestKt),
           "Torque constant of the motor"),
        j(bench, "J", "kg-m^2", Adjustable(0.002, 1e-6, largestJ), "Inertia of motor and load") {}

  Constant kt;
  Constant j;
};

/// One count of a quadrature encoder (four counts a line), in radians.
inline double EncoderCount(double linesPerRev) {
  return 1.0 / (4.0 * linesPerRev * RadToRevs);
}

/// The current that follows a sampled controller's output, which reaches the current loop at its
/// instant.
inline double FollowCurrent(LowPass2& currentLoop, double command, double t, double outputInstant) {
  if (t >= outputInstant) [[likely]] {
    currentLoop.SetInput(command);
  }
  return currentLoop.Output();
}

/// A rigid motor: torque turns the inertia.
inline void TurnInertia(double torque, double inertia, State& velocity, State& position) {
  velocity.Derivative = torque / inertia;
  position.Derivative = velocity;
}

// Class memory: what a model remembers of its last sample (PreviousSample, the instant of the last
// output and the like) is kept once for the class in each thread and for the life of that, on
// purpose. A new model or a reset goes on from what was seen last.

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

  void Carry(Carried& carried) { carried.Number(value_); }

 private:
  static constexpr double Sane = 1e200;
  double value_ = 0.0;
};

/// Limits a continuous PI controller's output to -limit..limit. The integral gives way only when
/// the output passes the wind-up level, which lies above the limit: then the state is set to what
/// would hold the output at that level.
inline double LimitWithAntiWindUp(double output, double error, State& errorIntegral, double kp,
                                  double ki, double limit, double windUp) {
  if (output > limit) {
    if (ki > 0.0 && output > windUp) {
      const double bound = (windUp / kp - error) / ki;
      if (errorIntegral > bound) errorIntegral.SetPending(bound);
    }
    return limit;
  }
  if (output < -limit) {
    if (ki > 0.0 && output < -windUp) {
      const double bound = (-windUp / kp - error) / ki;
      if (errorIntegral < bound) errorIntegral.SetPending(bound);
    }
    return -limit;
  }
  return output;
}

}  // namespace torvane
