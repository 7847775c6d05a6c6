#pragma once

namespace torvane {

/// The part of the complex plane that a Nyquist plot shows.
struct NyquistWindow {
  static constexpr int Divisions = 8;  ///< across the shorter side

  double Scale = 0.0;  ///< of a division; 0 for one that fits the traces
  /// The point in the middle.
  double Real = 0.0;
  double Imaginary = 0.0;

  bool operator==(const NyquistWindow&) const = default;
};

}  // namespace torvane
