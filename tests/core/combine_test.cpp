#include "core/combine.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace torvane {
namespace {

// All at once and one by one, where doubles and extended precision part: at sums near the middle
// between two doubles, increments as large as what they are added to, and both ends of the range.
TEST(Combine, OfSeveralStatesIsThatOfEach) {
  std::mt19937_64 random(1);
  const auto anyBits = [&random] { return std::bit_cast<double>(random()); };
  const auto nearMiddle = [&random](double from, double h) {
    const double gap = std::nextafter(from, HUGE_VAL) - from;
    const double off = (static_cast<double>(random() % 9) - 4.0) * 0x1p-66 * from +
                       static_cast<double>(random() % 2) * 0.375 * from;
    return (static_cast<double>(random() % 9) * 0.5 * gap + off) * 6.0 / h;
  };
  for (int i = 0; i < 200000; ++i) {
    const double h =
        i % 3 == 0 ? 1e-5 : std::ldexp(1.0 + 0x1p-64 * static_cast<double>(random()), -(i % 30));
    const Combine combine(h);
    const double some = std::ldexp(1.0 + 1e-19 * static_cast<double>(random() >> 1), i % 80 - 40);
    const double tiny = std::ldexp(some, -1000);
    const std::array<double, 3> start{some, i % 2 == 0 ? tiny : anyBits(), -some};
    const std::array<double, 3> slopes{i % 4 == 0 ? -start[0] * 6.0 / h : nearMiddle(start[0], h),
                                       i % 2 == 0 ? std::ldexp(tiny / h, -(i % 49)) : anyBits(),
                                       some};
    auto all = start;
    combine.All(all, slopes);
    for (const std::size_t k : {0, 1, 2}) {
      const double alone = combine(start[k], slopes[k]);
      ASSERT_TRUE(std::bit_cast<std::uint64_t>(all[k]) == std::bit_cast<std::uint64_t>(alone) ||
                  (std::isnan(all[k]) && std::isnan(alone)))
          << std::hexfloat << start[k] << ' ' << slopes[k] << ' ' << h;
    }
  }
}

}  // namespace
}  // namespace torvane
