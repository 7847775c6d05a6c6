#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/bench.h"

namespace torvane {

/// What may be set on the model's first scope; the rest is as the model or its file has it.
struct ScopeSettings {
  std::optional<double> TimeBase;
  std::string Show;
  std::vector<std::string> Scales;  ///< SIGNAL=NUMBER, display units a division
  std::vector<std::string> Shifts;  ///< SIGNAL=NUMBER, display units
  std::string TrigMode;
  std::string TrigSource;
  std::string TrigSlope;
  std::optional<double> TrigLevel;
  std::optional<double> TrigPosition;
};

/// A setting without a scope, an unknown name or more traces than a scope shows are wrong usage; a
/// limited value is noted.
void Apply(const ZelBenchTop& bench, const ScopeSettings& settings);

}  // namespace torvane
