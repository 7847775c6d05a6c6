#pragma once

#include <span>

namespace torvane {

/// Ascending mantissas of one decade, from 1 to 10.
using Ladder = std::span<const double>;

Ladder CoarseLadder();  ///< 14 mantissas, steps of about a fifth
Ladder FineLadder();    ///< 66 mantissas, steps of about 4 %
Ladder DecadeLadder();  ///< 1, 2, ... 10

/// The next value of the ladder, in magnitude, strictly above |x|; the sign is kept and 0 stays 0.
double NextHighestThisArray(double x, Ladder ladder);

/// The next value of the ladder, in magnitude, strictly below |x|; the sign is kept and 0 stays 0.
double NextLowestThisArray(double x, Ladder ladder);

/// The next value up of the ladder 1, 2, ... 10.
double NextHighest10(double x);

/// The next value up of 1, 2, 5, 10; the sign is kept and 0 stays 0.
double NextHighest125(double x);
/// The next one down.
double NextLowest125(double x);

}  // namespace torvane
