#pragma once

#include <string>
#include <vector>

#include "instruments/analyser/margins.h"
#include "study/measures.h"

namespace torvane {

/// That figures above the frequency, Hz, are not trustworthy.
std::string SampleTimeWarning(double accurateUpTo);

/// Puts what is read off a loop's responses, measured or from theory, among a run's readings.
class LoopFindings {
 public:
  explicit LoopFindings(RunReadings& readings) : readings_(readings) {}

  /// Bandwidth and peaking. A response in other units than its command's, or to a command that is
  /// not followed, has none.
  void TakeClosed(const Margins& closed);
  /// Margins and sensitivity.
  void TakeOpen(const Margins& open);

  void Miss(const std::vector<std::string>& why);
  /// What makes the figures less trustworthy, each once.
  void Doubt(const std::vector<std::string>& doubts);
  /// The highest frequency, Hz, at which something was read.
  double HighestHz() const { return highest_; }

 private:
  void Take(std::optional<double> RunReadings::*measure, const Margins::Reading* reading);

  RunReadings& readings_;
  double highest_ = 0.0;
};

}  // namespace torvane
