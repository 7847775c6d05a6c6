#pragma once

#include <string>
#include <utility>
#include <vector>

namespace torvane {

class ZelBenchTop;

/// When a measurement was taken, and with which constants.
struct TraceOrigin {
  double Time = 0.0;                                           ///< simulated, seconds
  std::vector<std::pair<std::string, std::string>> Constants;  ///< name and value, as shown

  /// Of a measurement that was not taken of this model, neither is known.
  bool Known() const { return !Constants.empty(); }
};

/// Of a measurement that begins now.
TraceOrigin OriginNow(const ZelBenchTop& bench);

/// What tells one of several measurements from the others: "at 1.25 s, KP = 2", the time and the
/// constants that are not the same in all of them; empty where nothing differs.
std::string OriginText(const TraceOrigin& one, const std::vector<const TraceOrigin*>& all);

/// The constants of what was kept that differ from those of what is shown beside it: "KP = 2 (now
/// 3)", at most three of them and how many more. Constants are found by name; one that is not in
/// both is not told.
std::string KeptOriginText(const TraceOrigin& kept, const TraceOrigin& now);

}  // namespace torvane
