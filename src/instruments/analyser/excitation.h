#pragma once

#include <array>
#include <cstdint>

namespace torvane {

/// Pseudo-random sequence state := (7141 state + 54773) mod 259200, from 0 after each restart.
class RandomSequence {
 public:
  static constexpr std::int32_t Modulus = 259200;

  void Restart() { state_ = 0; }
  std::int32_t State() const { return state_; }

  /// The next value, uniform over offset +- amplitude / 2.
  double Uniform(double amplitude, double offset);
  /// The next value, offset + amplitude or offset - amplitude: twice the swing of Uniform, kept on
  /// purpose.
  double Binary(double amplitude, double offset);

 private:
  void Advance();

  std::int32_t state_ = 0;
};

/// Eighth-order low-pass run once a sample: four sections
///   y = b0 x - a1 y1 - a2 y2, b0 = 1 + a1 + a2, a2 = e^(-2 zeta w),
///   a1 = -2 e^(-zeta w) sin(sqrt(1 - zeta^2) w)
/// with w = 0.1953125 of the sample rate in radians and the dampings of an eighth-order Butterworth
/// filter. The sine (not the cosine of a matched resonance) is this filter's own. The memory is
/// never cleared: a record goes on from the one before.
class SmoothingFilter {
 public:
  SmoothingFilter();

  double Step(double x);

 private:
  struct Section {
    double B0 = 0.0;
    double A1 = 0.0;
    double A2 = 0.0;
    double Y1 = 0.0;
    double Y2 = 0.0;
  };

  std::array<Section, 4> sections_;
};

}  // namespace torvane
