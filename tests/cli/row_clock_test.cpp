#include "cli/row_clock.h"

#include <gtest/gtest.h>

#include <cmath>

namespace torvane::cli {
namespace {

// The quotient of a multiple and the interval may round to either side of the whole number: no
// multiple may be skipped and none may come twice, also where a sum of steps stops just short of
// it.
TEST(NextRowTime, VisitsEveryMultipleOnce) {
  EXPECT_EQ(NextRowTime(0.05, 0.1, 0.0), 0.1);
  EXPECT_EQ(NextRowTime(0.9, 1000.0, 0.0), 1000.0);
  for (const double every : {0.1, 0.0004, 1e-5, 1.0 / 3.0, 7.3e-7}) {
    for (const double tolerance : {0.0, 1e-9}) {
      double time = 0.0;
      for (int k = 1; k <= 100000; ++k) {
        const double due = NextRowTime(time, every, tolerance);
        ASSERT_EQ(due, k * every - tolerance) << k;
        ASSERT_EQ(NextRowTime(std::nextafter(due - 0.5 * tolerance, 0.0), every, tolerance), due)
            << k;
        time = due + 0.5 * tolerance;
      }
    }
  }
}

TEST(NextRowTime, MultiplesTooCloseToTellApartAreDueAtOnce) {
  for (const double every : {1e-30, 5e-324}) {
    EXPECT_EQ(NextRowTime(0.5, every, 0.0), std::nextafter(0.5, 1.0));
    EXPECT_GT(NextRowTime(0.5, every, 1e-11), 0.5);
  }
  EXPECT_GT(NextRowTime(0.0, 5e-324, 0.0), 0.0);
}

}  // namespace
}  // namespace torvane::cli
