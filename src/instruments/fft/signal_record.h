#pragma once

#include <span>

namespace torvane {

/// What the samples of one signal say of a record, beside their spectrum.
struct SignalRecord {
  /// From the first sample to the last one. A record is taken for one period of something that goes
  /// on for ever: where it does not end as it began, the step between leaks into its bins.
  double Step = 0.0;
  /// Share of the excited samples that stand at the greatest or at the least value as nothing does
  /// that comes near it: for longer at a time than elsewhere, while the five levels next to it are
  /// rare. Signals that are held or quantised visit their extremes less often than what lies
  /// within.
  double AtLimit = 0.0;
  /// The greatest distance from the first sample in the last quarter, to that in the quarters
  /// before. An excitation that stays the same gives about 1, and a loop that diverges more.
  double Growth = 0.0;
};

/// Of a whole record whose first `excited` samples were taken under the excitation.
SignalRecord ReadSignal(std::span<const float> samples, int excited);

}  // namespace torvane
