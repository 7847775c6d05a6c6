#include "instruments/fft/fft.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

#include "core/angle.h"

namespace torvane {

namespace {

// Cosines and sines, as Fft describes its tables.
struct Twiddles {
  const double* Cos;
  const double* Sin;
};

[[gnu::always_inline]] inline void Butterfly(float& aRe, float& aIm, float& bRe, float& bIm,
                                             double c, double s) {
  const double tRe = bRe * c + bIm * s;
  const double tIm = bIm * c - bRe * s;
  const double xRe = aRe;
  const double xIm = aIm;
  bRe = static_cast<float>(xRe - tRe);
  bIm = static_cast<float>(xIm - tIm);
  aRe = static_cast<float>(xRe + tRe);
  aIm = static_cast<float>(xIm + tIm);
}

// One stage of a group: the points a[0 .. span) with b[0 .. span).
[[gnu::always_inline]] inline void Stage(float* __restrict aRe, float* __restrict aIm,
                                         float* __restrict bRe, float* __restrict bIm,
                                         std::size_t span, double c, double s) {
  for (std::size_t i = 0; i < span; ++i) Butterfly(aRe[i], aIm[i], bRe[i], bIm[i], c, s);
}

// Two stages of a group on one way through memory; a, b, c and d are its quarters.
[[gnu::always_inline]] inline void TwoStages(float* __restrict aRe, float* __restrict aIm,
                                             float* __restrict bRe, float* __restrict bIm,
                                             float* __restrict cRe, float* __restrict cIm,
                                             float* __restrict dRe, float* __restrict dIm,
                                             std::size_t length, Twiddles twiddles,
                                             std::size_t group) {
  const double cosine = twiddles.Cos[group];
  const double sine = twiddles.Sin[group];
  const double* const nextCos = twiddles.Cos + 2 * group;
  const double* const nextSin = twiddles.Sin + 2 * group;
  for (std::size_t i = 0; i < length; ++i) {
    Butterfly(aRe[i], aIm[i], cRe[i], cIm[i], cosine, sine);
    Butterfly(bRe[i], bIm[i], dRe[i], dIm[i], cosine, sine);
    Butterfly(aRe[i], aIm[i], bRe[i], bIm[i], nextCos[0], nextSin[0]);
    Butterfly(cRe[i], cIm[i], dRe[i], dIm[i], nextCos[1], nextSin[1]);
  }
}

// Stages from that of a single group down to that of the given span.
[[gnu::always_inline]] inline void Stages(float* re, float* im, std::size_t points,
                                          std::size_t lastSpan, Twiddles twiddles) {
  std::size_t groups = 1;
  std::size_t span = points / 2;
  for (; span >= 2 * lastSpan; span /= 4, groups *= 4) {
    const std::size_t quarter = span / 2;
    for (std::size_t group = 0; group < groups; ++group) {
      float* const a = re + 2 * span * group;
      float* const b = im + 2 * span * group;
      TwoStages(a, b, a + quarter, b + quarter, a + 2 * quarter, b + 2 * quarter, a + 3 * quarter,
                b + 3 * quarter, quarter, twiddles, group);
    }
  }
  if (span < lastSpan) return;
  for (std::size_t group = 0; group < groups; ++group) {
    float* const a = re + 2 * span * group;
    float* const b = im + 2 * span * group;
    Stage(a, b, a + span, b + span, span, twiddles.Cos[group], twiddles.Sin[group]);
  }
}

constexpr int TileBits = 3;
constexpr std::size_t TileSize = std::size_t{1} << TileBits;
constexpr std::array<std::size_t, TileSize> TileReverse = {0, 4, 2, 6, 1, 5, 3, 7};
template <class Number>
using Lanes = std::array<Number, TileSize>;

// Eight runs of eight points that lie `stride` apart, turned about: lane i of place k is point k of
// run TileReverse[i].
struct Tile {
  alignas(64) std::array<Lanes<float>, TileSize> Re;
  alignas(64) std::array<Lanes<float>, TileSize> Im;
};

[[gnu::always_inline]] inline void Read(const float* x, std::size_t stride,
                                        std::array<Lanes<float>, TileSize>& places) {
  using Run [[gnu::vector_size(TileSize * sizeof(float))]] = float;
  std::array<Run, TileSize> tile{};
  for (std::size_t i = 0; i < TileSize; ++i) {
    std::memcpy(&tile[i], x + TileReverse[i] * stride, sizeof(Run));
  }
  // Merging the upper half of the runs into the lower turns the tile about in three rounds.
  for (int round = 0; round < TileBits; ++round) {
    const std::array<Run, TileSize> from = tile;
    for (std::size_t i = 0; i < TileSize / 2; ++i) {
      const Run& a = from[i];
      const Run& b = from[i + TileSize / 2];
      tile[2 * i] = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
      tile[2 * i + 1] = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
    }
  }
  std::memcpy(&places, &tile, sizeof tile);
}

// Writes each place as a run: the tile as the permutation leaves it.
[[gnu::always_inline]] inline void Write(const std::array<Lanes<float>, TileSize>& places, float* x,
                                         std::size_t stride) {
  for (std::size_t run = 0; run < TileSize; ++run) {
    for (std::size_t k = 0; k < TileSize; ++k) x[run * stride + k] = places[TileReverse[run]][k];
  }
}

[[gnu::always_inline]] inline void LaneButterflies(float* __restrict aRe, float* __restrict aIm,
                                                   float* __restrict bRe, float* __restrict bIm,
                                                   const double* __restrict c,
                                                   const double* __restrict s) {
  for (std::size_t i = 0; i < TileSize; ++i) {
    Butterfly(aRe[i], aIm[i], bRe[i], bIm[i], c[i], s[i]);
  }
}

// The last three stages, which stay within the runs. In the first of them there are `groups` groups
// in the record, and the lanes are those whose angles follow upon each other from the `first`.
[[gnu::always_inline]] inline void LastStages(Tile& tile, std::size_t first, std::size_t groups,
                                              Twiddles natural) {
  for (std::size_t span = TileSize / 2, parts = 1; span >= 1; span /= 2, parts *= 2) {
    for (std::size_t part = 0; part < parts; ++part) {
      const std::size_t angle = groups * (parts + TileReverse[part] * parts / TileSize) + first;
      for (std::size_t a = 2 * span * part; a < 2 * span * part + span; ++a) {
        LaneButterflies(tile.Re[a].data(), tile.Im[a].data(), tile.Re[a + span].data(),
                        tile.Im[a + span].data(), natural.Cos + angle, natural.Sin + angle);
      }
    }
  }
}

// Last stages and bit-reversal permutation. Point by point the permutation would hop through memory
// and take as long as the stages. An index is taken as upper three bits, middle and lower three:
// all points of one middle change places with all points of the reversed middle, as tiles. While a
// tile is at hand its runs, which are too short to fill a register, go through their stages side by
// side.
[[gnu::always_inline]] inline void FinishByTiles(float* re, float* im, int order,
                                                 Twiddles natural) {
  const std::size_t stride = std::size_t{1} << (order - TileBits);
  const std::size_t tiles = stride / TileSize;
  const auto take = [&](std::size_t middle, std::size_t reversed, Tile& tile) {
    Read(re + middle * TileSize, stride, tile.Re);
    Read(im + middle * TileSize, stride, tile.Im);
    LastStages(tile, reversed * TileSize, stride, natural);
  };
  const auto put = [&](const Tile& tile, std::size_t middle) {
    Write(tile.Re, re + middle * TileSize, stride);
    Write(tile.Im, im + middle * TileSize, stride);
  };
  Tile tile{};
  Tile other{};
  for (std::size_t middle = 0; middle < tiles; ++middle) {
    const std::size_t reversed = ReverseBits(static_cast<unsigned>(middle), order - 2 * TileBits);
    if (reversed < middle) continue;
    take(middle, reversed, tile);
    if (reversed != middle) {
      take(reversed, middle, other);
      put(other, middle);
    }
    put(tile, reversed);
  }
}

void PermuteShort(float* x, int order) {
  for (unsigned i = 0; i < 1U << order; ++i) {
    const unsigned reversed = ReverseBits(i, order);
    if (reversed > i) std::swap(x[i], x[reversed]);
  }
}

// Compiled for wider registers too; the widest that the processor has are taken when the program
// starts. The operations are the same and so are the bits.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
[[gnu::target_clones("arch=x86-64-v4", "avx2", "default")]]
#endif
void TransformLong(float* re, float* im, int order, Twiddles twiddles,
                   Twiddles natural) {
  Stages(re, im, std::size_t{1} << order, TileSize, twiddles);
  FinishByTiles(re, im, order, natural);
}

void TransformShort(float* re, float* im, int order, Twiddles twiddles) {
  Stages(re, im, std::size_t{1} << order, 1, twiddles);
  PermuteShort(re, order);
  PermuteShort(im, order);
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

void Fft::FillTables() const {
  const int points = 1 << maxOrder_;
  cos_.resize(static_cast<std::size_t>(points) / 2);
  sin_.resize(cos_.size());
  naturalCos_.resize(static_cast<std::size_t>(points));
  naturalSin_.resize(naturalCos_.size());
  for (std::size_t group = 0; group < cos_.size(); ++group) {
    const double m = ReverseBits(static_cast<unsigned>(group), maxOrder_ - 1);
    const double angle = m * TwoPi / points;
    cos_[group] = std::cos(angle);
    sin_[group] = std::sin(angle);
  }
  for (int bits = 0; bits < maxOrder_; ++bits) {
    const std::size_t groups = std::size_t{1} << bits;
    for (std::size_t m = 0; m < groups; ++m) {
      const std::size_t group = ReverseBits(static_cast<unsigned>(m), bits);
      naturalCos_[groups + m] = cos_[group];
      naturalSin_[groups + m] = sin_[group];
    }
  }
}

void Fft::Transform(float* re, float* im, int order) const {
  if (naturalSin_.empty()) FillTables();
  const Twiddles twiddles{cos_.data(), sin_.data()};
  if (order >= 2 * TileBits) {
    TransformLong(re, im, order, twiddles, {naturalCos_.data(), naturalSin_.data()});
  } else {
    TransformShort(re, im, order, twiddles);
  }
}

}  // namespace torvane
