#pragma once

#include <vector>

namespace torvane {

/// In-place radix-2 Fourier transform of 2^order points in single precision, forward sign, without
/// scaling: X[k] = sum of x[n] e^(-j 6.2831852 k n / N).
///
/// Butterflies are computed in double precision and rounded to single precision after every stage;
/// natural order goes in, the stages leave bit-reversed order, and a permutation puts it right. All
/// butterflies of a group share one twiddle, and the angle of group g is the same number at every
/// stage and for every order: one pair of tables serves all of them. The first transform fills
/// them, as most models never measure one; so one thread at a time may transform.
class Fft {
 public:
  /// For records of up to 2^maxOrder points; maxOrder >= 1.
  explicit Fft(int maxOrder) : maxOrder_(maxOrder) {}

  int MaxOrder() const { return maxOrder_; }

  /// Transforms 2^order points; 1 <= order <= MaxOrder.
  void Transform(float* re, float* im, int order) const;

 private:
  void FillTables() const;

  int maxOrder_;
  // Cosine and sine of each group's angle, in order of groups, which is bit-reversed order of
  // angles.
  mutable std::vector<double> cos_;
  mutable std::vector<double> sin_;
  // The same numbers in natural order of angles, for stages that take several groups side by side:
  // from index n on those of a stage of n groups.
  mutable std::vector<double> naturalCos_;
  mutable std::vector<double> naturalSin_;
};

/// The lowest `bits` bits of x in reverse order.
unsigned ReverseBits(unsigned x, int bits);

}  // namespace torvane
