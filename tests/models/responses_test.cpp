#include "instruments/analyser/margins.h"
#include "models/loop.h"

namespace torvane {
namespace {

// Those of the open loop, computed from the closed one, against its equation: PI controller, hold,
// current loop and inertia, of which the samples see the change of position. Other loops stand in
// tests/data/claims/equations.txt.
TEST(LoopMargins, OfTheOpenLoopAreReadOffTheClosedOne) {
  test::Loop loop("2-1 PI+ Controller");
  // The loop is sampled when the records are, a hair early as those, so that no rounding of the
  // time moves a sample by a step.
  loop.Load(
      "Constant,TSample,0.0001999999998\nConstant,KVFR,100\nXfer,MainXFer,InputChannel,vC\n"
      "Xfer,MainXFer,OutputChannel,vF\nXfer,MainXFer,Order,13\nXfer,MainXFer,tStartDelay,0\n"
      "Xfer,MainXFer,tEndDelay,0.5\nXfer,MainXFer,ExAmplitude,2\n"
      "Xfer,MainXFer,tSample,0.0001999999998\n");
  loop.Generate(0.0);
  loop.Run(2.5 * loop.Model().Solver().Step());
  MarginReader reader;
  const Margins& margins = reader.Read(loop.Measure(), 0, true);
  ASSERT_TRUE(margins.SmallestPhaseMargin() && margins.SmallestGainMargin());
  EXPECT_NEAR(margins.SmallestPhaseMargin()->Value, 64.87, 1.0);
  EXPECT_NEAR(margins.SmallestPhaseMargin()->Hz, 59.8, 0.6);
  EXPECT_NEAR(margins.SmallestGainMargin()->Value, 19.24, 0.3);
  EXPECT_NEAR(margins.SmallestGainMargin()->Hz, 483.4, 4.8);
}

}  // namespace
}  // namespace torvane
