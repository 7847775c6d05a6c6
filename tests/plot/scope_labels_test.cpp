#include "plot/scope/scope_labels.h"

#include <gtest/gtest.h>

#include "plot/scope/screen_marks.h"
#include "two_traces.h"

namespace torvane {
namespace {

using Texts = std::vector<std::string>;

TEST(ScopeLabelsTest, ValuesAreTheFirstTracesWhereTheChosenOneIsHidden) {
  test::TwoTraces set;
  // A value v is drawn (v + 1) / 2 divisions above the centre.
  EXPECT_EQ(MakeScopeLabels(set.Scope, set.Scope.FindChannel("Hidden")).Left,
            (Texts{"7", "5", "3", "1", "-1", "-3", "-5", "-7", "-9"}));
}

TEST(ScopeLabelsTest, TheTriggersPlaceIsThatOfItsSource) {
  test::TwoTraces set;
  ZelTrigger& trigger = set.Scope.Trigger();
  EXPECT_FALSE(PlaceOfTrigger(set.Scope));  // sweeps follow each other
  trigger.SetMode(SweepMode::Normal);
  trigger.SetLevel(5.0);
  trigger.SetPosition(30.9);
  EXPECT_EQ(PlaceOfTrigger(set.Scope), (TriggerMark{0, 3.0, 0.3}));
  trigger.SetSource(*set.Scope.FindChannel("Hidden"));
  EXPECT_EQ(PlaceOfTrigger(set.Scope), (TriggerMark{-1, 5.0, 0.3}));
  trigger.SetLevel(-1e30);
  EXPECT_EQ(PlaceOfTrigger(set.Scope)->Level, -1e3);
}

TEST(ScopeLabelsTest, FlagsStandApartAsNearToTheirPlacesAsTheyCan) {
  struct Case {
    std::vector<int> Centres;
    std::vector<int> Tops;
  };
  const Case cases[] = {
      {{50}, {45}},
      {{50, 50, 50}, {35, 45, 55}},          // around the place that they share
      {{52, 20, 50}, {51, 15, 41}},          // in the order of their places
      {{0, 1}, {0, 10}},                     // kept inside
      {{99, 99, 78}, {80, 90, 70}},          // a group pushed up meets another one
      {{30, 40, 49, 80}, {24, 34, 44, 75}},  // a chain
  };
  for (const Case& c : cases) EXPECT_EQ(SpreadFlags(c.Centres, 10, 0, 100), c.Tops);
}

// Black or white on the standard colours and on those of the dark theme.
TEST(ScopeColours, TextReadsOnEveryTrace) {
  std::string texts;
  for (const ScopeColours& colours : {ScopeColours::Light(), ScopeColours::Dark()}) {
    for (int index = 0; index < TraceColourCount; ++index) {
      texts += colours.TextOn(index) == QColor(Qt::black) ? 'B' : 'W';
    }
    texts += ' ';
  }
  EXPECT_EQ(texts, "WWWWBWWB BBWBBBBW ");
}

}  // namespace
}  // namespace torvane
