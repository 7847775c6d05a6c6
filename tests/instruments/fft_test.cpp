#include "instruments/fft/fft.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

namespace torvane {
namespace {

struct Record {
  std::vector<float> Re;
  std::vector<float> Im;
};

Record RandomRecord(int order) {
  std::mt19937 random(static_cast<unsigned>(order));
  std::uniform_real_distribution<float> uniform(-1.0F, 1.0F);
  Record record;
  for (int i = 0; i < 1 << order; ++i) {
    record.Re.push_back(uniform(random));
    record.Im.push_back(uniform(random));
  }
  return record;
}

// The stages as they are defined: butterfly by butterfly, with its own cosine and sine.
void ReferenceTransform(Record& x, int order) {
  const int n = 1 << order;
  for (int stage = 0; stage < order; ++stage) {
    const int h = n >> (stage + 1);
    for (int k = 0; k < n; ++k) {
      if (k & h) continue;
      const int group = k / (2 * h) * (2 * h);
      const unsigned m = ReverseBits(static_cast<unsigned>(group >> (order - 1 - stage)), order);
      const double angle = m * 6.2831852 / n;
      const auto a = static_cast<std::size_t>(k);
      const auto b = static_cast<std::size_t>(k + h);
      const double tRe = x.Re[b] * std::cos(angle) + x.Im[b] * std::sin(angle);
      const double tIm = x.Im[b] * std::cos(angle) - x.Re[b] * std::sin(angle);
      const double aRe = x.Re[a];
      const double aIm = x.Im[a];
      x.Re[b] = static_cast<float>(aRe - tRe);
      x.Im[b] = static_cast<float>(aIm - tIm);
      x.Re[a] = static_cast<float>(aRe + tRe);
      x.Im[a] = static_cast<float>(aIm + tIm);
    }
  }
  for (unsigned i = 0; i < static_cast<unsigned>(n); ++i) {
    const unsigned r = ReverseBits(i, order);
    if (r <= i) continue;
    std::swap(x.Re[i], x.Re[r]);
    std::swap(x.Im[i], x.Im[r]);
  }
}

TEST(Fft, HasTheBitsOfTheStagesAtEveryOrder) {
  const Fft fft(14);
  for (int order = 1; order <= 14; ++order) {
    Record expected = RandomRecord(order);
    Record record = expected;
    ReferenceTransform(expected, order);
    fft.Transform(record.Re.data(), record.Im.data(), order);
    const std::size_t size = record.Re.size() * sizeof(float);
    EXPECT_EQ(std::memcmp(record.Re.data(), expected.Re.data(), size), 0) << "order " << order;
    EXPECT_EQ(std::memcmp(record.Im.data(), expected.Im.data(), size), 0) << "order " << order;
  }
}

// Rounding to single precision at six stages, 6e-8 each of values up to the record's length.
TEST(Fft, IsTheFourierTransform) {
  constexpr int Order = 6;
  constexpr std::size_t N = 1 << Order;
  const Record samples = RandomRecord(Order);
  Record spectrum = samples;
  Fft(Order).Transform(spectrum.Re.data(), spectrum.Im.data(), Order);
  for (std::size_t k = 0; k < N; ++k) {
    std::complex<double> line;
    for (std::size_t n = 0; n < N; ++n) {
      line += std::complex<double>(samples.Re[n], samples.Im[n]) *
              std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(k * n) / N);
    }
    EXPECT_NEAR(spectrum.Re[k], line.real(), 2e-5) << k;
    EXPECT_NEAR(spectrum.Im[k], line.imag(), 2e-5) << k;
  }
}

}  // namespace
}  // namespace torvane
