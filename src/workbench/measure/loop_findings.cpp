#include "workbench/measure/loop_findings.h"

#include <algorithm>
#include <cmath>

#include "core/csv.h"
#include "core/text.h"

namespace torvane {
namespace {

const Margins::Reading* Address(const std::optional<Margins::Reading>& reading) {
  return reading ? &*reading : nullptr;
}

void AppendNew(const std::vector<std::string>& more, std::vector<std::string>& all) {
  for (const std::string& one : more) {
    if (std::ranges::find(all, one) == all.end()) all.push_back(one);
  }
}

}  // namespace

std::string SampleTimeWarning(double accurateUpTo) {
  return "The sample time is short enough for what is read up to " +
         FormatGeneral(accurateUpTo, 6, 2) +
         " Hz.  Choose a shorter one (--tsample) for what is read above.";
}

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
  if (closed.NeverPeaks) readings_.Beyond.push_back(&RunReadings::Peaking);
  Miss(closed.Missing);
}

void LoopFindings::TakeOpen(const Margins& open) {
  Take(&RunReadings::GainMargin, open.SmallestGainMargin());
  Take(&RunReadings::PhaseMargin, open.SmallestPhaseMargin());
  Take(&RunReadings::Sensitivity, Address(open.Sensitivity));
  Miss(open.Missing);
}

void LoopFindings::Miss(const std::vector<std::string>& why) {
  AppendNew(why, readings_.Reasons);
}

void LoopFindings::Doubt(const std::vector<std::string>& doubts) {
  AppendNew(doubts, readings_.Warnings);
}

void LoopFindings::Take(std::optional<double> RunReadings::*measure,
                        const Margins::Reading* reading) {
  if (!reading) return;
  readings_.*measure = reading->Value;
  highest_ = std::max(highest_, reading->Hz);
}

}  // namespace torvane
