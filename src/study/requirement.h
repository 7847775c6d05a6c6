#pragma once

#include <optional>
#include <string>
#include <vector>

#include "study/measures.h"

namespace torvane {

/// The measure of that caption, without regard to case and blanks ("GainMargin"). Any other name is
/// a StudyFault that tells the nearest.
const RunMeasure& NamedMeasure(const std::string& name);

/// What a run is to reach: a measure and its bound.
class Requirement {
 public:
  /// Reads MEASURE < NUMBER, or <=, > or >=; with or without the sign of equality the bound itself
  /// is good. What cannot be read is a StudyFault.
  explicit Requirement(const std::string& text);

  const RunMeasure& Of() const { return *measure_; }
  bool Met(const RunReadings& readings) const;
  /// By how much the bound is missed, as a part of it (of 1 where the bound is 0); 0 when it is
  /// met, nothing when the run lacks the measure.
  std::optional<double> Missed(const RunReadings& readings) const;

  /// "Overshoot < 10 %".
  std::string Text() const;
  /// "Overshoot is 12.3 %", or that the run has none.
  std::string Found(const RunReadings& readings) const;

 private:
  const RunMeasure* measure_;
  bool atMost_ = true;
  double bound_ = 0.0;
};

/// Whether a run meets all of them: 1 or 0, nothing where it lacks a measure that is asked for.
std::optional<double> MeetsAll(const std::vector<Requirement>& all, const RunReadings& readings);

}  // namespace torvane
