#pragma once

namespace torvane::cli {

/// When the next row of a recording is due: the smallest k * every (k = 1, 2, ...) above the time,
/// less the tolerance, within which a multiple counts as reached. The running sum of a solver's
/// steps falls short of a multiple by roundings, which the tolerance takes in. All in seconds;
/// every is positive. Multiples so close together that the time cannot tell them apart make a row
/// due at once.
double NextRowTime(double time, double every, double tolerance);

}  // namespace torvane::cli
