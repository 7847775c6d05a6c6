#pragma once

#include <array>
#include <cfloat>
#include <cstddef>

#if defined(__SSE2_MATH__)
#include <emmintrin.h>
#endif

namespace torvane {

/// The end of a Runge-Kutta step: start + slopeSum h / 6 in extended precision, which the state
/// takes as a double.
class Combine {
 public:
  /// Step h in seconds.
  explicit Combine(double h)
      : h_(h), sixth_(static_cast<double>(static_cast<long double>(h) * (1.0L / 6.0L))) {}

  double operator()(double start, double slopeSum) const {
    return static_cast<double>(Extended(start, slopeSum));
  }

  /// Before the state takes it.
  long double Extended(double start, double slopeSum) const {
    return static_cast<long double>(start) +
           static_cast<long double>(slopeSum) * static_cast<long double>(h_) * (1.0L / 6.0L);
  }

  /// The same of several states at once, to the bit: the sums take the place of the starts.
  /// Extended precision is reached through memory only, which takes a third of a small loop's time,
  /// so the sums are formed in doubles first. Their increment is off by less than 2^-51 of itself;
  /// as rounding is monotonous, that does not matter where an increment a little larger gives the
  /// same sum as one a little smaller. The margin of 2^-62 of the start is for extended precision's
  /// own rounding, and the last one keeps the others from underflow.
  template <std::size_t Count>
  void All(std::array<double, Count>& values, const std::array<double, Count>& slopeSums) const {
    std::size_t i = 0;
#if defined(__SSE2_MATH__) && LDBL_MANT_DIG == 64
    const __m128d magnitude = _mm_castsi128_pd(_mm_set1_epi64x(0x7fffffffffffffff));
    for (; i + 1 < Count; i += 2) {
      const __m128d from = _mm_set_pd(values[i + 1], values[i]);
      const __m128d increment =
          _mm_mul_pd(_mm_set_pd(slopeSums[i + 1], slopeSums[i]), _mm_set1_pd(sixth_));
      const __m128d margin =
          _mm_add_pd(_mm_mul_pd(_mm_and_pd(increment, magnitude), _mm_set1_pd(0x1p-51)),
                     _mm_add_pd(_mm_mul_pd(_mm_and_pd(from, magnitude), _mm_set1_pd(0x1p-62)),
                                _mm_set1_pd(0x1p-960)));
      const __m128d most = _mm_add_pd(from, _mm_add_pd(increment, margin));
      const __m128d least = _mm_add_pd(from, _mm_sub_pd(increment, margin));
      if (_mm_movemask_pd(_mm_cmpneq_pd(most, least)) == 0) [[likely]] {
        const __m128d sum = _mm_add_pd(from, increment);
        values[i] = _mm_cvtsd_f64(sum);
        values[i + 1] = _mm_cvtsd_f64(_mm_unpackhi_pd(sum, sum));
      } else {
        values[i] = (*this)(values[i], slopeSums[i]);
        values[i + 1] = (*this)(values[i + 1], slopeSums[i + 1]);
      }
    }
#endif
    for (; i < Count; ++i) values[i] = (*this)(values[i], slopeSums[i]);
  }

 private:
  double h_;
  double sixth_;
};

}  // namespace torvane
