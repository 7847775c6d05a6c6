#include "cli/names.h"

#include <gtest/gtest.h>

namespace torvane::cli {
namespace {

TEST(NearestName, PrefersABeginningThenAPartThenTheFewestChanges) {
  const std::vector<std::string> names{"5-1 Aliasing", "2-1 PI+ Controller", "6-1 PID Controller",
                                       "Seminar--Analog PI Controller"};
  // Fewer characters lead from "2-1" to "5-1 Aliasing" than to the model that was meant.
  EXPECT_EQ(NearestName("2-1", names), "2-1 PI+ Controller");
  EXPECT_EQ(NearestName("seminar", names), "Seminar--Analog PI Controller");
  EXPECT_EQ(NearestName("pid cont", names), "6-1 PID Controller");
  EXPECT_EQ(NearestName("6-2 PID Controler", names), "6-1 PID Controller");
  EXPECT_EQ(NearestName(std::string(1000000, 'x'), names).empty(), false);
  EXPECT_EQ(NearestName("anything", {}), "");
}

TEST(UnknownName, SuggestsOnlyWhenThereIsAName) {
  EXPECT_STREQ(UnknownName("signal", "vX", {"vC", "pM"}).what(),
               "unknown signal \"vX\"; did you mean \"vC\"?");
  EXPECT_STREQ(UnknownName("constant", "K", {}).what(), "unknown constant \"K\"");
}

}  // namespace
}  // namespace torvane::cli
