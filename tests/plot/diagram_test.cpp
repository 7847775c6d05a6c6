#include "plot/diagram/diagram.h"

#include <cmath>

#include "gtest/gtest.h"

namespace torvane {
namespace {

TEST(DiagramTest, PresentValuesHaveFourDigitsAndLittleRoom) {
  const std::pair<double, const char*> cases[] = {
      {0.0, "0"},           {1e-13, "0"},           {-1.5e-5, "-1.50e-05"},
      {0.001, "0.0010"},    {-0.01234, "-0.0123"},  {0.5, "0.5000"},
      {12.345678, "12.35"}, {-123.44, "-123.4"},    {9999.96, "10000"},
      {99999.0, "99999"},   {-1.25e9, "-1.25e+09"}, {NAN, "-"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(PresentValue(value), text);
}

}  // namespace
}  // namespace torvane
