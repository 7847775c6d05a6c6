#include "plot/response/nichols_contours.h"

#include <cmath>
#include <complex>

#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

// The open loop L = T / (1 - T) of a closed one.
OpenLoopPoint OpenLoop(double closedGain, double closedDegrees) {
  const std::complex<double> closed =
      std::polar(std::pow(10.0, closedGain / 20.0), closedDegrees / DegreesPerRadian);
  const std::complex<double> open = closed / (1.0 - closed);
  const double phase = std::arg(open) * DegreesPerRadian;
  return {GainDb(std::abs(open)), phase > 0.0 ? phase - 360.0 : phase};
}

}  // namespace

std::vector<OpenLoopPoint> NicholsContour(double closedGain) {
  std::vector<OpenLoopPoint> contour;
  // Neither 0 nor 360, where a closed loop of 0 dB has an infinite open one.
  for (double degrees = 0.5; degrees < 360.0; degrees += 1.0) {
    contour.push_back(OpenLoop(closedGain, degrees));
  }
  if (closedGain > 0.0) contour.push_back(contour.front());
  return contour;
}

OpenLoopPoint ContourLabelPlace(double closedGain) {
  constexpr double Beside = 15.0;  // degrees of the closed loop, off the middle of the plot
  return OpenLoop(closedGain, closedGain > 0.0 ? 0.5 : -Beside);
}

}  // namespace torvane
