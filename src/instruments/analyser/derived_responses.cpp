#include "instruments/analyser/derived_responses.h"

#include "instruments/analyser/analyser.h"
#include "instruments/analyser/curve_part.h"

namespace torvane {

namespace {

// Those that a plot shows, with their neighbours outside: reading a point takes most of the time of
// drawing it.
FrequencyAnalyser::Indices OnAxis(const FrequencyAnalyser& analyser, int slot) {
  constexpr double Beyond = 0.02;  // of the axis; half a column of a narrow plot
  const double low = analyser.AxisFrequency(-Beyond);
  const double high = analyser.AxisFrequency(1.0 + Beyond);
  FrequencyAnalyser::Indices points = analyser.Points(slot);
  while (points.First + 1 < points.End && analyser.PointHz(slot, points.First + 1) < low) {
    ++points.First;
  }
  while (points.End - 1 > points.First && analyser.PointHz(slot, points.End - 2) > high) {
    --points.End;
  }
  return points;
}

}  // namespace

const ResponsePoint* DerivedResponse::At(int index) const {
  if (index < First || index - First >= static_cast<int>(Curve.size())) return nullptr;
  return &Curve[static_cast<std::size_t>(index - First)];
}

double DerivedResponse::DelayAt(int index) const {
  if (index < First || index - First >= static_cast<int>(Delay.size())) return 0.0;
  return Delay[static_cast<std::size_t>(index - First)];
}

const DerivedResponse& DerivedResponses::Of(FrequencyAnalyser& analyser, int slot,
                                            const ResponseView& view) {
  DerivedResponse& derived = slots_[static_cast<std::size_t>(slot)];
  bool& known = known_[static_cast<std::size_t>(slot)];
  if (known) return derived;
  known = true;
  const FrequencyAnalyser::Indices points =
      view == ResponseView{.Plot = view.Plot} ? OnAxis(analyser, slot) : analyser.Points(slot);
  derived.First = points.First;
  ReadCurvePart(analyser, slot, points, derived.Curve);
  if (view.OpenLoop) OpenFromClosed(derived.Curve);
  derived.Delay.clear();
  if (view.GroupDelay) {
    ResponseCurve unwrapped = derived.Curve;
    UnwrapPhase(unwrapped);
    GroupDelay(unwrapped, derived.Delay);
  }
  if (view.Unwrapped) UnwrapPhase(derived.Curve);
  return derived;
}

void DerivedResponses::Forget() {
  known_.fill(false);
}

}  // namespace torvane
