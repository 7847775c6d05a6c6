#pragma once

namespace torvane {

/// Output limit with anti-wind-up that the sampled controllers share. Both comparisons are strict.
struct DOutputLimit {
  double Limit;         ///< L, in output units
  double WindUpFactor;  ///< F: the integrator gives way when the output passes L * F

  /// Limits the controller output u to -L..L and brings the integrator back to what would give
  /// L * F together with the error alone: derivative and feed-forward stay out of the balance on
  /// purpose. With no integral gain the integrator is 0.
  double Apply(double u, double error, double kVI, double kVP, double& integrator) const {
    const double windUp = Limit * WindUpFactor;
    if (kVI == 0.0) {
      integrator = 0.0;
    } else if (kVP != 0.0) {  // without proportional gain the integrator cannot reach the output
      if (u > windUp) {
        integrator = windUp / kVP - error;
      } else if (u < -windUp) {
        integrator = -windUp / kVP - error;
      }
    }
    if (u > Limit) return Limit;
    if (u < -Limit) return -Limit;
    return u;
  }
};

}  // namespace torvane
