#pragma once

#include <array>
#include <optional>
#include <vector>

#include "instruments/analyser/analyser_channel.h"
#include "instruments/analyser/response_curve.h"
#include "instruments/analyser/response_view.h"

namespace torvane {

/// What a view makes of one slot's response, point by point.
struct DerivedResponse {
  int First = 0;  ///< index of the first point in its slot
  ResponseCurve Curve;
  std::vector<double> Delay;  ///< seconds; while the view shows it

  /// nullptr outside the curve.
  const ResponsePoint* At(int index) const;
  double DelayAt(int index) const;
};

/// Keeps what a view makes of the slots until they change.
class DerivedResponses {
 public:
  const DerivedResponse& Of(FrequencyAnalyser& analyser, int slot, const ResponseView& view);
  void Forget();

 private:
  std::array<DerivedResponse, AnalyserChannel::SlotCount> slots_;
  std::array<bool, AnalyserChannel::SlotCount> known_{};
};

}  // namespace torvane
