#include "instruments/fft.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace torvane {

namespace {

// One stage's butterflies of the points a[0 .. span) with b[0 .. span), under one twiddle.
void Butterflies(float* __restrict aRe, float* __restrict aIm, float* __restrict bRe,
                 float* __restrict bIm, std::size_t span, double c, double s) {
  for (std::size_t i = 0; i < span; ++i) {
    const double tRe = bRe[i] * c + bIm[i] * s;
    const double tIm = bIm[i] * c - bRe[i] * s;
    const double xRe = aRe[i];
    const double xIm = aIm[i];
    bRe[i] = static_cast<float>(xRe - tRe);
    bIm[i] = static_cast<float>(xIm - tIm);
    aRe[i] = static_cast<float>(xRe + tRe);
    aIm[i] = static_cast<float>(xIm + tIm);
  }
}

}  // namespace

unsigned ReverseBits(unsigned x, int bits) {
  unsigned reversed = 0;
  for (int i = 0; i < bits; ++i) {
    reversed = (reversed << 1) | (x & 1U);
    x >>= 1;
  }
  return reversed;
}

Fft::Fft(int maxOrder) : maxOrder_(maxOrder), twiddles_(std::size_t{1} << (maxOrder - 1)) {
  const int points = 1 << maxOrder;
  for (std::size_t group = 0; group < twiddles_.size(); ++group) {
    const unsigned m = ReverseBits(static_cast<unsigned>(group), maxOrder - 1);
    const double angle = m * 6.2831852 / points;
    twiddles_[group] = {std::cos(angle), std::sin(angle)};
  }
}

void Fft::Transform(float* re, float* im, int order) const {
  const std::size_t points = std::size_t{1} << order;
  for (std::size_t span = points / 2, groups = 1; span >= 1; span /= 2, groups *= 2) {
    for (std::size_t group = 0; group < groups; ++group) {
      const std::size_t a = 2 * span * group;
      const std::size_t b = a + span;
      Butterflies(re + a, im + a, re + b, im + b, span, twiddles_[group].Cos, twiddles_[group].Sin);
    }
  }
  for (std::size_t i = 0; i < points; ++i) {
    const std::size_t r = ReverseBits(static_cast<unsigned>(i), order);
    if (r <= i) continue;
    std::swap(re[i], re[r]);
    std::swap(im[i], im[r]);
  }
}

}  // namespace torvane
