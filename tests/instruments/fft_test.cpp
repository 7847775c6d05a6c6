#include "instruments/fft/fft.h"

#include <gtest/gtest.h>

#include <cmath>
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

TEST(Fft, TransformsImpulsesAndTones) {
  constexpr int Order = 6;
  constexpr int N = 1 << Order;
  const Fft fft(Order);

  // An impulse at 0 meets only sums with zeros: exact.
  Record impulse{std::vector<float>(N), std::vector<float>(N)};
  impulse.Re[0] = 1.0F;
  fft.Transform(impulse.Re.data(), impulse.Im.data(), Order);
  EXPECT_EQ(impulse.Re, std::vector<float>(N, 1.0F));
  EXPECT_EQ(impulse.Im, std::vector<float>(N, 0.0F));

  // One sample later it turns clockwise with frequency; a tone stands on its bin with N/2 and on
  // the mirrored one. Rounding to single precision at six stages, 6e-8 each of values up to N.
  Record late{std::vector<float>(N), std::vector<float>(N)};
  late.Re[1] = 1.0F;
  Record tone{std::vector<float>(N), std::vector<float>(N)};
  for (std::size_t i = 0; i < N; ++i)
    tone.Re[i] =
        static_cast<float>(std::sin(2.0 * std::numbers::pi * 5.0 * static_cast<double>(i) / N));
  fft.Transform(late.Re.data(), late.Im.data(), Order);
  fft.Transform(tone.Re.data(), tone.Im.data(), Order);
  for (std::size_t k = 0; k < N; ++k) {
    const double angle = 2.0 * std::numbers::pi * static_cast<double>(k) / N;
    EXPECT_NEAR(late.Re[k], std::cos(angle), 1e-6);
    EXPECT_NEAR(late.Im[k], -std::sin(angle), 1e-6);
    EXPECT_NEAR(tone.Re[k], 0.0, 2e-5);
    EXPECT_NEAR(tone.Im[k], k == 5 ? -N / 2.0 : k == N - 5 ? N / 2.0 : 0.0, 2e-5);
  }
}

}  // namespace
}  // namespace torvane
