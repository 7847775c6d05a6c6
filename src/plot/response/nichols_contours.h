#pragma once

#include <array>
#include <vector>

namespace torvane {

/// An open loop at one frequency: dB, and degrees from -360 to 0.
struct OpenLoopPoint {
  double Gain = 0.0;
  double Phase = 0.0;
};

/// Gains of closed loops for which contours are drawn, dB.
inline constexpr std::array ContourGains{0.0, 3.0, -3.0, 6.0, -6.0, 1.0, -12.0, 12.0, -20.0};

/// All open loops L for which |L / (1 + L)| is that gain: a ring about -180 degrees when it is
/// above 0 dB, else a line from one side to the other.
std::vector<OpenLoopPoint> NicholsContour(double closedGain);

/// The contour's point where it is most apart from the others.
OpenLoopPoint ContourLabelPlace(double closedGain);

}  // namespace torvane
