#include "plot/scope_labels.h"

#include <gtest/gtest.h>

#include "two_traces.h"

namespace torvane {
namespace {

using test::TwoTraces;
using Texts = std::vector<std::string>;

TEST(ScopeLabelsTest, TheLegendNamesShownTracesAndTheHorizontalAxis) {
  TwoTraces set;
  EXPECT_EQ(ScopeLegend(set.Scope), (std::vector<LegendEntry>{{"Command 2 volts/div (Off: 1)", 0},
                                                              {"Speed 5/div (Off: 0)", 1},
                                                              {"[Horiz]: Time 0.01 sec/div", -1}}));
  set.Scope.SetDisplayed(*set.Scope.FindChannel("Command"), false);
  EXPECT_EQ(ScopeLegend(set.Scope)[0], (LegendEntry{"Speed 5/div (Off: 0)", 0}));
  set.Scope.SetHorizontalChannel(*set.Scope.FindChannel("Hidden"));
  EXPECT_EQ(ScopeLegend(set.Scope)[1].Text, "[Horiz]: Hidden 1/div (Off: 0)");
}

TEST(ScopeLabelsTest, DivisionLinesAreLabelledInDisplayedUnits) {
  TwoTraces set;
  const ScopeLabels labels = MakeScopeLabels(set.Scope, nullptr);
  EXPECT_EQ(labels.LeftColour, 0);
  // A value v is drawn (v + 1) / 2 divisions above the centre.
  EXPECT_EQ(labels.Left, (Texts{"7", "5", "3", "1", "-1", "-3", "-5", "-7", "-9"}));
  EXPECT_EQ(labels.Bottom, (Texts{"0", "0.01", "0.02", "0.03", "0.04", "0.05", "0.06", "0.07",
                                  "0.08", "0.09", "0.1"}));
}

TEST(ScopeLabelsTest, TheLeftAxisBelongsToTheReferenceWhenThatIsShown) {
  TwoTraces set;
  EXPECT_EQ(MakeScopeLabels(set.Scope, set.Scope.FindChannel("Speed")).LeftColour, 1);
  EXPECT_EQ(MakeScopeLabels(set.Scope, set.Scope.FindChannel("Hidden")).LeftColour, 0);
  for (const char* name : {"Command", "Speed"}) {
    set.Scope.SetDisplayed(*set.Scope.FindChannel(name), false);
  }
  EXPECT_TRUE(MakeScopeLabels(set.Scope, nullptr).Left.empty());
}

TEST(ScopeLabelsTest, MarksTellZerosAndTheTriggersPlace) {
  TwoTraces set;
  const ScopeLabels labels = MakeScopeLabels(set.Scope, nullptr);
  EXPECT_EQ(labels.Axis, "Command [volts]");
  // Offset 1 at a scale of 2.
  EXPECT_EQ(labels.Traces, (std::vector<TraceMark>{{0, 0, "Command", 0.5}, {2, 1, "Speed", 0.0}}));
  ZelTrigger& trigger = set.Scope.Trigger();
  trigger.SetMode(SweepMode::Normal);
  trigger.SetLevel(5.0);
  trigger.SetPosition(30.9);
  EXPECT_EQ(PlaceOfTrigger(set.Scope), (TriggerMark{0, 3.0, 0.3}));
  trigger.SetSource(*set.Scope.FindChannel("Hidden"));
  EXPECT_EQ(PlaceOfTrigger(set.Scope), (TriggerMark{-1, 5.0, 0.3}));
  trigger.SetMode(SweepMode::Cont);
  EXPECT_FALSE(PlaceOfTrigger(set.Scope));
}

TEST(ScopeLabelsTest, ASignalAsXAxisIsLabelledFromTheCentre) {
  TwoTraces set;
  ZelChannel& speed = *set.Scope.FindChannel("Speed");
  set.Scope.SetHorizontalChannel(speed);
  set.Scope.SetHorizontalOffset(speed, -0.5);
  const Texts bottom = MakeScopeLabels(set.Scope, nullptr).Bottom;
  EXPECT_EQ(bottom.front(), "-24.5");
  EXPECT_EQ(bottom[5], "0.5");
}

}  // namespace
}  // namespace torvane
