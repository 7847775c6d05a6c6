#pragma once

namespace torvane {

/// Numbers beyond this are no magnitude that a loop can be driven with or a scale can have.
inline constexpr double LargestMagnitude = 1e30;
/// Times of an instrument, seconds: shorter ones are lost beside the simulated time, longer ones
/// never come.
inline constexpr double ShortestTime = 1e-12;
inline constexpr double LongestTime = 1e9;

}  // namespace torvane
