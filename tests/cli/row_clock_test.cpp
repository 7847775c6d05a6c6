#include "cli/row_clock.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane::cli {
namespace {

TEST(NextRowTime, IsTheFirstMultipleAboveTheTime) {
  EXPECT_EQ(NextRowTime(0.0, 0.1), 0.1);
  EXPECT_EQ(NextRowTime(0.05, 0.1), 0.1);
  EXPECT_EQ(NextRowTime(1.0, 0.25), 1.25);
  EXPECT_EQ(NextRowTime(0.9, 1000.0), 1000.0);
}

// The quotient of a multiple and the interval may round to either side of the whole number: no
// multiple may be skipped and none may come twice.
TEST(NextRowTime, VisitsEveryMultipleOnce) {
  for (const double every : {0.1, 0.0004, 1e-5, 1.0 / 3.0, 7.3e-7}) {
    double time = 0.0;
    for (int k = 1; k <= 100000; ++k) {
      time = NextRowTime(time, every);
      ASSERT_EQ(time, k * every) << k;
      ASSERT_EQ(NextRowTime(std::nextafter(time, 0.0), every), time) << k;
    }
  }
}

TEST(NextRowTime, MultiplesTooCloseToTellApartAreDueAtOnce) {
  for (const double every : {1e-30, 5e-324}) {
    EXPECT_EQ(NextRowTime(0.5, every), std::nextafter(0.5, 1.0));
  }
  EXPECT_GT(NextRowTime(0.0, 5e-324), 0.0);
}

}  // namespace
}  // namespace torvane::cli
