#include "study/tuning.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/text.h"
#include "study/study_fault.h"

namespace torvane::test {
namespace {

std::string FaultOf(const std::string& requirement) {
  try {
    Requirement{requirement};
  } catch (const StudyFault& fault) {
    return fault.what();
  }
  return {};
}

TEST(Requirement, IsAMeasureAndItsBound) {
  RunReadings readings;
  readings.Overshoot = 12.5;
  readings.GainMargin = 6.0;
  const Requirement overshoot(" overshoot < 10");
  EXPECT_EQ(overshoot.Missed(readings), 0.25);
  EXPECT_EQ(overshoot.Text(), "Overshoot < 10 %");
  EXPECT_EQ(overshoot.Found(readings), "Overshoot is 12.5 %");
  EXPECT_TRUE(Requirement("GainMargin>=6").Met(readings));
  EXPECT_EQ(Requirement("Phase Margin > 50").Missed(readings), std::nullopt);
  EXPECT_EQ(Requirement("Phase Margin > 50").Found(readings), "it has no Phase Margin");
  EXPECT_EQ(FaultOf("Overshot<10"), "unknown measure \"Overshot\"; did you mean \"Overshoot\"?");
  for (const char* bad : {"Overshoot", "Overshoot<", "Overshoot<ten", "<3<4"}) {
    EXPECT_EQ(FaultOf(bad), "a requirement is MEASURE<NUMBER or MEASURE>NUMBER, not \"" +
                                std::string(bad) + "\"");
  }
}

// x y is to be as small as it can be over the square from 1 to 10 where x + y is 8 at least: at a
// corner of what is allowed, (1, 7) or (7, 1). Where x < 2 nothing can be measured, which leaves
// (7, 1).
class TuningTest : public testing::Test {
 protected:
  TuningTest() {
    search.Ranges = {{"x", 1, 10, {}, false}, {"y", 1, 10, {}, true}};
    search.Goal = {{Requirement("Delay>8")}, &NamedMeasure("settling")};
    search.Measure = [](const std::vector<std::string>& values) {
      const double x = *ParseNumber(values[0]);
      const double y = *ParseNumber(values[1]);
      Tuning tuning{values, {}};
      if (x < 2.0) return tuning;
      tuning.Readings.Delay = x + y;
      tuning.Readings.Settling = x * y;
      return tuning;
    };
    search.GoOn = [this](int run, const Tuning&) {
      runs = run;
      return run < stopAt;
    };
  }

  TuningSearch search;
  int runs = 0;
  int stopAt = 1000000;
};

TEST_F(TuningTest, FindsTheBestOfWhatIsAllowedTheSameEveryTime) {
  const Tuning best = Tune(search);
  EXPECT_TRUE(search.Goal.Met(best.Readings));
  EXPECT_NEAR(*best.Readings.Settling, 7.0, 0.1);
  EXPECT_LE(runs, search.MostRuns);
  EXPECT_EQ(Tune(search).Values, best.Values);
}

TEST_F(TuningTest, ComesNearestToWhatCannotBe) {
  search.Goal.Requirements.emplace_back("Settling<3");
  const Tuning best = Tune(search);
  EXPECT_EQ(search.Goal.Unmet(best.Readings).size(), 1u);
  EXPECT_TRUE(best.Readings.Settling);
  search.Goal = {{}, &NamedMeasure("Rise")};  // which no run has
  EXPECT_FALSE(search.Goal.Met(Tune(search).Readings));
  // Four digits of a value stay within its range.
  search.Ranges = {{"x", 2.00006, 2.00007, {}, false}, {"y", 1, 10, {}, true}};
  EXPECT_GE(*ParseNumber(Tune(search).Values.front()), 2.00006);
  stopAt = 3;
  Tune(search);
  EXPECT_EQ(runs, 3);
  search.Measure = [](const auto&) -> Tuning { throw StudyFault("gone"); };
  EXPECT_THROW(Tune(search), StudyFault);
}

}  // namespace
}  // namespace torvane::test
