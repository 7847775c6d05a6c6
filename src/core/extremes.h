#pragma once

#include <span>

namespace torvane {

/// The ends of a range.
struct Extremes {
  double Least;
  double Greatest;
};

/// The least and the greatest of values, of which there is one at least. What is not a number is
/// passed over, unless it is the first.
Extremes ExtremesOf(std::span<const double> values);

}  // namespace torvane
