#include "instruments/fft/fft.h"

#include <gtest/gtest.h>

#include <complex>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace torvane {
namespace {

using Signal = std::vector<std::complex<float>>;

// The stages as they are defined: butterfly by butterfly, with its own cosine and sine.
void ReferenceTransform(Signal& x, int order) {
  const unsigned n = 1U << order;
  for (int stage = 0; stage < order; ++stage) {
    const unsigned h = n >> (stage + 1);
    for (unsigned k = 0; k < n; ++k) {
      if (k & h) continue;
      const double angle = ReverseBits(k / (2 * h) * 2, order) * 6.2831852 / n;
      const std::complex<double> a = x[k];
      const std::complex<double> t = std::complex<double>(x[k + h]) * std::polar(1.0, -angle);
      x[k + h] = std::complex<float>(a - t);
      x[k] = std::complex<float>(a + t);
    }
  }
  for (unsigned i = 0; i < n; ++i) {
    if (ReverseBits(i, order) > i) std::swap(x[i], x[ReverseBits(i, order)]);
  }
}

TEST(Fft, IsTheFourierTransformWithTheBitsOfTheStagesAtEveryOrder) {
  const Fft fft(14);
  std::mt19937 random;
  std::uniform_real_distribution<float> uniform(-1.0F, 1.0F);
  for (int order = 1; order <= 14; ++order) {
    std::vector<float> re(1U << order);
    std::vector<float> im(re.size());
    for (float& x : re) x = uniform(random);
    for (float& x : im) x = uniform(random);
    Signal samples;
    for (std::size_t i = 0; i < re.size(); ++i) samples.emplace_back(re[i], im[i]);
    Signal spectrum = samples;
    ReferenceTransform(spectrum, order);
    fft.Transform(re.data(), im.data(), order);
    for (std::size_t k = 0; k < re.size(); ++k) {
      ASSERT_EQ(spectrum[k], std::complex(re[k], im[k])) << k << " at order " << order;
      if (order != 6) continue;
      // Rounding to single precision at six stages, 6e-8 each of values up to the record's length.
      std::complex<double> line;
      for (std::size_t n = 0; n < 64; ++n) {
        line += std::complex<double>(samples[n]) *
                std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(k * n) / 64.0);
      }
      EXPECT_LT(std::abs(std::complex<double>(spectrum[k]) - line), 2e-5) << k;
    }
  }
}

}  // namespace
}  // namespace torvane
