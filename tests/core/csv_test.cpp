#include "core/csv.h"

#include <gtest/gtest.h>

#include <array>

namespace torvane {
namespace {

TEST(Csv, QuotesOnlyWhatWouldNotReadBack) {
  EXPECT_EQ(CsvLine({"a b", "1;2", "x,y", "say \"hi\"", "two\nlines", ""}),
            "a b,1;2,\"x,y\",\"say \"\"hi\"\"\",\"two\nlines\",\n");
}

TEST(Csv, NumbersAreShortestInTheirOwnPrecision) {
  const std::array numbers{0.1, -0.0, 1e-5, 100000.0};
  EXPECT_EQ(CsvLine(numbers), "0.1,-0,1e-05,1e+05\n");
  EXPECT_EQ(FormatShortestSingle(0.1F), "0.1");
  EXPECT_EQ(FormatShortestSingle(0.025F * 3.0F), "0.075");
}

}  // namespace
}  // namespace torvane
