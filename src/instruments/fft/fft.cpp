#include "instruments/fft/fft.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace torvane {

namespace {

// Butterflies of the points a[0 .. span) with b[0 .. span), which share one twiddle.
inline void Group(float* __restrict aRe, float* __restrict aIm, float* __restrict bRe,
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

// A whole stage of groups too short to fill a register: with the span known to the compiler,
// several groups go side by side.
template <std::size_t Span>
inline void ShortGroups(float* __restrict re, float* __restrict im, const double* __restrict c,
                        const double* __restrict s, std::size_t groups) {
  for (std::size_t group = 0; group < groups; ++group) {
    float* const a = re + 2 * Span * group;
    float* const b = im + 2 * Span * group;
    for (std::size_t i = 0; i < Span; ++i) {
      const double tRe = a[Span + i] * c[group] + b[Span + i] * s[group];
      const double tIm = b[Span + i] * c[group] - a[Span + i] * s[group];
      const double xRe = a[i];
      const double xIm = b[i];
      a[Span + i] = static_cast<float>(xRe - tRe);
      b[Span + i] = static_cast<float>(xIm - tIm);
      a[i] = static_cast<float>(xRe + tRe);
      b[i] = static_cast<float>(xIm + tIm);
    }
  }
}

// Compiled for wider registers too; the widest that the processor has are taken when the program
// starts. The operations are the same and so are the bits.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
[[gnu::target_clones("arch=x86-64-v4", "avx2", "default")]]
#endif
void Stages(float* re, float* im, const double* c, const double* s, std::size_t points) {
  std::size_t span = points / 2;
  for (std::size_t groups = 1; span >= 8; span /= 2, groups *= 2) {
    for (std::size_t group = 0; group < groups; ++group) {
      float* const a = re + 2 * span * group;
      float* const b = im + 2 * span * group;
      Group(a, b, a + span, b + span, span, c[group], s[group]);
    }
  }
  if (points >= 8) ShortGroups<4>(re, im, c, s, points / 8);
  if (points >= 4) ShortGroups<2>(re, im, c, s, points / 4);
  ShortGroups<1>(re, im, c, s, points / 2);
}

constexpr int TileBits = 3;
constexpr std::size_t TileSize = std::size_t{1} << TileBits;
constexpr std::array<std::size_t, TileSize> TileReverse = {0, 4, 2, 6, 1, 5, 3, 7};
using Tile = std::array<float, TileSize * TileSize>;

// Reads eight runs of eight points, `stride` apart, as they stand after the permutation.
void ReadTile(const float* x, std::size_t stride, Tile& tile) {
  for (std::size_t row = 0; row < TileSize; ++row) {
    for (std::size_t column = 0; column < TileSize; ++column) {
      tile[TileReverse[column] * TileSize + TileReverse[row]] = x[row * stride + column];
    }
  }
}

void WriteTile(float* x, std::size_t stride, const Tile& tile) {
  for (std::size_t row = 0; row < TileSize; ++row) {
    for (std::size_t column = 0; column < TileSize; ++column) {
      x[row * stride + column] = tile[row * TileSize + column];
    }
  }
}

// Bit-reversal permutation. Point by point it would hop through memory and mispredict every other
// branch, and take as long as the stages. An index is taken as upper three bits, middle and lower
// three: all points of one middle change places with all points of the reversed middle, as tiles.
void Permute(float* x, int order) {
  const std::size_t stride = std::size_t{1} << (order - TileBits);
  Tile tile;
  Tile other;
  for (std::size_t middle = 0; middle < stride / TileSize; ++middle) {
    const std::size_t reversed = ReverseBits(static_cast<unsigned>(middle), order - 2 * TileBits);
    if (reversed < middle) continue;
    float* const from = x + middle * TileSize;
    float* const to = x + reversed * TileSize;
    ReadTile(from, stride, tile);
    if (reversed != middle) {
      ReadTile(to, stride, other);
      WriteTile(from, stride, other);
    }
    WriteTile(to, stride, tile);
  }
}

void PermuteShort(float* x, int order) {
  for (unsigned i = 0; i < 1U << order; ++i) {
    const unsigned reversed = ReverseBits(i, order);
    if (reversed > i) std::swap(x[i], x[reversed]);
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

Fft::Fft(int maxOrder)
    : maxOrder_(maxOrder),
      cos_(std::size_t{1} << (maxOrder - 1)),
      sin_(std::size_t{1} << (maxOrder - 1)) {
  const int points = 1 << maxOrder;
  for (std::size_t group = 0; group < cos_.size(); ++group) {
    const double m = ReverseBits(static_cast<unsigned>(group), maxOrder - 1);
    const double angle = m * 6.2831852 / points;
    cos_[group] = std::cos(angle);
    sin_[group] = std::sin(angle);
  }
}

void Fft::Transform(float* re, float* im, int order) const {
  Stages(re, im, cos_.data(), sin_.data(), std::size_t{1} << order);
  for (float* x : {re, im}) {
    if (order >= 2 * TileBits) {
      Permute(x, order);
    } else {
      PermuteShort(x, order);
    }
  }
}

}  // namespace torvane
