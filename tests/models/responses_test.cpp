#include "instruments/analyser/margins.h"
#include "models/loop.h"

namespace torvane {
namespace {

// Those of the open loop, computed from the closed one, against its equation: PI controller, hold,
// current loop and inertia, of which the samples see the change of position. The record's samples
// keep off the loop's own. Other loops stand in tests/data/claims/equations.txt.
TEST(LoopMargins, OfTheOpenLoopAreReadOffTheClosedOne) {
  test::Loop loop("2-1 PI+ Controller");
  loop.Load(
      "Constant,TSample,0.0002\nConstant,KVFR,100\nXfer,MainXFer,InputChannel,vC\n"
      "Xfer,MainXFer,OutputChannel,vF\nXfer,MainXFer,Order,13\nXfer,MainXFer,tStartDelay,0\n"
      "Xfer,MainXFer,tEndDelay,0.5\nXfer,MainXFer,ExAmplitude,2\n"
      "Xfer,MainXFer,tSample,0.0002\n");
  loop.Generate(0.0);
  MarginReader reader;
  const Margins& margins = reader.Read(loop.Measure(), 0, ReadAs::Unity);
  ASSERT_TRUE(margins.SmallestPhaseMargin() && margins.SmallestGainMargin());
  EXPECT_NEAR(margins.SmallestPhaseMargin()->Value, 64.87, 1.0);
  EXPECT_NEAR(margins.SmallestPhaseMargin()->Hz, 59.8, 0.6);
  EXPECT_NEAR(margins.SmallestGainMargin()->Value, 19.24, 0.3);
  EXPECT_NEAR(margins.SmallestGainMargin()->Hz, 483.4, 4.8);
}

// To the bit, on a linear loop at rest: the excitation is the same one, and samples fall on the
// same steps however the sum of the steps rounds.
TEST(Responses, AreTheSameAtAnyStartTime) {
  const auto measured = [](double start) {
    test::Loop loop("3-1 PI Controller");
    loop.Load(
        "Xfer,MainXFer,Order,11\nXfer,MainXFer,tSample,0.00185\nXfer,MainXFer,tEndDelay,0.5\n");
    loop.Bench().SetTime(start);
    const ZelXfer& fft = loop.Measure();
    std::vector<double> response;
    for (int bin = 1; bin <= fft.Length() / 2; ++bin) {
      response.push_back(fft.ResponseGain(0, bin));
      response.push_back(fft.ResponsePhase(0, bin));
    }
    return response;
  };
  const std::vector<double> expected = measured(0.0);
  for (const double start : {4.0, 10.0, 40.0, 1465.0, 10000.0}) {
    EXPECT_EQ(measured(start), expected) << start;
  }
}

}  // namespace
}  // namespace torvane
