#pragma once

namespace torvane::cli {

/// The smallest k * every (k = 1, 2, ...) above the time: when the next row of a recording is due.
/// Both in seconds; every is positive. Multiples so close together that the time cannot tell them
/// apart make a row due at once.
double NextRowTime(double time, double every);

}  // namespace torvane::cli
