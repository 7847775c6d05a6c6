#pragma once

#include <vector>

namespace torvane {

/// In-place radix-2 Fourier transform of 2^order points in single precision, forward sign, without
/// scaling: X[k] = sum of x[n] e^(-j 6.2831852 k n / N).
///
/// Butterflies are computed in double precision and rounded to single precision after every stage.
/// One table of twiddles, in bit-reversed order, serves every order up to the largest: the angle of
/// group g is the same number for all of them.
class Fft {
 public:
  /// Builds the table for records of up to 2^maxOrder points.
  explicit Fft(int maxOrder);

  int MaxOrder() const { return maxOrder_; }

  /// Transforms 2^order points, natural order in and out; 1 <= order <= MaxOrder.
  void Transform(float* re, float* im, int order) const;

 private:
  struct Twiddle {
    double Cos;
    double Sin;
  };

  int maxOrder_;
  std::vector<Twiddle> twiddles_;
};

/// The lowest `bits` bits of x in reverse order.
unsigned ReverseBits(unsigned x, int bits);

}  // namespace torvane
