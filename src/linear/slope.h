#pragma once

#include <Eigen/Core>
#include <functional>

namespace torvane {

/// How what follows from a number changes with it.
struct Slope {
  Eigen::VectorXd Value;      ///< by central difference
  double Step = 0.0;          ///< by which the number was moved to both sides
  double Disagreement = 0.0;  ///< between steps of two sizes, as a part of the slope
  double Bend = 0.0;          ///< between the sides, as a part of the slope
};

/// Tries steps from a `scale` downwards, each beside one a quarter of it, and takes the pair that
/// agrees best: too large a step meets limits, too small a one rounding or a sensor's resolution.
/// `follow` gives what follows when the number is moved by its argument. Entries that are no more
/// than rounding of what they were found from are 0.
Slope FindSlope(const std::function<Eigen::VectorXd(double)>& follow, double scale);

/// By a step of that size alone, without a look at others.
Eigen::VectorXd SlopeAt(const std::function<Eigen::VectorXd(double)>& follow, double step);

}  // namespace torvane
