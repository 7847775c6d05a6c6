#include "cli/measure/loop_findings.h"

#include <algorithm>
#include <cmath>

#include "core/csv.h"
#include "core/text.h"

namespace torvane::cli {
namespace {

const Margins::Reading* Address(const std::optional<Margins::Reading>& reading) {
  return reading ? &*reading : nullptr;
}

}  // namespace

void LoopFindings::TakeClosed(const Margins& closed) {
  constexpr double Follows = 6.0;  // dB
  if (std::abs(closed.Begin) > Follows) {
    Miss({"no bandwidth: the response begins at " + FormatGeneral(closed.Begin, 4, 1) +
          " dB, so that it does not follow its command"});
    return;
  }
  readings_.Bandwidth = closed.GainBandwidth;
  highest_ = std::max(highest_, closed.GainBandwidth.value_or(0.0));
  Take(&RunReadings::Peaking, Address(closed.Peaking));
  Miss(closed.Missing);
}

void LoopFindings::TakeOpen(const Margins& open) {
  Take(&RunReadings::GainMargin, open.SmallestGainMargin());
  Take(&RunReadings::PhaseMargin, open.SmallestPhaseMargin());
  Take(&RunReadings::Sensitivity, Address(open.Sensitivity));
  if (!open.Sensitivity) Miss({"no sensitivity: it has no greatest value within the response"});
  Miss(open.Missing);
}

void LoopFindings::Miss(const std::vector<std::string>& why) {
  Append(readings_.Reasons, why);
}

void LoopFindings::Doubt(const std::vector<std::string>& doubts) {
  auto& warnings = readings_.Warnings;
  for (const std::string& doubt : doubts) {
    if (std::ranges::find(warnings, doubt) == warnings.end()) warnings.push_back(doubt);
  }
}

void LoopFindings::Take(std::optional<double> RunReadings::*measure,
                        const Margins::Reading* reading) {
  if (!reading) return;
  readings_.*measure = reading->Value;
  highest_ = std::max(highest_, reading->Hz);
}

}  // namespace torvane::cli
