#include "library/friction.h"

#include <gtest/gtest.h>

namespace torvane {
namespace {

// All numbers are exact in binary, so the tie-breaks are met to the bit. Each table is walked in
// both directions: friction has no preferred one.
struct Visit {
  double Position;
  double Velocity;
  double Torque;
};

void Walk(const FrictionSettings& settings, std::initializer_list<Visit> visits) {
  for (const double sign : {1.0, -1.0}) {
    ZelFricCalc friction(settings);
    int index = 0;
    for (const Visit& visit : visits) {
      EXPECT_EQ(friction.Friction(sign * visit.Position, sign * visit.Velocity),
                sign * visit.Torque)
          << "visit " << index << " in direction " << sign;
      ++index;
    }
  }
}

TEST(FrictionTest, SticksBreaksAwaySlidesAndReverses) {
  Walk({.TC = 2.0, .TS = 4.0, .PS = 0.5},
       {{0.25, 0.0, -2.0},    // half of the travel, half of the breakaway torque
        {0.25, 9.0, -2.0},    // velocity does not matter while stuck
        {0.5, 1.0, -4.0},     // the very edge still holds
        {0.75, 1.0, -2.0},    // breakaway drops to the sliding torque
        {1.0, 1.0, -2.0},     // sliding
        {1.0, 0.0, -2.0},     // velocity 0 sticks, with the torque it had; anchor at 0.75
        {1.125, 1.0, -3.0},   // stuck again: the spring goes on from there
        {0.75, -1.0, 0.0},    // relaxed at the anchor
        {0.25, -1.0, 4.0},    // the other edge
        {0.125, -1.0, 2.0},   // sliding backwards
        {-1.0, -1.0, 2.0},    //
        {-1.0, 1.0, 2.0},     // a velocity that has turned sticks first; anchor at -0.75
        {-0.625, 1.0, -1.0}}  //
  );
}

TEST(FrictionTest, UsesTheFullTravelWhenBreakawayIsNotAboveSliding) {
  Walk({.TC = 4.0, .TS = 2.0, .PS = 0.5},
       {{0.25, 0.0, -2.0}, {1.0, 1.0, -4.0}, {1.0, -1.0, -4.0}, {0.75, -1.0, -2.0}});
  Walk({.TC = 3.0, .TS = 3.0, .PS = 0.5},
       {{0.5, 0.0, -3.0}, {1.0, 1.0, -3.0}, {1.0, 0.0, -3.0}, {0.75, -1.0, -1.5}});
  Walk({.TC = 0.0, .TS = 4.0, .PS = 0.5},  // sticks relaxed, as it slid without torque
       {{1.0, 1.0, 0.0}, {1.0, 0.0, 0.0}, {1.25, 0.0, -2.0}});
  Walk({.TC = 0.0, .TS = 0.0, .PS = 0.5},
       {{0.25, 1.0, 0.0}, {3.0, 1.0, 0.0}, {3.0, -1.0, 0.0}, {-9.0, -1.0, 0.0}});
}

}  // namespace
}  // namespace torvane
