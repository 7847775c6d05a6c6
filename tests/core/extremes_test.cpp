#include "core/extremes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace torvane {
namespace {

// The extremes at each place of rows of odd and even length.
TEST(Extremes, AreFoundWhereverTheyStand) {
  for (std::size_t count = 1; count < 6; ++count) {
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<double>(i) - 2.5;
    do {
      const Extremes extremes = ExtremesOf(values);
      EXPECT_EQ(extremes.Least, -2.5);
      EXPECT_EQ(extremes.Greatest, static_cast<double>(count) - 3.5);
    } while (std::ranges::next_permutation(values).found);
  }
}

}  // namespace
}  // namespace torvane
