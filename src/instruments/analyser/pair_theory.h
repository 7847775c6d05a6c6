#pragma once

#include <limits>
#include <string>
#include <vector>

#include "instruments/analyser/response_curve.h"

namespace torvane {

/// What theory says of the response between two signals: a curve, or why there is none.
struct PairTheory {
  ResponseCurve Curve;
  /// As of a measured response, Hz: an octave above it margins end.
  double AccurateUpTo = std::numeric_limits<double>::infinity();
  std::vector<std::string> Notes;  ///< what it leaves out, a sentence each
  std::string Fault;
};

}  // namespace torvane
