// What an analyser's view makes of the measured responses.

#include "instruments/analyser/analyser.h"

namespace torvane {

void FrequencyAnalyser::SetView(const ResponseView& view) {
  if (responseView_ == view) return;
  Change(
      [&] {
        responseView_ = view;
        MarkStale();
      },
      [] { return "View"; });
}

// nullptr where the measurement is shown as it is.
const DerivedResponse* FrequencyAnalyser::DerivedAt(int slot) {
  const bool derives =
      responseView_.OpenLoop || responseView_.Unwrapped || responseView_.GroupDelay;
  if (!derives || OutputOnly() || !HasData(slot)) return nullptr;
  return &ShownResponse(slot);
}

const DerivedResponse& FrequencyAnalyser::ShownResponse(int slot) {
  return derived_.Of(*this, slot, OutputOnly() ? ResponseView{} : responseView_);
}

double FrequencyAnalyser::GainOf(int slot, int index) {
  const DerivedResponse* derived = DerivedAt(slot);
  const ResponsePoint* point = derived ? derived->At(index) : nullptr;
  return point ? point->Gain : MeasuredGain(slot, index);
}

double FrequencyAnalyser::PhaseOf(int slot, int index) {
  const DerivedResponse* derived = DerivedAt(slot);
  const ResponsePoint* point = derived ? derived->At(index) : nullptr;
  return point ? point->Phase : MeasuredPhase(slot, index);
}

double FrequencyAnalyser::DelayOf(int slot, int index) {
  const DerivedResponse* derived = DerivedAt(slot);
  return derived ? derived->DelayAt(index) : 0.0;
}

std::optional<double> FrequencyAnalyser::DelayRead(int slot, double hz) {
  if (!ShowsDelay() || !Readable(slot, hz)) return std::nullopt;
  const double index = IndexAt(slot, hz);
  const int below = static_cast<int>(index);
  const double share = index - below;
  if (share == 0.0) return DelayOf(slot, below);
  return (1.0 - share) * DelayOf(slot, below) + share * DelayOf(slot, below + 1);
}

}  // namespace torvane
